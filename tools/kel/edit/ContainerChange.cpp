#include "edit/ContainerChange.h"

#include "check/AllowedValues.h"
#include "check/VariableRules.h"
#include "check/ViolationFinder.h"
#include "document/ValueShape.h"
#include "words/Counted.h"
#include "words/GuidText.h"
#include "words/ValueText.h"

#include <optional>

namespace kel::tool {

namespace {

/// Refuses null where only values can be.
void refuseNull(const KEL* value, const char* container) {
    if (value == nullptr) {
        throw EditRefusal{std::string(container) + " cannot hold null"};
    }
}

/// Returns what the descriptor of a checked struct has for a variable, or null.
MetaKelVarDescriptor* rulesFor(const MetaKel& checked, const std::string& name) {
    const MetaKelDescriptor* descriptor = checked.getDescriptor();
    if (descriptor == nullptr || !descriptor->containsVar(name.c_str())) {
        return nullptr;
    }
    return dynamic_cast<MetaKelVarDescriptor*>(memberOf(*descriptor, name.c_str()));
}

void refuseForDescriptor(const MetaKel& checked, const std::string& name, KEL* value) {
    if (name == descriptorName) {
        if (value == nullptr || value->getType() != KELKind_MetaKelDescriptor) {
            throw EditRefusal{wordsFor(value) + " is not a struct descriptor"};
        }
        return;
    }
    if (name.starts_with('@')) {
        throw EditRefusal{"names that begin with \"@\" are reserved in a checked struct"};
    }
    MetaKelVarDescriptor* rules = rulesFor(checked, name);
    if (value != nullptr && rules != nullptr && !AllowedValues().isValid(*rules, *value)) {
        throw EditRefusal{wordsFor(value) + " is not allowed (allowed: " + wordsForAllowed(*rules) +
                          ')'};
    }
}

/// Stores a value, which the struct takes, under a name.
void store(KEL_Struct& variables, const char* name, KEL* value, bool isThere) {
    auto* checked = dynamic_cast<MetaKel*>(&variables);
    if (checked == nullptr) {
        if (isThere) {
            variables.setVar(name, value);
        } else {
            variables.addVar(name, value);
        }
    } else if (value != nullptr) {
        checked->setVar(name, value);
    } else if (isThere) {
        checked->clearVar(name);
    } else {
        throw EditRefusal{"a checked struct takes no new variable without a value"};
    }
}

void setVariable(KEL_Struct& variables, const std::string& name, KEL* value, bool isThere) {
    refuseVariable(variables, name, value);
    store(variables, name.c_str(), value, isThere);
    KELVarCursor stored;
    if (!walkOver(variables).findVar(stored, name.c_str()) || stored.value != value) {
        throw EditRefusal{wordsFor(value) + " is not taken by " + kindOf(variables).words};
    }
}

void setElement(KEL_Array& array, const Place& place, KEL* value) {
    refuseNull(value, "an array");
    if (place.isThere) {
        array.setVar(value, place.index);
    } else {
        array.addVar(value);
    }
}

void setHalfOfPair(KEL_IndexList& list, const Place& place, KEL* value) {
    refuseNull(value, "an index list");
    if (place.step.text == "item") {
        list.setItemAt(place.index, value);
        return;
    }
    const Value item = share(list.getItemAt(place.index));
    list.removePair(place.index);
    list.insertPair(value, item.get(), place.index);
}

/// Puts the contents of a value in a manager, under the identity of the place.
void setManaged(KEL_Manager& manager, const Place& place, KEL* value) {
    refuseNull(value, "a manager");
    if (value->getType() == KELKind_MemBlock) {
        throw EditRefusal{"a memory block cannot be put in a manager"};
    }
    const std::optional<JHashCode> identity = guidOfText(place.step.text);
    Value element = made(manager.createKel(value->getType(), identity.value()));
    element->assign(value);
    manager.addKel(element.get());
}

} // namespace

void refuseVariable(const KEL_Struct& variables, const std::string& name, KEL* value) {
    if (name.empty()) {
        throw EditRefusal{"the name of a variable cannot be empty"};
    }
    if (name.find('"') != std::string::npos || name.find('\0') != std::string::npos) {
        throw EditRefusal{"the name of a variable cannot contain a double quote or a NUL"};
    }
    if (const auto* checked = dynamic_cast<const MetaKel*>(&variables)) {
        refuseForDescriptor(*checked, name, value);
    } else if (variables.getType() == KELKind_MetaKelDescriptor &&
               (value == nullptr || value->getType() != KELKind_MetaKelVarDescriptor)) {
        throw EditRefusal{wordsFor(value) + " is not a variable descriptor"};
    }
}

std::string doubtAbout(const KEL_Struct& variables, const std::string& name, const KEL* value) {
    const auto* checked = dynamic_cast<const MetaKel*>(&variables);
    const MetaKelDescriptor* descriptor = checked != nullptr ? checked->getDescriptor() : nullptr;
    if (descriptor == nullptr || name == descriptorName) {
        return {};
    }
    if (!descriptor->containsVar(name.c_str())) {
        return UnknownNames().wordsFor(name.c_str(), walkOver(*descriptor));
    }
    const MetaKelVarDescriptor* rules = rulesFor(*checked, name);
    return rules != nullptr && value != nullptr ? mistakeInKind(*rules, *value) : std::string();
}

bool canAdd(const Place& place) {
    switch (shapeOf(*place.container)) {
    case ValueShape::variables:
        return true;
    case ValueShape::array:
        return place.step.index ==
               static_cast<uint64_t>(dynamic_cast<KEL_Array&>(*place.container).getCount());
    case ValueShape::managed:
        return guidOfText(place.step.text).has_value();
    // not reached: the pairs of a list have calls of their own
    case ValueShape::pairs:
    case ValueShape::scalar:
        break;
    }
    return false;
}

void setAt(const Place& place, KEL* value) {
    KEL& container = *place.container;
    switch (shapeOf(container)) {
    case ValueShape::variables:
        setVariable(dynamic_cast<KEL_Struct&>(container), place.step.text, value, place.isThere);
        return;
    case ValueShape::array:
        setElement(dynamic_cast<KEL_Array&>(container), place, value);
        return;
    case ValueShape::pairs:
        setHalfOfPair(dynamic_cast<KEL_IndexList&>(container), place, value);
        return;
    case ValueShape::managed:
        setManaged(dynamic_cast<KEL_Manager&>(container), place, value);
        return;
    // not reached: a place is in a container
    case ValueShape::scalar:
        return;
    }
}

void setPair(KEL_IndexList& list, uint64_t index, KEL* keyAndItem) {
    const auto* pair = dynamic_cast<const KEL_Array*>(keyAndItem);
    if (pair == nullptr || pair->getCount() != 2) {
        throw EditRefusal{"a pair is set by an array of its key and its item"};
    }
    const auto count = static_cast<uint64_t>(list.getCount());
    if (index > count) {
        throw EditRefusal{"the list has " + counted(count, "pair")};
    }
    const auto place = static_cast<int32_t>(index);
    if (index < count) {
        list.removePair(place);
    }
    list.insertPair(pair->getVar(0), pair->getVar(1), place);
}

void removeAt(const Place& place) {
    KEL& container = *place.container;
    switch (shapeOf(container)) {
    case ValueShape::variables:
        dynamic_cast<KEL_Struct&>(container).removeVar(place.step.text.c_str());
        return;
    case ValueShape::array:
        dynamic_cast<KEL_Array&>(container).removeVar(place.index);
        return;
    case ValueShape::pairs:
        dynamic_cast<KEL_IndexList&>(container).removePair(place.index);
        return;
    case ValueShape::managed:
        dynamic_cast<KEL_Manager&>(container).removeKel(identityOf(*place.value));
        return;
    // not reached: a place is in a container
    case ValueShape::scalar:
        return;
    }
}

} // namespace kel::tool
