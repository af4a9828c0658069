// The calls that change arrays and managers.
#include "Property.h"
#include "calls/Calls.h"
#include "calls/Nodes.h"

namespace kel::fuzz {

// ---- Arrays ------------------------------------------------------------------------------------

void Calls::changeArray(Node& node) {
    auto& array = node.as<KEL_Array>();
    const int32_t index = anyIndex();
    const bool isInside = index >= 0 && index < countOf(node);
    switch (script_.below(12)) {
    case 0:
    case 1: {
        Node* value = any();
        if (value == nullptr) {
            require(array.addVar(nullptr) == -1, "null is not added");
            break;
        }
        const int32_t place = countOf(node);
        node.elements.push_back(value);
        rounds_.expect({&node}, true, [&array, place, value] {
            require(array.addVar(value->real) == place, "addVar returns the index");
        });
        break;
    }
    case 2: {
        Node* value = any();
        const auto insert = [&array, index, value] { array.insertVar(realOf(value), index); };
        if (index < 0 || index > countOf(node)) {
            rounds_.expectRefusal(badIndex, insert);
        } else if (value == nullptr) {
            rounds_.expect({}, false, insert);
        } else {
            node.elements.insert(at(node.elements, index), value);
            rounds_.expect({&node}, true, insert);
        }
        break;
    }
    case 3:
        setElement(node, index);
        break;
    case 4: {
        const auto remove = [&array, index] { array.removeVar(index); };
        if (isInside) {
            node.elements.erase(at(node.elements, index));
            rounds_.expect({&node}, true, remove);
        } else {
            rounds_.expectRefusal("KEL_Array::removeVar failed. No element at specified index.",
                                  remove);
        }
        break;
    }
    case 5: {
        const int32_t other = anyIndex();
        const auto swap = [&array, index, other] { array.swapVars(index, other); };
        if (isInside && other >= 0 && other < countOf(node)) {
            std::swap(*at(node.elements, index), *at(node.elements, other));
            rounds_.expect({&node}, true, swap);
        } else {
            rounds_.expectRefusal("KEL_Array_Impl::swapVars failed. No element at specified index.",
                                  swap);
        }
        break;
    }
    case 6:
        addAll(node);
        break;
    case 7: {
        const Node* value = any();
        require(array.indexOfVar(realOf(value)) == (value == nullptr ? -1 : indexOf(node, value)),
                "an element is found by its identity");
        require(array.containsVar(realOf(value)) == contains(node, value),
                "an element is contained by its identity");
        break;
    }
    case 8:
        setTypedElement(node, index);
        break;
    case 9: {
        const Typed typed(script_);
        const int32_t place = countOf(node);
        node.elements.push_back(model_.addMade(typed));
        rounds_.expect({&node}, true, [&array, &typed, place] {
#define KEL_VALUE(value) (value)
            require(KEL_TYPED_CALL(typed, array, add, KEL_VALUE)() == place,
                    "a typed addition returns the index");
#undef KEL_VALUE
        });
        break;
    }
    case 10: {
        const KEL* got = nullptr;
        const auto get = [&array, &got, index] { got = array.getVar(index); };
        if (isInside) {
            rounds_.expect({}, false, get);
            require(got == (*at(node.elements, index))->real, "an element has its index");
        } else {
            rounds_.expectRefusal(badIndex, get);
        }
        break;
    }
    default:
        empty(node);
    }
}

/// Replaces the element.
void Calls::setElement(Node& array, int32_t index) {
    auto& real = array.as<KEL_Array>();
    Node* value = any();
    const auto set = [&real, index, value] { real.setVar(realOf(value), index); };
    if (index < 0 || index >= countOf(array)) {
        rounds_.expectRefusal(badIndex, set);
    } else if (value == nullptr) {
        rounds_.expect({}, false, set);
    } else {
        *at(array.elements, index) = value;
        rounds_.expect({&array}, true, set);
    }
}

/// Changes an element in place: then its own observers are notified.
void Calls::setTypedElement(Node& array, int32_t index) {
    auto& real = array.as<KEL_Array>();
    const Typed typed(script_);
#define KEL_AT_INDEX(value) (index, value)
    const auto set = KEL_TYPED_CALL(typed, real, set, KEL_AT_INDEX);
#undef KEL_AT_INDEX
    if (index < 0 || index >= countOf(array)) {
        rounds_.expectRefusal(badIndex, set);
        return;
    }
    Node* element = *at(array.elements, index);
    if (!element->isScalar()) {
        rounds_.expect({}, false, set);
    } else if (element->knows(typed)) {
        element->store(typed);
        rounds_.expect({element}, true, set);
    }
}

/// Adds the elements of another array that are missing. Each is a change of its own.
void Calls::addAll(Node& array) {
    const Node* other = anyOf(KELKind_Array);
    if (other == nullptr) {
        require(array.as<KEL_Array>().addVars(nullptr) == -1, "null is not added");
        return;
    }
    std::vector<Node*> rounds;
    for (std::size_t i = 0; i < other->elements.size(); ++i) { // both can be the same array
        if (!contains(array, other->elements[i])) {
            array.elements.push_back(other->elements[i]);
            rounds.push_back(&array);
        }
    }
    rounds_.expect(rounds, false, [&] { array.as<KEL_Array>().addVars(&other->as<KEL_Array>()); });
}

// ---- Managers ----------------------------------------------------------------------------------

void Calls::changeManager(Node& node) {
    auto& manager = node.as<KEL_Manager>();
    Node* value = any();
    const int choice = script_.below(6);
    if (choice == 3) {
        empty(node);
        return;
    }
    if (choice == 4) {
        createManaged(node);
        return;
    }
    if (choice == 5) {
        const int32_t place = anyIndex();
        const auto get = [&] {
            require(manager.getKelAt(place) == (*at(node.elements, place))->real,
                    "an element has its index");
        };
        if (place < 0 || place >= countOf(node)) {
            rounds_.expectRefusal("getKel: no such element", [&] { manager.getKelAt(place); });
        } else {
            rounds_.expect({}, false, get);
        }
        return;
    }
    if (value == nullptr) {
        rounds_.expect({}, false, [&manager] { manager.addKel(nullptr); });
        return;
    }
    JHashCode identity;
    value->real->getHashCode(identity);
    const int32_t index = indexOf(node, value);
    require(manager.containsKel(identity) == (index != -1), "an element is found");
    if (index == -1) {
        rounds_.expectRefusal("getKel: no such element", [&] { manager.getKel(identity); });
        rounds_.expectRefusal("getKel: no such element", [&] { manager.getKelBase(identity); });
    } else {
        require(manager.getKel(identity) == value->real &&
                    manager.getKelBase(identity) == value->real,
                "an element is found by its identity");
    }
    if (choice < 2) {
        if (index == -1) {
            node.elements.push_back(value);
        }
        rounds_.expect({&node}, false, [&manager, value] { manager.addKel(value->real); });
    } else if (index == -1) {
        rounds_.expectRefusal("removeKel: KEL not found.", [&] { manager.removeKel(identity); });
    } else {
        node.elements.erase(at(node.elements, index));
        rounds_.expect({&node}, false, [&] { manager.removeKel(identity); });
    }
}

/// Makes a value of any kind, which nobody else holds. The manager does not take it.
void Calls::createManaged(Node& manager) {
    auto& real = manager.as<KEL_Manager>();
    const int32_t kind = script_.below(64);
    const bool isGiven = script_.below(2) == 1;
    const JHashCode identity(script_.byte(), 1, 2, 3);
    const auto create = [&] {
        KEL* created = isGiven ? real.createKel(kind, identity) : real.createKel(kind);
        require(created->getType() == kind, "createKel makes a value of the kind");
        JHashCode own;
        require((created->getHashCode(own) == identity) == isGiven, "a value has its identity");
        require(created->release() == 0, "nobody else holds the value");
    };
    if (findKELKind(kind) == nullptr) {
        rounds_.expectRefusal("createKel: Unknown type.", create);
    } else {
        rounds_.expect({}, false, create);
    }
}

} // namespace kel::fuzz
