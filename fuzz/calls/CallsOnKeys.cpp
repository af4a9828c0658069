// The calls that find pairs of index lists by their keys and items.
#include "Property.h"
#include "calls/Calls.h"
#include "calls/Nodes.h"

#include <algorithm>

namespace kel::fuzz {

namespace {

constexpr const char* unknownKey = "Key not found in list.";
constexpr const char* unknownItem = "Item not found in list.";
constexpr const char* unknownValue = "Key value not found in list.";

/// Returns the first index of a key with equal contents, or -1.
int32_t indexOfValue(const Node& list, const KEL* wanted) {
    const auto& keys = list.arrays[0]->elements;
    for (int32_t i = 0; wanted != nullptr && i < list.pairs(); ++i) {
        if (wanted->equalsValue(keys[static_cast<std::size_t>(i)]->real)) {
            return i;
        }
    }
    return -1;
}

/// The texts of the Strings that the script makes.
std::string anyText(Script& script) {
    return std::to_string(script.byte());
}

/// A String that a search by text looks for.
class SearchedText {
public:
    explicit SearchedText(const std::string& text) : value_(CreateKELString(text.c_str())) {}
    SearchedText(const SearchedText&) = delete;
    SearchedText& operator=(const SearchedText&) = delete;
    ~SearchedText() { value_->release(); }
    KEL* get() const { return value_; }

private:
    KEL* value_;
};

} // namespace

void Calls::lookUp(Node& list) {
    auto& real = list.as<KEL_IndexList>();
    const Node* wanted = any();
    KEL* value = realOf(wanted);
    const int32_t key = indexInList(list, 0, wanted);
    const int32_t item = indexInList(list, 1, wanted);
    require(real.indexOfKey(value) == key && real.containsKey(value) == (key != -1),
            "a key is found by its identity");
    require(real.indexOfItem(value) == item && real.containsItem(value) == (item != -1),
            "an item is found by its identity");
    KEL* foundItem = nullptr;
    KEL* foundKey = nullptr;
    const auto getItem = [&] { foundItem = real.getItem(value); };
    const auto getKey = [&] { foundKey = real.getKey(value); };
    key == -1 && value != nullptr ? rounds_.expectRefusal(unknownKey, getItem) : getItem();
    item == -1 && value != nullptr ? rounds_.expectRefusal(unknownItem, getKey) : getKey();
    require(foundItem == realOf(inList(list, 1, key)), "a key has its item");
    require(foundKey == realOf(inList(list, 0, item)), "an item has its key");
    const int32_t index = anyIndex();
    if (index < 0 || index >= list.pairs()) {
        rounds_.expectRefusal(badIndex, [&] { real.getKeyAt(index); });
        rounds_.expectRefusal(badIndex, [&] { real.getItemAt(index); });
    } else {
        require(real.getKeyAt(index) == inList(list, 0, index)->real &&
                    real.getItemAt(index) == inList(list, 1, index)->real,
                "a pair has its index");
    }
}

void Calls::lookUpByValue(Node& list) {
    auto& real = list.as<KEL_IndexList>();
    const bool isText = script_.below(2) == 1;
    const std::string text = isText ? anyText(script_) : "";
    const SearchedText made(text);
    KEL* value = isText ? made.get() : realOf(any());
    const int32_t index = indexOfValue(list, value);
    require(real.indexOfKeyValue(value) == index && real.containsKeyValue(value) == (index != -1),
            "a key is found by its contents");
    require(!isText || real.containsKeyText(text.c_str()) == (index != -1),
            "a key is found by its text");
    KEL* item = nullptr;
    const auto get = [&] {
        item = isText ? real.getItemOfKeyText(text.c_str()) : real.getItemOfKeyValue(value);
    };
    index == -1 && value != nullptr ? rounds_.expectRefusal(unknownValue, get) : get();
    require(item == realOf(inList(list, 1, index)), "equal keys have the item of the first one");
}

/// Removes the pairs whose key has equal contents. After each removal the next pair is skipped.
void Calls::removePairsWith(Node& list, KEL* keyValue, const std::function<void()>& call) {
    if (keyValue == nullptr) {
        rounds_.expect({}, false, call);
        return;
    }
    std::vector<int32_t> matches;
    for (int32_t i = 0; i < list.pairs(); ++i) {
        if (keyValue->equalsValue(inList(list, 0, i)->real)) {
            matches.push_back(i++);
        }
    }
    if (matches.empty()) {
        rounds_.expectRefusal(unknownValue, call);
        return;
    }
    for (auto match = matches.rbegin(); match != matches.rend(); ++match) {
        for (Node* array : list.arrays) {
            array->elements.erase(at(array->elements, *match));
        }
    }
    rounds_.expect({list.arrays[0], list.arrays[1], &list}, false, call);
}

void Calls::removeByKey(Node& list) {
    auto& real = list.as<KEL_IndexList>();
    const int choice = script_.below(4);
    if (choice == 3) {
        const std::string text = anyText(script_);
        const SearchedText made(text);
        removePairsWith(list, made.get(), [&] { real.removeKeyText(text.c_str()); });
        return;
    }
    const Node* wanted = any();
    KEL* value = realOf(wanted);
    if (choice == 2) {
        removePairsWith(list, value, [&] { real.removeKeyValue(value); });
        return;
    }
    const auto remove = [&] { choice == 0 ? real.removeKey(value) : real.removeItem(value); };
    const int32_t index = indexInList(list, static_cast<std::size_t>(choice), wanted);
    if (wanted == nullptr) {
        rounds_.expect({}, false, remove);
    } else if (index == -1) {
        rounds_.expectRefusal(choice == 0 ? unknownKey : unknownItem, remove);
    } else {
        for (Node* array : list.arrays) {
            array->elements.erase(at(array->elements, index));
        }
        rounds_.expect({list.arrays[0], list.arrays[1], &list}, false, remove);
    }
}

/// Replaces an item that is found by its key, or a key that is found by its item.
void Calls::replaceByKey(Node& list) {
    auto& real = list.as<KEL_IndexList>();
    const int choice = script_.below(4);
    const std::string text = choice == 3 ? anyText(script_) : "";
    const SearchedText made(text);
    const Node* wanted = choice == 3 ? nullptr : any();
    KEL* value = choice == 3 ? made.get() : realOf(wanted);
    Node* replacement = any();
    KEL* replacing = realOf(replacement);
    const auto replace = [&] {
        switch (choice) {
        case 0:
            return real.setItemOfKey(value, replacing);
        case 1:
            return real.setKeyOfItem(value, replacing);
        case 2:
            return real.setItemOfKeyValue(value, replacing);
        default:
            return real.setItemOfKeyText(text.c_str(), replacing);
        }
    };
    const char* messages[] = {unknownKey, unknownItem, unknownValue, unknownValue};
    const int32_t index = choice < 2 ? indexInList(list, static_cast<std::size_t>(choice), wanted)
                                     : indexOfValue(list, value);
    if (value == nullptr || replacement == nullptr) {
        rounds_.expect({}, false, replace);
    } else if (index == -1) {
        rounds_.expectRefusal(messages[choice], replace);
    } else {
        Node* array = list.arrays[choice == 1 ? 0 : 1];
        *at(array->elements, index) = replacement;
        rounds_.expect({array, &list}, false, replace);
    }
}

/// Expects that a call gives all keys which equal a value contents of this kind. Each key that
/// changes notifies its own observers.
void Calls::expectKeysSet(Node& list, KEL& value, int32_t kind, const std::function<void()>& set,
                          const std::function<void(Node&)>& store) {
    std::vector<Node*> matches;
    bool isRefused = false;
    for (int32_t i = 0; i < list.pairs(); ++i) {
        Node* key = inList(list, 0, i);
        if (value.equalsValue(key->real)) {
            matches.push_back(key);
            isRefused = isRefused || key->kind != kind;
        }
    }
    if (matches.empty()) {
        rounds_.expectRefusal(unknownValue, set);
    } else if (isRefused) {
        rounds_.expectRefusal("Can't set the value when types are not equal!", set);
    } else {
        std::for_each(matches.begin(), matches.end(), [&](Node* key) { store(*key); });
        rounds_.expect(matches, false, set);
    }
}

void Calls::setKeys(Node& list) {
    auto& real = list.as<KEL_IndexList>();
    KEL* value = realOf(any());
    const Node* source = any();
    if (source != nullptr && !source->isScalar()) {
        return; // the model knows only the contents of scalars
    }
    const auto set = [&] { real.setKeyValue(value, realOf(source)); };
    if (value == nullptr || source == nullptr) {
        rounds_.expect({}, false, set);
        return;
    }
    expectKeysSet(list, *value, source->kind, set, [source](Node& key) {
        key.number = source->number;
        key.text = source->text;
    });
}

void Calls::setTypedKeys(Node& list) {
    auto& real = list.as<KEL_IndexList>();
    const Typed typed(script_);
    KEL* value = realOf(any());
#define KEL_FOR_VALUE(newValue) (value, newValue)
    const auto set = KEL_TYPED_CALL(typed, real, setKey, KEL_FOR_VALUE);
#undef KEL_FOR_VALUE
    if (value == nullptr) {
        rounds_.expect({}, false, set);
        return;
    }
    expectKeysSet(list, *value, typed.kind(), set, [&typed](Node& key) { key.store(typed); });
}

/// Appends a pair of which the key, the item or both are made by the call.
void Calls::addTypedPair(Node& list) {
    auto& real = list.as<KEL_IndexList>();
    const int choice = script_.below(3);
    const Typed typed(script_);
    const std::string name = anyText(script_);
    Node* given = choice == 2 ? nullptr : any();
    KEL* held = realOf(given);
#define KEL_AND_ITEM(value) (value, held)
#define KEL_KEY_AND(value) (held, value)
#define KEL_NAME_AND(value) (name.c_str(), value)
    const auto addKey = KEL_TYPED_CALL(typed, real, addKey, KEL_AND_ITEM);
    const auto addItem = KEL_TYPED_CALL(typed, real, addItem, KEL_KEY_AND);
    const auto addNamed = KEL_TYPED_CALL(typed, real, addNamed, KEL_NAME_AND);
#undef KEL_AND_ITEM
#undef KEL_KEY_AND
#undef KEL_NAME_AND
    const bool isAdded = choice == 2 || given != nullptr;
    const int32_t end = list.pairs();
    std::vector<Node*> changed;
    if (isAdded) {
        Node* made = model_.addMade(typed);
        Node* key = choice == 0   ? made
                    : choice == 1 ? given
                                  : model_.addMade(KELKind_String, 0, name);
        Node* item = choice == 0 ? given : made;
        list.arrays[0]->elements.insert(at(list.arrays[0]->elements, end), key);
        list.arrays[1]->elements.insert(at(list.arrays[1]->elements, end), item);
        changed = {list.arrays[0], list.arrays[1], &list};
    }
    rounds_.expect(changed, false, [&] {
        const int32_t result = choice == 0 ? addKey() : choice == 1 ? addItem() : addNamed();
        require(result == (isAdded ? end : -1), "a typed pair is appended");
    });
}

} // namespace kel::fuzz
