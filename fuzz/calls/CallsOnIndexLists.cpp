// The calls that change index lists.
#include "Property.h"
#include "calls/Calls.h"
#include "calls/Nodes.h"

namespace kel::fuzz {

void Calls::changeList(Node& node) {
    auto& list = node.as<KEL_IndexList>();
    auto& keys = node.arrays[0]->elements;
    auto& items = node.arrays[1]->elements;
    const std::vector<Node*> all{node.arrays[0], node.arrays[1], &node};
    const int32_t index = anyIndex();
    const bool isInside = index >= 0 && index < node.pairs();
    switch (script_.below(14)) {
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
    case 6:
        lookUp(node);
        break;
    case 7:
        lookUpByValue(node);
        break;
    case 8:
        removeByKey(node);
        break;
    case 9:
        replaceByKey(node);
        break;
    case 10:
        setKeys(node);
        break;
    case 11:
        setTypedKeys(node);
        break;
    case 12:
        addTypedPair(node);
        break;
    default:
        empty(node);
    }
}

void Calls::insertPair(Node& list, int32_t index) {
    Node* key = any();
    Node* item = any();
    auto& real = list.as<KEL_IndexList>();
    if (index == -1) { // the end
        const bool isAdded = key != nullptr && item != nullptr;
        const int32_t end = list.pairs();
        const int32_t result = isAdded ? end : -1;
        std::vector<Node*> changed;
        if (isAdded) {
            list.arrays[0]->elements.insert(at(list.arrays[0]->elements, end), key);
            list.arrays[1]->elements.insert(at(list.arrays[1]->elements, end), item);
            changed = {list.arrays[0], list.arrays[1], &list};
        }
        rounds_.expect(changed, false, [&real, key, item, result] {
            require(real.addPair(realOf(key), realOf(item)) == result, "addPair returns the index");
        });
        return;
    }
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
