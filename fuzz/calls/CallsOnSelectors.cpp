// The calls on selectors and multi-selectors.
#include "Property.h"
#include "calls/Calls.h"
#include "calls/Nodes.h"

#include <utility>

namespace kel::fuzz {

namespace {

constexpr const char* unknownKey = "Key not found in list.";

/// Returns the first key of the list that equals a value, as a number, or -1.
int32_t indexOfEqualKey(const Node& list, const Node& value) {
    for (int32_t i = 0; i < list.pairs(); ++i) {
        if (value.real->equalsValue(inList(list, 0, i)->real)) {
            return i;
        }
    }
    return -1;
}

/// Returns the key of an item of the list; null if the item is not in the list.
Node* keyOf(const Node& list, const Node* item) {
    return inList(list, 0, indexInList(list, 1, item));
}

} // namespace

// ---- Selectors ---------------------------------------------------------------------------------

void Calls::changeSelector(Node& node) {
    auto& selector = node.as<KEL_Selector>();
    Node* value = any();
    KEL* real = realOf(value);
    const auto choose = [&](Node* key, bool isDone, const std::function<bool()>& call) {
        std::vector<Node*> changed;
        if (isDone && node.selection != key) {
            node.selection = key;
            changed.push_back(&node);
        }
        rounds_.expect(changed, false,
                       [&] { require(call() == isDone, "a selection succeeds or not"); });
    };
    switch (script_.below(6)) {
    case 0: {
        const bool isKey = indexInList(*node.list, 0, value) != -1;
        choose(value, value == nullptr || isKey, [&] { return selector.selectKey(real); });
        break;
    }
    case 1: {
        Node* key = keyOf(*node.list, value);
        choose(key, key != nullptr, [&] { return selector.selectItem(real); });
        break;
    }
    case 2: {
        const bool isFirst = script_.below(2) == 0;
        choose(nullptr, true,
               [&] { return isFirst ? selector.clearSelection() : selector.deselect(); });
        break;
    }
    case 3:
        setList(selector, node, value);
        break;
    default:
        lookAtSelection(node);
    }
}

template <class Selector> void Calls::setList(Selector& selector, Node& node, Node* value) {
    Node* list = value != nullptr && value->kind == KELKind_IndexList ? value : nullptr;
    std::vector<Node*> changed;
    if (list != nullptr && list != node.list) {
        node.list = list;
        changed.push_back(&node);
    }
    rounds_.expect(changed, false, [&selector, list] {
        selector.setList(list == nullptr ? nullptr : &list->as<KEL_IndexList>());
    });
}

void Calls::lookAtSelection(Node& selector) {
    auto& real = selector.as<KEL_Selector>();
    const Node* key = selector.selection;
    const Node& list = *selector.list;
    const Node* asked = any();
    const int32_t index = key == nullptr ? -1 : indexInList(list, 0, key);
    const int32_t equal = key == nullptr ? -1 : indexOfEqualKey(list, *key);
    require(std::as_const(real).getSelectedKey() == realOf(key), "the selected key is returned");
    require(real.isSelectedKey(realOf(asked)) == (asked == key), "the selected key is known");
    require(
        real.isSelectedItem(realOf(asked)) ==
            (key == nullptr ? asked == nullptr : index != -1 && asked == inList(list, 1, index)),
        "the selected item is known");
    KEL* item = nullptr;
    const auto get = [&] { item = real.getSelectedItem(); };
    key != nullptr&& index == -1 ? rounds_.expectRefusal(unknownKey, get) : get();
    require(item == realOf(inList(list, 1, index)), "the selected item is returned");
    item = nullptr;
    const auto getByValue = [&] { item = real.getSelectedItemByKeyValue(); };
    key != nullptr&& equal == -1 ? rounds_.expectRefusal("Key value not found in list.", getByValue)
                                 : getByValue();
    require(item == realOf(inList(list, 1, equal)), "the item of an equal key is returned");
}

// ---- Multi-selectors ---------------------------------------------------------------------------

/// Adds a key to the selection; null is not in the list.
void Calls::select(Node& selector, Node* key, const std::function<void()>& call) {
    Node& keys = *selector.arrays[0];
    std::vector<Node*> changed;
    if (key != nullptr && !contains(keys, key)) {
        keys.elements.push_back(key);
        changed = {&keys, &selector};
    }
    rounds_.expect(changed, false, call);
}

/// Removes a key from the selection; null is not selected.
void Calls::deselect(Node& selector, Node* key, const std::function<void()>& call) {
    Node& keys = *selector.arrays[0];
    const int32_t index = indexOf(keys, key);
    std::vector<Node*> changed;
    if (index != -1) {
        keys.elements.erase(at(keys.elements, index));
        changed = {&keys, &selector};
    }
    rounds_.expect(changed, false, call);
}

void Calls::changeMultiSelector(Node& node) {
    auto& selector = node.as<KEL_MultiSelector>();
    Node& keys = *node.arrays[0];
    Node* value = any();
    KEL* real = realOf(value);
    Node* keyOfItem = keyOf(*node.list, value);
    const bool wasSelected = contains(keys, value);
    const bool wasItemSelected = keyOfItem != nullptr && contains(keys, keyOfItem);
    switch (script_.below(8)) {
    case 0:
    case 1: {
        Node* key = indexInList(*node.list, 0, value) == -1 ? nullptr : value;
        const bool isDone = key != nullptr;
        select(node, key, [&selector, real, isDone] {
            require(selector.selectKey(real) == isDone, "a key of the list is selected");
        });
        break;
    }
    case 2: {
        const bool isDone = keyOfItem != nullptr;
        select(node, keyOfItem, [&selector, real, isDone] {
            require(selector.selectItem(real) == isDone, "an item of the list is selected");
        });
        break;
    }
    case 3:
        deselect(node, value, [&selector, real, wasSelected] {
            require(selector.deselectKey(real) == wasSelected, "a selected key is deselected");
        });
        break;
    case 4:
        deselect(node, keyOfItem, [&selector, real, wasItemSelected] {
            require(selector.deselectItem(real) == wasItemSelected, "an item is deselected");
        });
        break;
    case 5: {
        const bool isFirst = script_.below(2) == 0;
        const bool changes = !keys.elements.empty();
        keys.elements.clear();
        rounds_.expect(
            changes ? std::vector<Node*>{&keys, &node} : std::vector<Node*>{&keys}, false,
            [&selector, isFirst] { isFirst ? selector.clearSelection() : selector.deselectAll(); });
        break;
    }
    case 6:
        setList(selector, node, value);
        break;
    default:
        lookAtSelectedKeys(node);
    }
}

void Calls::lookAtSelectedKeys(Node& selector) {
    auto& real = selector.as<KEL_MultiSelector>();
    const Node& keys = *selector.arrays[0];
    const Node& list = *selector.list;
    const Node* asked = any();
    const Node* key = keyOf(list, asked);
    require(real.isKeySelected(realOf(asked)) ==
                (asked == nullptr ? keys.elements.empty() : contains(keys, asked)),
            "a selected key is known");
    require(real.isItemSelected(realOf(asked)) ==
                (asked == nullptr ? keys.elements.empty() : key != nullptr && contains(keys, key)),
            "a selected item is known");
    const bool hasLeft =
        std::any_of(keys.elements.begin(), keys.elements.end(),
                    [&list](const Node* selected) { return indexInList(list, 0, selected) == -1; });
    if (hasLeft) {
        rounds_.expectRefusal(unknownKey, [&] { real.getSelectedItems(); });
        return;
    }
    KEL_Array* items = real.getSelectedItems();
    require(items->getCount() == countOf(keys), "each selected key has an item");
    for (int32_t i = 0; i < countOf(keys); ++i) {
        const Node* selected = *at(keys.elements, i);
        require(items->getVar(i) == realOf(inList(list, 1, indexInList(list, 0, selected))),
                "items are in the order of the selected keys");
    }
    require(items->release() == 0, "nobody else holds the array of items");
}

} // namespace kel::fuzz
