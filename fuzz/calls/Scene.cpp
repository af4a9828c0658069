// The values that a script can begin with.
#include "calls/Calls.h"

#include <algorithm>

namespace kel::fuzz {

/// Adds a value just made to the first free place.
Node* Calls::hold(int32_t kind, KEL* real) {
    Node* node = model_.add(kind, real);
    *std::find(model_.places.begin(), model_.places.end(), nullptr) = node;
    return node;
}

Node* Calls::holdInt(int32_t number) {
    Node* node = hold(KELKind_Int, CreateKELInt(number));
    node->number = number;
    return node;
}

void Calls::addTo(Node& array, Node* element) {
    array.as<KEL_Array>().addVar(element->real);
    array.elements.push_back(element);
}

void Calls::storeIn(Node& structure, const char* name, Node* value) {
    structure.as<KEL_Struct>().addVar(name, value->real);
    structure.variables[name] = value;
}

/// Makes a description of a variable with a default, a range of Ints or allowed values.
/// \param allowed how many of the numbers in the places are allowed; 0 for a range
Node* Calls::holdRules(int32_t type, std::size_t allowed) {
    Node* rules = hold(KELKind_MetaKelVarDescriptor, CreateMetaKelVarDescriptor());
    rules->as<MetaKelVarDescriptor>().setType(type);
    rules->variables["type"] = model_.addMade(KELKind_Int, type);
    storeIn(*rules, "default", model_.places[0]);
    if (allowed == 0) {
        storeIn(*rules, "min", model_.places[0]);
        storeIn(*rules, "max", model_.places[2]);
        return rules;
    }
    Node* values = hold(KELKind_Array, CreateKELArray());
    for (std::size_t i = 0; i < allowed; ++i) {
        addTo(*values, model_.places[i]);
    }
    storeIn(*rules, "enum", values);
    return rules;
}

void Calls::begin() {
    Node* least = holdInt(1);
    Node* equal = holdInt(1);
    Node* greatest = holdInt(2);
    Node* range = holdRules(KELKind_Int, 0);
    Node* choice = holdRules(KELKind_Double, 3);
    KEL_IndexList* real = CreateKELIndexList();
    Node* list = hold(KELKind_IndexList, real);
    list->arrays = {model_.add(KELKind_Array, real->getKeys()),
                    model_.add(KELKind_Array, real->getItems())};
    for (Node* key : {least, greatest, equal}) {
        addTo(*list->arrays[0], key);
        addTo(*list->arrays[1], key == greatest ? least : greatest);
    }
    hold(KELKind_Selector, CreateKELSelector(real))->list = list;
    KEL_MultiSelector* several = CreateKELMultiSelector(real);
    Node* selector = hold(KELKind_MultiSelector, several);
    selector->list = list;
    selector->arrays = {model_.add(KELKind_Array, several->getSelectedKeys())};
    Node* descriptor = hold(KELKind_MetaKelDescriptor, CreateMetaKelDescriptor());
    storeIn(*descriptor, "a", range);
    storeIn(*descriptor, "b", choice);
    Node* checked = hold(KELKind_MetaKel, CreateMetaKel(&descriptor->as<MetaKelDescriptor>()));
    checked->variables["@desc"] = descriptor;
    hold(KELKind_Manager, CreateKELManager());
    storeIn(*hold(KELKind_Struct, CreateKELStruct()), "b", greatest);
    holdInt(99); // which no description allows
    model_.settle();
    model_.verify();
    for (Node& node : model_.nodes()) {
        rounds_.watch(node);
    }
}

} // namespace kel::fuzz
