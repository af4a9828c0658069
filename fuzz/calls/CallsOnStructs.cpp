// The calls that change structs.
#include "Property.h"
#include "calls/Calls.h"

namespace kel::fuzz {

namespace {

constexpr const char* unknownToChange =
    "KEL_Struct_Impl. Cannot remove variable - name does not exist.";
constexpr const char* quote = "KEL_Struct key can't contain a \"";

bool hasQuote(const std::string& name) {
    return name.find('"') != std::string::npos;
}

KEL* realOf(const Node* node) {
    return node == nullptr ? nullptr : node->real;
}

} // namespace

void Calls::changeStruct(Node& node) {
    auto& structure = node.as<KEL_Struct>();
    const std::string name = anyName();
    switch (script_.below(9)) {
    case 0:
    case 1:
    case 2:
        addVariable(node, name, any());
        break;
    case 3:
        setVariable(node, name);
        break;
    case 4:
        setNumber(node, name);
        break;
    case 5:
        renameVariable(node, name);
        break;
    case 6: {
        const auto remove = [&] { structure.removeVar(name.c_str()); };
        if (name.empty()) {
            rounds_.expect({}, false, remove);
        } else if (node.variables.erase(name) == 0) {
            rounds_.expectRefusal(unknownToChange, remove);
        } else {
            rounds_.expect({&node}, true, remove);
        }
        break;
    }
    case 7:
        addMissing(node);
        break;
    default:
        empty(node);
    }
}

/// Stores a value under a name. Storing under an existing name is two changes.
void Calls::addVariable(Node& structure, const std::string& name, Node* value) {
    const auto add = [&] { structure.as<KEL_Struct>().addVar(name.c_str(), realOf(value)); };
    if (name.empty()) {
        rounds_.expect({}, false, add);
    } else if (hasQuote(name)) {
        rounds_.expectRefusal(quote, add);
    } else {
        const bool isNew = structure.variables.insert_or_assign(name, value).second;
        rounds_.expect(std::vector<Node*>(isNew ? 1 : 2, &structure), isNew, add);
    }
}

/// Replaces a value, which notifies nobody.
void Calls::setVariable(Node& structure, const std::string& name) {
    Node* value = any();
    const auto set = [&] { structure.as<KEL_Struct>().setVar(name.c_str(), realOf(value)); };
    if (name.empty()) {
        rounds_.expect({}, false, set);
    } else if (structure.variables.contains(name)) {
        structure.variables[name] = value;
        rounds_.expect({}, false, set);
    } else {
        rounds_.expectRefusal(unknownToChange, set);
    }
}

/// Changes a value in place, which notifies its own observers. A variable that holds null gets a
/// new value instead.
void Calls::setNumber(Node& structure, const std::string& name) {
    const int32_t number = script_.byte();
    const auto set = [&] { structure.as<KEL_Struct>().setInt(name.c_str(), number); };
    const auto found = structure.variables.find(name);
    if (name.empty()) {
        rounds_.expect({}, false, set);
    } else if (found == structure.variables.end()) {
        rounds_.expectRefusal(unknownToChange, set);
    } else if (found->second == nullptr) {
        found->second = model_.add(KELKind_Int, nullptr);
        found->second->number = number;
        rounds_.expect({&structure, &structure}, false, set);
    } else if (found->second->kind == KELKind_Int) {
        found->second->number = number;
        rounds_.expect({found->second}, true, set);
    } else {
        rounds_.expect({}, false, set);
    }
}

void Calls::renameVariable(Node& structure, const std::string& name) {
    const std::string newName = anyName();
    const auto rename = [&] {
        structure.as<KEL_Struct>().renameVar(name.c_str(), newName.c_str());
    };
    if (name.empty() || newName.empty()) {
        rounds_.expect({}, false, rename);
    } else if (hasQuote(newName)) {
        rounds_.expectRefusal(quote, rename);
    } else if (!structure.variables.contains(name)) {
        rounds_.expectRefusal("KEL_Struct: Cannot rename variable - name does not exist.", rename);
    } else if (structure.variables.contains(newName)) {
        rounds_.expectRefusal("KEL_Struct: Cannot rename variable - new name already exists.",
                              rename);
    } else {
        auto variable = structure.variables.extract(name);
        variable.key() = newName;
        structure.variables.insert(std::move(variable));
        rounds_.expect({&structure}, true, rename);
    }
}

/// Adds the variables of another struct whose names are missing. Each is a change of its own.
void Calls::addMissing(Node& structure) {
    const Node* other = anyOf(KELKind_Struct);
    if (other == nullptr) {
        require(structure.as<KEL_Struct>().addVars(nullptr) == -1, "null is not added");
        return;
    }
    const std::size_t before = structure.variables.size();
    if (other != &structure) {
        structure.variables.insert(other->variables.begin(), other->variables.end());
    }
    rounds_.expect(std::vector<Node*>(structure.variables.size() - before, &structure), false,
                   [&] { structure.as<KEL_Struct>().addVars(&other->as<KEL_Struct>()); });
}

} // namespace kel::fuzz
