#include "calls/Calls.h"

#include "Property.h"

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
    if (node.kind == KELKind_Manager) {
        return true; // its copy has the same elements
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
        return !node.elements.empty() || !node.variables.empty();
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
    Node* made = nullptr;
    switch (script_.below(7)) {
    case 0: {
        const int32_t number = script_.byte() * 1000003;
        made = model_.add(KELKind_Int, CreateKELInt(number));
        made->number = number;
        break;
    }
    case 1:
    case 2:
        made = model_.add(KELKind_Array, CreateKELArray());
        break;
    case 3:
    case 4:
        made = model_.add(KELKind_Struct, CreateKELStruct());
        break;
    case 5:
        made = model_.add(KELKind_Manager, CreateKELManager());
        break;
    default: {
        Node* keys = anyOf(KELKind_Array);
        Node* items = anyOf(KELKind_Array);
        const bool isGiven = keys != nullptr && items != nullptr && script_.below(2) == 1;
        KEL* list = isGiven ? CreateKELIndexList(&keys->as<KEL_Array>(), &items->as<KEL_Array>())
                            : CreateKELIndexList();
        const bool isRefused =
            isGiven && (keys == items || keys->elements.size() != items->elements.size());
        require((list == nullptr) == isRefused, "a list has two arrays of one length");
        if (list == nullptr) {
            return;
        }
        made = model_.add(KELKind_IndexList, list);
        made->arrays = isGiven ? std::vector<Node*>{keys, items}
                               : std::vector<Node*>{model_.add(KELKind_Array, nullptr),
                                                    model_.add(KELKind_Array, nullptr)};
    }
    }
    put(place, made);
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
    case KELKind_Int:
        changeInt(*node);
        break;
    case KELKind_Array:
        changeArray(*node);
        break;
    case KELKind_Manager:
        changeManager(*node);
        break;
    case KELKind_Struct:
        changeStruct(*node);
        break;
    default:
        changeList(*node);
    }
}

void Calls::changeInt(Node& node) {
    const Node* other = anyOf(KELKind_Int);
    if (other != nullptr && script_.below(2) == 0) {
        node.number = other->number;
        rounds_.expect({&node}, true, [&] { node.real->assign(other->real); });
    } else {
        node.number = script_.byte();
        rounds_.expect({&node}, true, [&] { node.as<KEL_Int>().setValue(node.number); });
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
    case KELKind_Struct:
        node.variables.clear();
        rounds_.expect({&node}, true, [&node] { node.as<KEL_Struct>().removeAllVars(); });
        break;
    default:
        for (Node* array : node.arrays) {
            array->elements.clear();
        }
        rounds_.expect({node.arrays[0], node.arrays[1], &node}, false,
                       [&node] { node.as<KEL_IndexList>().removeAllPairs(); });
    }
}

Node* Calls::anyOf(int32_t kind) {
    Node* node = any();
    return node != nullptr && node->kind == kind ? node : nullptr;
}

std::string Calls::anyName() {
    constexpr const char* names[] = {
        "a", "b", "c", "", "quo\"te", "A name with many letters in it", "\xFF", "ab"};
    return names[script_.below(8)];
}

} // namespace kel::fuzz
