// The calls on checked structs that differ from those on structs.
#include "Property.h"
#include "calls/Calls.h"
#include "calls/Rules.h"

namespace kel::fuzz {

namespace {

constexpr const char* reserved = "Variable names beginning with '@' are reserved.";
constexpr const char* quote = "KEL_Struct key can't contain a \"";
constexpr const char* unknown = "KEL_Struct_Impl. Cannot remove variable - name does not exist.";

bool hasQuote(const std::string& name) {
    return name.find('"') != std::string::npos;
}

/// How a checked add ends.
enum class Addition { nothing, value, null };

Addition additionOf(const Node& checked, const std::string& name, const Node* value,
                    const Node* rules) {
    if (value == nullptr || checked.variables.contains(name)) {
        return Addition::nothing;
    }
    if (isValid(rules, value->real)) {
        return Addition::value;
    }
    return rules->variables.contains("default") ? Addition::null : Addition::nothing;
}

} // namespace

void Calls::changeChecked(Node& node) {
    auto& checked = node.as<MetaKel>();
    const std::string name = anyName(node);
    switch (script_.below(12)) {
    case 0:
    case 1:
        addChecked(node, name, any());
        break;
    case 2:
        setChecked(node, name, any());
        break;
    case 3:
        getChecked(node, name, script_.below(2) == 1);
        break;
    case 4: {
        const auto clear = [&] { checked.clearVar(name.c_str()); };
        if (name.empty()) {
            rounds_.expect({}, false, clear);
        } else if (!node.variables.contains(name)) {
            rounds_.expectRefusal(unknown, clear);
        } else {
            node.variables[name] = nullptr;
            rounds_.expect({&node}, false, clear);
        }
        break;
    }
    case 5:
        setDescriptor(node, script_.below(2) == 1);
        break;
    case 6: {
        require(checked.getDescriptor() ==
                    dynamic_cast<MetaKelDescriptor*>(realOf(descriptorOf(node))),
                "the descriptor in use is returned");
        const bool isThere = node.variables.erase("@desc") > 0;
        rounds_.expect(rounds(node, isThere ? 1 : 0), false, [&] { checked.removeDescriptor(); });
        break;
    }
    case 7:
    case 8:
        describe(node, name);
        break;
    default:
        // What every struct does. Additions and replacements of values are checked, however.
        switch (script_.below(6)) {
        case 0:
            setTyped(node, name);
            break;
        case 1:
            putTyped(node, name);
            break;
        case 2:
            renameVariable(node, name);
            break;
        case 3:
            removeVariable(node, name);
            break;
        case 4:
            addMissing(node);
            break;
        default:
            empty(node);
        }
    }
}

void Calls::addChecked(Node& checked, const std::string& name, Node* value) {
    const auto add = [&] { checked.as<KEL_Struct>().addVar(name.c_str(), realOf(value)); };
    const Addition added = additionOf(checked, name, value, rulesOf(checked, name));
    if (name.empty() || value == nullptr) {
        rounds_.expect({}, false, add);
    } else if (name.front() == '@') {
        rounds_.expectRefusal(reserved, add);
    } else if (hasQuote(name)) {
        rounds_.expectRefusal(quote, add);
    } else if (added == Addition::nothing) {
        rounds_.expect({}, false, add);
    } else {
        checked.variables[name] = added == Addition::value ? value : nullptr;
        rounds_.expect({&checked}, false, add);
    }
}

void Calls::setChecked(Node& checked, const std::string& name, Node* value) {
    const auto set = [&] { checked.as<KEL_Struct>().setVar(name.c_str(), realOf(value)); };
    if (name.empty() || value == nullptr || !isValid(rulesOf(checked, name), value->real)) {
        rounds_.expect({}, false, set);
    } else if (hasQuote(name)) {
        rounds_.expectRefusal(quote, set);
    } else {
        checked.variables[name] = value;
        rounds_.expect({&checked}, false, set);
    }
}

void Calls::getChecked(Node& checked, const std::string& name, bool storesDefault) {
    auto& real = checked.as<MetaKel>();
    KEL* got = nullptr;
    const auto get = [&] { got = real.getVar(name.c_str(), storesDefault); };
    const Node* rules = rulesOf(checked, name);
    if (name.empty() || checked.variables.contains(name)) {
        rounds_.expect({}, false, get);
        require(got == realOf(checked.variable(name)), "a variable has its value");
    } else if (rules == nullptr) {
        rounds_.expectRefusal("Variable not found and no descriptor.", get);
    } else if (!rules->variables.contains("default")) {
        rounds_.expectRefusal("Variable not found.", get);
    } else {
        Node* value = rules->variable("default");
        KEL* expected = realOf(value);
        if (storesDefault) {
            checked.variables[name] = value;
        }
        rounds_.expect(rounds(checked, storesDefault ? 1 : 0), false, [&] {
            get(); // which throws if an observer does
            require(got == expected, "a missing variable has its default");
        });
    }
}

void Calls::setDescriptor(Node& checked, bool replaces) {
    auto& real = checked.as<MetaKel>();
    Node* given = anyOf(KELKind_MetaKelDescriptor);
    const auto set = [&real, given, replaces] {
        auto* descriptor = given == nullptr ? nullptr : &given->as<MetaKelDescriptor>();
        replaces ? real.replaceDescriptor(descriptor) : real.setDescriptor(descriptor);
    };
    const bool isSet = given != nullptr && (!replaces || checked.variables.contains("@desc"));
    if (isSet) {
        checked.variables["@desc"] = given;
    }
    rounds_.expect(rounds(checked, isSet ? 1 : 0), false, set);
}

/// Describes a variable, and adds it if it is missing.
void Calls::describe(Node& checked, const std::string& name) {
    auto& real = checked.as<MetaKel>();
    Node* value = any();
    Node* other = any(); // the description, the default or the allowed values
    const int choice = script_.below(4);
    const auto create = [&, choice, held = realOf(value), text = name.c_str()] {
        switch (choice) {
        case 0:
            return real.createVar(text, held, dynamic_cast<MetaKelVarDescriptor*>(realOf(other)));
        case 1:
            return real.createVarWithType(text, held);
        case 2:
            return real.createVarWithDefault(text, held, realOf(other));
        default:
            return real.createVarWithEnum(text, held, dynamic_cast<KEL_Array*>(realOf(other)));
        }
    };
    const bool isArray = other != nullptr && other->kind == KELKind_Array;
    const Node* typed = value; // the value whose kind is stated
    if (choice == 2 && other != nullptr) {
        typed = other;
    } else if (choice == 3 && value == nullptr && isArray && !other->elements.empty()) {
        typed = other->elements.front();
    }
    Node* rules = choice == 0 && other != nullptr && other->kind == KELKind_MetaKelVarDescriptor
                      ? other
                      : nullptr;
    if (choice != 0 && typed != nullptr) {
        rules = model_.add(KELKind_MetaKelVarDescriptor, nullptr);
        rules->variables["type"] = model_.addMade(KELKind_Int, typed->kind);
        if (choice == 2 && other != nullptr) {
            rules->variables["default"] = other;
        } else if (choice == 3 && isArray) {
            rules->variables["enum"] = other;
        }
    }
    if (name.empty() || rules == nullptr) {
        rounds_.expect({}, false, create);
    } else if (name.front() == '@') {
        rounds_.expectRefusal(reserved, create);
    } else if (hasQuote(name)) {
        rounds_.expectRefusal(quote, create);
    } else {
        const Addition added = additionOf(checked, name, value, rules);
        Node* descriptor = descriptorOf(checked);
        if (descriptor == nullptr) {
            descriptor = model_.add(KELKind_MetaKelDescriptor, nullptr);
            checked.variables["@desc"] = descriptor;
        }
        descriptor->variables[name] = rules;
        if (added != Addition::nothing) {
            checked.variables[name] = added == Addition::value ? value : nullptr;
        }
        rounds_.expect({descriptor, &checked}, false, create);
    }
}

} // namespace kel::fuzz
