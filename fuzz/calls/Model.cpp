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
    for (Node* other : {node.list, node.selection}) {
        if (other != nullptr) {
            visit(other);
        }
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
    require(node.real->getType() == node.kind, "a value has its kind");
    switch (node.kind) {
    case KELKind_Int:
    case KELKind_Boolean:
    case KELKind_Double:
        require(node.real->toDouble() == node.number, "a number has its value");
        break;
    case KELKind_guid: {
        JHashCode value;
        require(node.real->toGuid(value) == JHashCode(static_cast<uint32_t>(node.number)),
                "a guid has its value");
        break;
    }
    case KELKind_String:
        requireSame(node.as<KEL_String>().getValue(), node.text, "a String has its text");
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
    case KELKind_Struct:
    case KELKind_MetaKel:
    case KELKind_MetaKelDescriptor:
    case KELKind_MetaKelVarDescriptor: {
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
    case KELKind_Selector: {
        auto& selector = node.as<KEL_Selector>();
        requireShown(*node.list, selector.getList());
        require(selector.getSelectedKey() ==
                    (node.selection == nullptr ? nullptr : node.selection->real),
                "a selector has its key");
        break;
    }
    case KELKind_MultiSelector: {
        auto& selector = node.as<KEL_MultiSelector>();
        requireShown(*node.list, selector.getList());
        requireShown(*node.arrays[0], selector.getSelectedKeys());
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

bool Node::isScalar() const {
    return kind == KELKind_Int || kind == KELKind_Boolean || kind == KELKind_Double ||
           kind == KELKind_guid || kind == KELKind_String;
}

bool Node::knows(const Typed& typed) const {
    return !isScalar() || typed.kind() == kind || typed.kind() == KELKind_Int;
}

void Node::store(const Typed& typed) {
    if (kind == KELKind_String) {
        text = typed.text;
    } else if (isScalar()) {
        number = kind == KELKind_Boolean ? (typed.number != 0 ? 1 : 0) : typed.number;
    }
}

Node* Node::variable(const std::string& name) const {
    const auto found = variables.find(name);
    return found == variables.end() ? nullptr : found->second;
}

Node* Model::addMade(const Typed& typed) {
    return addMade(typed.kind(), typed.number, typed.text);
}

Node* Model::addMade(int32_t kind, double number, const std::string& text) {
    Node* made = add(kind, nullptr);
    made->number = number;
    made->text = text;
    return made;
}

Node* Model::addList(KEL* real) {
    Node* made = add(KELKind_IndexList, real);
    made->arrays = {add(KELKind_Array, nullptr), add(KELKind_Array, nullptr)};
    return made;
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
