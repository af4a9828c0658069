// The calls that change structs, and what checked structs and descriptors have in common with them.
#include "Property.h"
#include "calls/Calls.h"
#include "calls/Nodes.h"

namespace kel::fuzz {

namespace {

constexpr const char* unknownToChange =
    "KEL_Struct_Impl. Cannot remove variable - name does not exist.";
constexpr const char* quote = "KEL_Struct key can't contain a \"";

bool hasQuote(const std::string& name) {
    return name.find('"') != std::string::npos;
}

} // namespace

/// Returns the rounds of a call that changes the struct so often. A kind that is built on a struct
/// notifies once.
std::vector<Node*> Calls::rounds(Node& structure, std::size_t changes) const {
    return std::vector<Node*>(
        structure.isBuiltOnStruct() ? std::min<std::size_t>(changes, 1) : changes, &structure);
}

void Calls::changeStruct(Node& node) {
    const std::string name = anyName(node);
    switch (script_.below(10)) {
    case 0:
    case 1:
    case 2:
        addVariable(node, name, any());
        break;
    case 3:
        setVariable(node, name);
        break;
    case 4:
        setTyped(node, name);
        break;
    case 5:
        renameVariable(node, name);
        break;
    case 6:
        removeVariable(node, name);
        break;
    case 7:
        addMissing(node);
        break;
    case 8:
        putTyped(node, name);
        break;
    default:
        empty(node);
    }
}

void Calls::removeVariable(Node& structure, const std::string& name) {
    const auto remove = [&] { structure.as<KEL_Struct>().removeVar(name.c_str()); };
    if (name.empty()) {
        rounds_.expect({}, false, remove);
    } else if (structure.variables.erase(name) == 0) {
        rounds_.expectRefusal(unknownToChange, remove);
    } else {
        rounds_.expect({&structure}, !structure.isBuiltOnStruct(), remove);
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
        rounds_.expect(rounds(structure, isNew ? 1 : 2), isNew && !structure.isBuiltOnStruct(),
                       add);
    }
}

/// Stores a scalar that the call makes.
void Calls::putTyped(Node& structure, const std::string& name) {
    auto& real = structure.as<KEL_Struct>();
    const Typed typed(script_);
#define KEL_NAMED(value) (name.c_str(), value)
    const auto put = KEL_TYPED_CALL(typed, real, put, KEL_NAMED);
#undef KEL_NAMED
    if (name.empty()) {
        rounds_.expect({}, false, put);
    } else if (hasQuote(name)) {
        rounds_.expectRefusal(quote, put);
    } else {
        const bool isNew = structure.variables.insert_or_assign(name, model_.addMade(typed)).second;
        rounds_.expect(rounds(structure, isNew ? 1 : 2), false, put);
    }
}

/// Replaces a value. A plain struct notifies nobody.
void Calls::setVariable(Node& structure, const std::string& name) {
    Node* value = any();
    const auto set = [&] { structure.as<KEL_Struct>().setVar(name.c_str(), realOf(value)); };
    if (name.empty()) {
        rounds_.expect({}, false, set);
    } else if (structure.variables.contains(name)) {
        structure.variables[name] = value;
        rounds_.expect(rounds(structure, structure.isBuiltOnStruct() ? 1 : 0), false, set);
    } else {
        rounds_.expectRefusal(unknownToChange, set);
    }
}

/// Changes a value in place, which notifies its own observers. A variable that holds null gets a
/// new value instead.
void Calls::setTyped(Node& structure, const std::string& name) {
    auto& real = structure.as<KEL_Struct>();
    const Typed typed(script_);
#define KEL_NAMED(value) (name.c_str(), value)
    const auto set = KEL_TYPED_CALL(typed, real, set, KEL_NAMED);
#undef KEL_NAMED
    const auto found = structure.variables.find(name);
    Node* value = found == structure.variables.end() ? nullptr : found->second;
    if (name.empty()) {
        rounds_.expect({}, false, set);
    } else if (found == structure.variables.end()) {
        rounds_.expectRefusal(unknownToChange, set);
    } else if (value == nullptr) {
        found->second = model_.addMade(typed);
        rounds_.expect(rounds(structure, 2), false, set);
    } else if (!value->isScalar()) {
        rounds_.expect({}, false, set);
    } else if (value->knows(typed)) {
        value->store(typed);
        structure.isBuiltOnStruct() ? rounds_.expect({value, &structure}, false, set)
                                    : rounds_.expect({value}, true, set);
    }
}

void Calls::renameVariable(Node& structure, const std::string& name) {
    const std::string newName = anyName(structure);
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
        rounds_.expect({&structure}, !structure.isBuiltOnStruct(), rename);
    }
}

/// Adds the variables of another struct whose names are missing. Each is a change of its own.
void Calls::addMissing(Node& structure) {
    const Node* other = any();
    if (other == nullptr || !other->isStruct()) {
        require(structure.as<KEL_Struct>().addVars(nullptr) == -1, "null is not added");
        return;
    }
    const std::size_t before = structure.variables.size();
    if (other != &structure) {
        structure.variables.insert(other->variables.begin(), other->variables.end());
    }
    rounds_.expect(rounds(structure, structure.variables.size() - before), false,
                   [&] { structure.as<KEL_Struct>().addVars(&other->as<KEL_Struct>()); });
}

} // namespace kel::fuzz
