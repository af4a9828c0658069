#include "calls/Calls.h"

#include "Property.h"
#include "calls/Nodes.h"

#include <algorithm>
#include <utility>

namespace kel::fuzz {

namespace {

/// Returns whether a copy of the value has at most so many values. It has not if the value contains
/// itself. The values that are counted are subtracted from most.
bool isSmall(const Node& node, int& most) {
    if (--most < 0) {
        return false;
    }
    const auto isSmallBelow = [&most](const Node* held) { return isSmall(*held, most); };
    if (node.kind == KELKind_Manager || node.kind == KELKind_Selector ||
        node.kind == KELKind_MultiSelector) {
        return true; // its copy shares what it holds
    }
    return std::all_of(node.elements.begin(), node.elements.end(), isSmallBelow) &&
           std::all_of(node.arrays.begin(), node.arrays.end(), isSmallBelow) &&
           std::all_of(node.variables.begin(), node.variables.end(), [&](const auto& variable) {
               return variable.second != nullptr && isSmallBelow(variable.second);
           });
}

} // namespace

void Calls::next() {
    switch (script_.below(12)) {
    case 0:
    case 1:
        create();
        break;
    case 2:
        share();
        break;
    case 3:
        clear(anyPlace());
        break;
    case 4:
        fetch();
        break;
    case 5:
        copy();
        break;
    case 6:
    case 7:
        watch();
        break;
    default:
        change();
    }
    model_.settle();
    model_.verify();
}

void Calls::finish() {
    for (Node*& place : model_.places) {
        clear(place);
    }
    model_.settle();
    // Only values that contain themselves are left, so emptying all containers frees them.
    const auto isFull = [](const Node& node) {
        return !node.elements.empty() || !node.variables.empty() || node.selection != nullptr;
    };
    auto& nodes = model_.nodes();
    for (auto full = std::find_if(nodes.begin(), nodes.end(), isFull); full != nodes.end();
         full = std::find_if(nodes.begin(), nodes.end(), isFull)) {
        full->real->addRef();
        model_.places[0] = &*full;
        empty(*full);
        model_.settle();
        model_.verify();
        clear(model_.places[0]);
        model_.settle();
    }
    require(nodes.empty(), "the model releases everything");
}

// ---- Calls on values of every kind -------------------------------------------------------------

void Calls::put(Node*& place, Node* node) {
    Node* old = std::exchange(place, node);
    if (old != nullptr) {
        KEL* real = old->real;
        const int left = model_.countOf(*old);
        require(real->release() == left, "release returns the new count");
        model_.settle();
    }
}

void Calls::clear(Node*& place) {
    put(place, nullptr);
}

void Calls::create() {
    Node*& place = anyPlace();
    Node* created = made();
    if (created != nullptr) {
        put(place, created);
    }
}

/// Makes a value. \return null for a refused list
Node* Calls::made() {
    switch (script_.below(16)) {
    case 0: {
        const int32_t number = script_.byte() * 1000003;
        Node* node = model_.add(KELKind_Int, CreateKELInt(number));
        node->number = number;
        return node;
    }
    case 1: {
        const double number = script_.byte() / 4.0;
        Node* node = model_.add(KELKind_Double, CreateKELDouble(number));
        node->number = number;
        return node;
    }
    case 2: {
        const bool isTrue = script_.below(2) == 1;
        Node* node = model_.add(KELKind_Boolean, CreateKELBoolean(isTrue));
        node->number = isTrue ? 1 : 0;
        return node;
    }
    case 3: {
        const std::string text = std::to_string(script_.byte());
        Node* node = model_.add(KELKind_String, CreateKELString(text.c_str()));
        node->text = text;
        return node;
    }
    case 4:
    case 5:
        return model_.add(KELKind_Array, CreateKELArray());
    case 6:
    case 7:
        return model_.add(KELKind_Struct, CreateKELStruct());
    case 8:
        return model_.add(KELKind_Manager, CreateKELManager());
    case 9:
        return model_.add(KELKind_MetaKelDescriptor, CreateMetaKelDescriptor());
    case 10:
        return model_.add(KELKind_MetaKelVarDescriptor, CreateMetaKelVarDescriptor());
    case 11: {
        Node* descriptor = anyOf(KELKind_MetaKelDescriptor);
        Node* node = model_.add(
            KELKind_MetaKel,
            CreateMetaKel(descriptor == nullptr ? nullptr : &descriptor->as<MetaKelDescriptor>()));
        if (descriptor != nullptr) {
            node->variables["@desc"] = descriptor;
        }
        return node;
    }
    case 12: {
        Node* list = anyOf(KELKind_IndexList);
        Node* node =
            model_.add(KELKind_Selector,
                       CreateKELSelector(list == nullptr ? nullptr : &list->as<KEL_IndexList>()));
        node->list = list == nullptr ? model_.addList(nullptr) : list;
        return node;
    }
    case 13: {
        Node* list = anyOf(KELKind_IndexList);
        Node* node = model_.add(
            KELKind_MultiSelector,
            CreateKELMultiSelector(list == nullptr ? nullptr : &list->as<KEL_IndexList>()));
        node->list = list == nullptr ? model_.addList(nullptr) : list;
        node->arrays = {model_.add(KELKind_Array, nullptr)};
        return node;
    }
    default:
        break;
    }
    Node* keys = anyOf(KELKind_Array);
    Node* items = anyOf(KELKind_Array);
    if (keys == nullptr || items == nullptr || script_.below(2) == 0) {
        return model_.addList(CreateKELIndexList());
    }
    KEL* list = CreateKELIndexList(&keys->as<KEL_Array>(), &items->as<KEL_Array>());
    const bool isRefused = keys == items || keys->elements.size() != items->elements.size();
    require((list == nullptr) == isRefused, "a list has two arrays of one length");
    if (list == nullptr) {
        return nullptr;
    }
    Node* node = model_.add(KELKind_IndexList, list);
    node->arrays = {keys, items};
    return node;
}

void Calls::share() {
    Node* node = any();
    Node*& place = anyPlace();
    if (node != nullptr) {
        node->real->addRef();
        put(place, node);
    }
}

void Calls::fetch() {
    Node* node = any();
    Node*& place = anyPlace();
    if (node == nullptr) {
        return;
    }
    Node* child = nullptr;
    if (!node->variables.empty()) {
        auto variable = node->variables.begin();
        std::advance(variable, script_.below(static_cast<int>(node->variables.size())));
        child = variable->second;
        KEL* got = node->as<KEL_Struct>().getVar(variable->first.c_str());
        require(got == (child == nullptr ? nullptr : child->real), "a variable is found");
    } else if (node->list != nullptr && script_.below(2) == 0) {
        child = node->selection == nullptr ? node->list : node->selection;
        child->real->addRef();
    } else if (!node->elements.empty() || !node->arrays.empty()) {
        const auto& held = node->arrays.empty() ? node->elements : node->arrays;
        child = held[static_cast<std::size_t>(script_.below(static_cast<int>(held.size())))];
        child->real->addRef();
    }
    if (child != nullptr) {
        put(place, child);
    }
}

void Calls::copy() {
    constexpr int largest = 200;
    const Node* node = any();
    int most = largest;
    if (node == nullptr || !isSmall(*node, most)) {
        return;
    }
    rounds_.expect({}, false, [node] {
        KEL* copied = node->real->copy();
        require(copied->equalsValue(node->real) && node->real->equalsValue(copied),
                "a copy is equal to its source");
        require(!copied->equals(node->real), "a copy has its own identity");
        require(copied->release() == 0, "nobody else holds a copy");
    });
}

void Calls::watch() {
    if (Node* node = any()) {
        rounds_.changeWatchers(*node);
    }
}

void Calls::change() {
    Node* node = any();
    if (node == nullptr) {
        return;
    }
    switch (node->kind) {
    case KELKind_Array:
        changeArray(*node);
        break;
    case KELKind_Manager:
        changeManager(*node);
        break;
    case KELKind_Struct:
    case KELKind_MetaKelDescriptor:
        changeStruct(*node);
        break;
    case KELKind_MetaKel:
        changeChecked(*node);
        break;
    case KELKind_MetaKelVarDescriptor:
        changeDescriptor(*node);
        break;
    case KELKind_IndexList:
        changeList(*node);
        break;
    case KELKind_Selector:
        changeSelector(*node);
        break;
    case KELKind_MultiSelector:
        changeMultiSelector(*node);
        break;
    default:
        changeScalar(*node);
    }
}

void Calls::changeScalar(Node& node) {
    const Node* other = anyOf(node.kind);
    if (other != nullptr && script_.below(2) == 0) {
        node.number = other->number;
        node.text = other->text;
        rounds_.expect({&node}, true, [&] { node.real->assign(other->real); });
        return;
    }
    const int32_t number = node.kind == KELKind_Boolean ? script_.below(2) : script_.byte();
    const std::string text = std::to_string(number);
    node.number = number;
    switch (node.kind) {
    case KELKind_Int:
        rounds_.expect({&node}, true, [&] { node.as<KEL_Int>().setValue(number); });
        break;
    case KELKind_Boolean:
        rounds_.expect({&node}, true, [&] { node.as<KEL_Boolean>().setValue(number != 0); });
        break;
    case KELKind_Double:
        rounds_.expect({&node}, true, [&] { node.as<KEL_Double>().setValue(number); });
        break;
    case KELKind_guid:
        rounds_.expect({&node}, true, [&] {
            node.as<KEL_guid>().setValue(JHashCode(static_cast<uint32_t>(number)));
        });
        break;
    default:
        node.text = text;
        rounds_.expect({&node}, true, [&] { node.as<KEL_String>().setValue(text.c_str()); });
    }
}

void Calls::empty(Node& node) {
    switch (node.kind) {
    case KELKind_Array:
        node.elements.clear();
        rounds_.expect({&node}, true, [&node] { node.as<KEL_Array>().removeAllVars(); });
        break;
    case KELKind_Manager:
        node.elements.clear();
        rounds_.expect({}, false, [&node] { node.as<KEL_Manager>().removeAllKels(); });
        break;
    case KELKind_Selector:
        node.selection = nullptr;
        rounds_.expect({&node}, false, [&node] { node.as<KEL_Selector>().clearSelection(); });
        break;
    case KELKind_IndexList:
        for (Node* array : node.arrays) {
            array->elements.clear();
        }
        rounds_.expect({node.arrays[0], node.arrays[1], &node}, false,
                       [&node] { node.as<KEL_IndexList>().removeAllPairs(); });
        break;
    default:
        node.variables.clear();
        rounds_.expect({&node}, node.kind == KELKind_Struct,
                       [&node] { node.as<KEL_Struct>().removeAllVars(); });
    }
}

/// Returns the first value that fits, from the place on that the script chooses. Some choices mean
/// that place alone, so that null and other kinds are tried too.
template <class Fits> Node* Calls::nextWhich(const Fits& fits) {
    constexpr int alone = 224;
    const int choice = script_.byte();
    const std::size_t count = model_.places.size();
    for (std::size_t i = 0; i < count; ++i) {
        Node* node = model_.places[(static_cast<std::size_t>(choice) + i) % count];
        if ((node != nullptr && fits(*node)) || choice >= alone) {
            return node;
        }
    }
    return nullptr;
}

Node* Calls::any() {
    return nextWhich([](const Node&) { return true; });
}

Node* Calls::anyOf(int32_t kind) {
    Node* node = nextWhich([kind](const Node& candidate) { return candidate.kind == kind; });
    return node != nullptr && node->kind == kind ? node : nullptr;
}

std::string Calls::anyName(const Node& node) {
    constexpr const char* names[] = {
        "a",       "b",       "c",        "",    "quo\"te",   "A name with many letters in it",
        "\xFF",    "@desc",   "min",      "max", "enum",      "default",
        "type",    "wrapped", "preadorn", "ab",  "postadorn", "interpolated",
        "stepsize"};
    constexpr int firstProperty = 8;
    constexpr int all = 19;
    const bool hasProperties = node.kind == KELKind_MetaKelVarDescriptor;
    return names[hasProperties ? firstProperty + script_.below(all - firstProperty)
                               : script_.below(firstProperty)];
}

} // namespace kel::fuzz
