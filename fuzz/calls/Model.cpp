#include "calls/Model.h"

#include "Property.h"

#include <algorithm>

namespace kel::fuzz {

namespace {

/// Calls visit with each node that the node holds, as often as it holds it.
template <class Visit> void forEachHeld(const Node& node, const Visit& visit) {
    for (Node* element : node.elements) {
        visit(element);
    }
    for (const auto& [name, value] : node.variables) {
        if (value != nullptr) {
            visit(value);
        }
    }
    for (Node* array : node.arrays) {
        visit(array);
    }
}

/// Requires that a container shows the value of the node.
void requireShown(Node& node, KEL* shown) {
    if (node.real == nullptr) {
        node.real = shown; // a call made the value
    }
    require(shown == node.real, "a container holds its values in order");
}

/// Requires that the value has the contents of the node.
void verifyContents(Node& node) {
    switch (node.kind) {
    case KELKind_Int:
        require(node.real->toInt() == node.number, "an Int has its number");
        break;
    case KELKind_Array: {
        auto& array = node.as<KEL_Array>();
        require(array.getCount() == static_cast<int32_t>(node.elements.size()),
                "an array has its count");
        for (int32_t i = 0; i < array.getCount(); ++i) {
            requireShown(*node.elements[static_cast<std::size_t>(i)], array.getVar(i));
        }
        break;
    }
    case KELKind_Manager: {
        auto& manager = node.as<KEL_Manager>();
        require(manager.size() == static_cast<int32_t>(node.elements.size()),
                "a manager has its size");
        for (int32_t i = 0; i < manager.size(); ++i) {
            requireShown(*node.elements[static_cast<std::size_t>(i)], manager.getKelAt(i));
        }
        break;
    }
    case KELKind_Struct: {
        const auto& variables = node.as<KELInterface_Struct_V2>();
        require(variables.getCount() == static_cast<int32_t>(node.variables.size()),
                "a struct has its count");
        KELVarCursor cursor;
        for (const auto& [name, value] : node.variables) {
            require(variables.nextVar(cursor), "a walk visits every variable");
            requireSame(cursor.name, name, "a walk visits the names in order");
            require((cursor.value == nullptr) == (value == nullptr), "a variable has its value");
            if (value != nullptr) {
                requireShown(*value, cursor.value);
            }
        }
        require(!variables.nextVar(cursor), "a walk ends after the last variable");
        break;
    }
    case KELKind_IndexList: {
        auto& list = node.as<KEL_IndexList>();
        requireShown(*node.arrays[0], list.getKeys());
        requireShown(*node.arrays[1], list.getItems());
        require(list.getCount() == node.pairs(), "a list has its count");
        break;
    }
    default:
        fail("the model knows the kind");
    }
}

} // namespace

int32_t Node::pairs() const {
    return static_cast<int32_t>(std::min(arrays[0]->elements.size(), arrays[1]->elements.size()));
}

Node* Model::add(int32_t kind, KEL* real) {
    Node& node = nodes_.emplace_back();
    node.kind = kind;
    node.real = real;
    return &node;
}

void Model::settle(const std::vector<Node*>& pinned) {
    do {
        count(pinned);
    } while (std::erase_if(nodes_, [](const Node& node) { return node.count == 0; }) > 0);
}

void Model::count(const std::vector<Node*>& pinned) {
    const auto add = [](Node* node) {
        if (node != nullptr) {
            ++node->count;
        }
    };
    for (Node& node : nodes_) {
        node.count = 0;
    }
    std::for_each(places.begin(), places.end(), add);
    std::for_each(pinned.begin(), pinned.end(), add);
    for (const Node& node : nodes_) {
        forEachHeld(node, add);
    }
}

int Model::countOf(const Node& node) {
    count();
    return node.count;
}

void Model::verify() {
    // Every round shows the values in the containers that are known already.
    for (bool isKnown = false; !isKnown;) {
        isKnown = true;
        for (Node& node : nodes_) {
            isKnown = isKnown && node.real != nullptr;
            if (node.real != nullptr) {
                verifyContents(node);
            }
        }
    }
    count();
    for (const Node& node : nodes_) {
        node.real->addRef();
        require(node.real->release() == node.count, "every count is exact");
    }
}

} // namespace kel::fuzz
