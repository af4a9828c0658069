// The calls that change arrays, managers and index lists.
#include "Property.h"
#include "calls/Calls.h"

#include <algorithm>

namespace kel::fuzz {

namespace {

constexpr const char* badIndex = "Array index out of bounds.";

template <class Held> auto at(Held& elements, int32_t index) {
    return elements.begin() + index;
}

int32_t countOf(const Node& array) {
    return static_cast<int32_t>(array.elements.size());
}

KEL* realOf(const Node* node) {
    return node == nullptr ? nullptr : node->real;
}

bool contains(const Node& array, const Node* element) {
    return std::find(array.elements.begin(), array.elements.end(), element) != array.elements.end();
}

int32_t indexOf(const Node& array, const Node* element) {
    const auto found = std::find(array.elements.begin(), array.elements.end(), element);
    return found == array.elements.end() ? -1
                                         : static_cast<int32_t>(found - array.elements.begin());
}

} // namespace

// ---- Arrays ------------------------------------------------------------------------------------

void Calls::changeArray(Node& node) {
    auto& array = node.as<KEL_Array>();
    const int32_t index = anyIndex();
    const bool isInside = index >= 0 && index < countOf(node);
    switch (script_.below(9)) {
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
        break;
    }
    default:
        empty(node);
    }
}

/// Replaces the element, or changes it in place: then its own observers are notified.
void Calls::setElement(Node& array, int32_t index) {
    auto& real = array.as<KEL_Array>();
    const bool isInPlace = script_.below(2) == 1;
    Node* value = isInPlace ? nullptr : any();
    const auto set = [&real, index, value, isInPlace] {
        isInPlace ? real.setInt(index, int32_t{77}) : real.setVar(realOf(value), index);
    };
    if (index < 0 || index >= countOf(array)) {
        rounds_.expectRefusal(badIndex, set);
        return;
    }
    Node*& element = *at(array.elements, index);
    if (isInPlace && element->kind == KELKind_Int) {
        element->number = 77;
        rounds_.expect({element}, true, set);
    } else if (value != nullptr) {
        element = value;
        rounds_.expect({&array}, true, set);
    } else {
        rounds_.expect({}, false, set);
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
    const int choice = script_.below(4);
    if (choice == 3) {
        empty(node);
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

// ---- Index lists -------------------------------------------------------------------------------

void Calls::changeList(Node& node) {
    auto& list = node.as<KEL_IndexList>();
    auto& keys = node.arrays[0]->elements;
    auto& items = node.arrays[1]->elements;
    const std::vector<Node*> all{node.arrays[0], node.arrays[1], &node};
    const int32_t index = anyIndex();
    const bool isInside = index >= 0 && index < node.pairs();
    switch (script_.below(7)) {
    case 0:
    case 1:
        insertPair(node, index);
        break;
    case 2: {
        const auto remove = [&list, index] { list.removePair(index); };
        if (isInside) {
            keys.erase(at(keys, index));
            items.erase(at(items, index));
            rounds_.expect(all, false, remove);
        } else {
            rounds_.expectRefusal(badIndex, remove);
        }
        break;
    }
    case 3: {
        const int32_t other = anyIndex();
        const auto swap = [&list, index, other] { list.swapPairs(index, other); };
        if (isInside && other >= 0 && other < node.pairs()) {
            std::swap(*at(keys, index), *at(keys, other));
            std::swap(*at(items, index), *at(items, other));
            rounds_.expect(all, false, swap);
        } else {
            rounds_.expectRefusal(badIndex, swap);
        }
        break;
    }
    case 4:
        setItem(node, index);
        break;
    case 5:
        addPairs(node);
        break;
    default:
        empty(node);
    }
}

void Calls::insertPair(Node& list, int32_t index) {
    Node* key = any();
    Node* item = any();
    auto& real = list.as<KEL_IndexList>();
    const auto insert = [&real, key, item, index] {
        real.insertPair(realOf(key), realOf(item), index);
    };
    if (index < 0 || index > list.pairs()) {
        rounds_.expectRefusal(badIndex, insert);
    } else if (key == nullptr || item == nullptr) {
        rounds_.expect({}, false, insert);
    } else {
        auto& keys = list.arrays[0]->elements;
        auto& items = list.arrays[1]->elements;
        keys.insert(at(keys, index), key);
        items.insert(at(items, index), item);
        rounds_.expect({list.arrays[0], list.arrays[1], &list}, false, insert);
    }
}

void Calls::setItem(Node& list, int32_t index) {
    Node* item = any();
    auto& real = list.as<KEL_IndexList>();
    const auto set = [&real, item, index] { real.setItemAt(index, realOf(item)); };
    if (index < 0 || index >= list.pairs()) {
        rounds_.expectRefusal(badIndex, set);
    } else if (item == nullptr) {
        rounds_.expect({}, false, set);
    } else {
        *at(list.arrays[1]->elements, index) = item;
        rounds_.expect({list.arrays[1], &list}, false, set);
    }
}

/// Adds the pairs of another list whose keys are missing. Each is a change of both arrays and of
/// the list. The pairs are collected first.
void Calls::addPairs(Node& list) {
    const Node* other = anyOf(KELKind_IndexList);
    if (other == nullptr) {
        return;
    }
    std::vector<Node*> keys = other->arrays[0]->elements;
    const std::vector<Node*> items = other->arrays[1]->elements;
    keys.resize(static_cast<std::size_t>(other->pairs()));
    const auto containsKey = [&list](const Node* key) {
        const int32_t index = indexOf(*list.arrays[0], key);
        return index != -1 && index < list.pairs();
    };
    std::vector<bool> isMissing;
    for (const Node* key : keys) {
        isMissing.push_back(!containsKey(key));
    }
    std::vector<Node*> rounds;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (isMissing[i] && !containsKey(keys[i])) {
            const int32_t end = list.pairs();
            auto& ownKeys = list.arrays[0]->elements;
            auto& ownItems = list.arrays[1]->elements;
            ownKeys.insert(at(ownKeys, end), keys[i]);
            ownItems.insert(at(ownItems, end), items[i]);
            rounds.insert(rounds.end(), {list.arrays[0], list.arrays[1], &list});
        }
    }
    rounds_.expect(rounds, false,
                   [&] { list.as<KEL_IndexList>().addPairs(&other->as<KEL_IndexList>()); });
}

} // namespace kel::fuzz
