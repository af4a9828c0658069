// The calls on descriptions of variables.
#include "Property.h"
#include "calls/Calls.h"
#include "calls/Rules.h"

#include <limits>

namespace kel::fuzz {

namespace {

constexpr const char* notRanged = "Not a ranged variable.";
constexpr const char* notEnumerated = "Not an enumerated variable.";

} // namespace

void Calls::changeDescriptor(Node& node) {
    const std::string name = anyName(node);
    switch (script_.below(12)) {
    case 0:
    case 1:
        addVariable(node, name, any());
        break;
    case 2:
        putTyped(node, name);
        break;
    case 3:
        changeStruct(node);
        break;
    case 4:
    case 5:
        changeRange(node);
        break;
    case 6:
    case 7:
        changeEnumeration(node);
        break;
    case 8:
        convertEnumeration(node);
        break;
    case 9:
    case 10:
        changeProperty(node);
        break;
    default:
        lookAtDescriptor(node);
    }
}

void Calls::changeRange(Node& descriptor) {
    auto& real = descriptor.as<MetaKelVarDescriptor>();
    const int choice = script_.below(3);
    const int32_t number = script_.byte();
    Node* min = choice == 0 ? any() : nullptr;
    Node* max = choice == 0 ? any() : nullptr;
    const auto set = [&real, choice, number, least = realOf(min), greatest = realOf(max)] {
        choice == 0 ? real.setRange(least, greatest)
        : choice == 1
            ? real.setRange(number, number + 9)
            : real.setRange(static_cast<double>(number) - 9.0, static_cast<double>(number));
    };
    if (choice == 0 && (min == nullptr || max == nullptr)) {
        rounds_.expect({}, false, set);
    } else if (!isRanged(descriptor)) {
        rounds_.expectRefusal(notRanged, set);
    } else {
        const auto made = [&](double contents) {
            return model_.addMade(choice == 1 ? KELKind_Int : KELKind_Double, contents);
        };
        descriptor.variables["min"] = choice == 0   ? min
                                      : choice == 1 ? made(number)
                                                    : made(number - 9.0);
        descriptor.variables["max"] = choice == 0   ? max
                                      : choice == 1 ? made(number + 9.0)
                                                    : made(number);
        rounds_.expect({&descriptor}, false, set);
    }
}

void Calls::changeEnumeration(Node& descriptor) {
    auto& real = descriptor.as<MetaKelVarDescriptor>();
    const bool adds = script_.below(2) == 0;
    const int choice = script_.below(5);
    const int32_t number = choice == 1 ? script_.below(2) : script_.byte();
    const std::string text = std::to_string(number);
    Node* given = choice == 0 ? any() : nullptr;
    KEL* held = realOf(given);
    KEL* wanted = choice == 0   ? held
                  : choice == 1 ? static_cast<KEL*>(CreateKELBoolean(number != 0))
                  : choice == 2 ? static_cast<KEL*>(CreateKELString(text.c_str()))
                  : choice == 3 ? static_cast<KEL*>(CreateKELDouble(number))
                                : static_cast<KEL*>(CreateKELInt(number));
    const auto change = [&real, adds, choice, number, text, held] {
        switch (choice) {
        case 0:
            return adds ? real.addEnumValue(held) : real.removeEnumValue(held);
        case 1:
            return adds ? real.addEnumValue(number != 0) : real.removeEnumValue(number != 0);
        case 2:
            return adds ? real.addEnumValue(text.c_str()) : real.removeEnumValue(text.c_str());
        case 3:
            return adds ? real.addEnumValue(static_cast<double>(number))
                        : real.removeEnumValue(static_cast<double>(number));
        default:
            return adds ? real.addEnumValue(number) : real.removeEnumValue(number);
        }
    };
    Node* allowed = allowedBy(descriptor);
    bool changes = allowed != nullptr && adds;
    if (wanted == nullptr) {
        rounds_.expect({}, false, change);
        return;
    }
    if (changes) {
        constexpr int32_t kinds[] = {0, KELKind_Boolean, KELKind_String, KELKind_Double,
                                     KELKind_Int};
        allowed->elements.push_back(choice == 0 ? given
                                                : model_.addMade(kinds[choice], number, text));
    } else if (allowed != nullptr) {
        auto& elements = allowed->elements;
        for (std::size_t i = 0; i < elements.size(); ++i) { // skips the one after each removed one
            if (elements[i]->real->equalsValue(wanted)) {
                elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(i));
                changes = true;
            }
        }
    }
    if (choice != 0) {
        wanted->release();
    }
    if (allowed == nullptr) {
        rounds_.expectRefusal(notEnumerated, change);
    } else {
        rounds_.expect(changes ? std::vector<Node*>{allowed, &descriptor} : std::vector<Node*>{},
                       false, change);
    }
}

/// Turns a range into an enumeration, or the other way round, and removes enumerations.
void Calls::convertEnumeration(Node& descriptor) {
    auto& real = descriptor.as<MetaKelVarDescriptor>();
    auto& variables = descriptor.variables;
    Node* extra = any();
    const int32_t type = typeIn(descriptor);
    const Node* allowed = allowedBy(descriptor);
    std::vector<Node*> changed;
    switch (script_.below(4)) {
    case 0: {
        if (!isRanged(descriptor) && allowed != nullptr && type == KELKind_Double) {
            Node* min = nullptr;
            Node* max = nullptr;
            for (Node* element : allowed->elements) {
                const double number = convertToDouble(element->real);
                min = min == nullptr || number < convertToDouble(min->real) ? element : min;
                max = max == nullptr || number > convertToDouble(max->real) ? element : max;
            }
            using Limits = std::numeric_limits<double>;
            if (min == nullptr) {
                min = model_.addMade(KELKind_Double, Limits::lowest());
                max = model_.addMade(KELKind_Double, Limits::max());
            }
            variables.erase("enum");
            variables["min"] = min;
            variables["max"] = max;
            changed = {&descriptor};
        }
        rounds_.expect(changed, false, [&real] { real.rangeFromEnumeration(); });
        break;
    }
    case 1: {
        if (isRanged(descriptor) && !isEnumerated(descriptor) && type == KELKind_Double) {
            Node* array = model_.add(KELKind_Array, nullptr);
            for (Node* value : {descriptor.variable("min"), descriptor.variable("default"), extra,
                                descriptor.variable("max")}) {
                if (value != nullptr) {
                    array->elements.push_back(value);
                }
            }
            variables.erase("min");
            variables.erase("max");
            variables["enum"] = array;
            changed = {&descriptor};
        }
        rounds_.expect(changed, false,
                       [&real, held = realOf(extra)] { real.enumerationFromRange(held); });
        break;
    }
    case 2: {
        const auto add = [&real, held = realOf(extra)] { real.addEnumerationList(held); };
        if ((!isEnumerated(descriptor) && isRanged(descriptor)) || type != KELKind_String) {
            rounds_.expectRefusal("Can only add enumeration list to a KEL_String", add);
        } else {
            rounds_.expect({}, false, add);
        }
        break;
    }
    default: {
        const auto remove = [&real] { real.removeEnumerationList(); };
        if (isEnumerated(descriptor) && type != KELKind_String) {
            rounds_.expectRefusal("Can only remove enumeration list from a KEL_String", remove);
        } else {
            const bool isThere = variables.erase("enum") > 0;
            rounds_.expect(rounds(descriptor, isThere ? 1 : 0), false, remove);
        }
    }
    }
}

/// Replaces a property that exists. Null is ignored.
void Calls::replaceIfThere(Node& descriptor, const std::string& name, Node* value,
                           const std::function<void()>& call) {
    const bool isReplaced = value != nullptr && descriptor.variables.contains(name);
    if (isReplaced) {
        descriptor.variables[name] = value;
    }
    rounds_.expect(rounds(descriptor, isReplaced ? 1 : 0), false, call);
}

void Calls::changeProperty(Node& descriptor) {
    auto& real = descriptor.as<MetaKelVarDescriptor>();
    const int32_t number = script_.byte();
    const std::string text = std::to_string(number);
    const bool isTrue = number % 2 == 1;
    const auto remove = [&](const char* name, void (MetaKelVarDescriptorInterface_V1::*call)()) {
        const bool isThere = descriptor.variables.erase(name) > 0;
        rounds_.expect(rounds(descriptor, isThere ? 1 : 0), false,
                       [&real, call] { (real.*call)(); });
    };
    const auto put = [&](const char* name, int32_t kind, double contents, auto call) {
        descriptor.variables[name] = model_.addMade(kind, contents);
        rounds_.expect({&descriptor}, false, call);
    };
    const auto replace = [&](const char* name, int32_t kind, double contents, auto call) {
        Node* made = model_.addMade(kind, contents, kind == KELKind_String ? text : "");
        replaceIfThere(descriptor, name, made, call);
    };
    using I = MetaKelVarDescriptorInterface_V1;
    switch (script_.below(19)) {
    case 0:
        put("type", KELKind_Int, number % 13, [&] { real.setType(number % 13); });
        break;
    case 1:
        put("wrapped", KELKind_Boolean, isTrue ? 1 : 0, [&] { real.setWrapped(isTrue); });
        break;
    case 2:
        put("interpolated", KELKind_Boolean, isTrue ? 1 : 0, [&] { real.setInterpolated(isTrue); });
        break;
    case 3:
        put("stepsize", KELKind_Double, number, [&] { real.setStepsize(number); });
        break;
    case 4:
        put("stepsize", KELKind_Double, number / 4.0, [&] { real.setStepsize(number / 4.0); });
        break;
    case 5: {
        const Node* value = any();
        if (value == nullptr) {
            rounds_.expect({}, false, [&] { real.setWrapped(static_cast<const KEL*>(nullptr)); });
        } else {
            put("wrapped", KELKind_Boolean, convertToBoolean(value->real) ? 1 : 0,
                [&, held = value->real] { real.setWrapped(held); });
        }
        break;
    }
    case 6:
        replace("default", KELKind_Int, number, [&] { real.setDefault(number); });
        break;
    case 7:
        replace("default", KELKind_Double, number,
                [&] { real.setDefault(static_cast<double>(number)); });
        break;
    case 8:
        replace("default", KELKind_Boolean, isTrue ? 1 : 0, [&] { real.setDefault(isTrue); });
        break;
    case 9:
        replace("default", KELKind_String, 0, [&] { real.setDefault(text.c_str()); });
        break;
    case 10: {
        Node* value = any();
        replaceIfThere(descriptor, "default", value,
                       [&real, held = realOf(value)] { real.setDefault(held); });
        break;
    }
    case 11:
        replace("preadorn", KELKind_String, 0, [&] { real.setPreadorn(text.c_str()); });
        break;
    case 12:
        replace("postadorn", KELKind_String, 0, [&] { real.setPostadorn(text.c_str()); });
        break;
    case 13:
        remove("default", &I::removeDefault);
        break;
    case 14:
        remove("preadorn", &I::removePreadorn);
        break;
    case 15:
        remove("postadorn", &I::removePostadorn);
        break;
    case 16:
        remove("wrapped", &I::removeWrapped);
        break;
    case 17:
        remove("interpolated", &I::removeInterpolated);
        break;
    default:
        remove("stepsize", &I::removeStepsize);
    }
}

void Calls::lookAtDescriptor(Node& descriptor) {
    auto& real = descriptor.as<MetaKelVarDescriptor>();
    const Node* asked = any();
    const KEL* value = realOf(asked);
    const auto has = [&](const char* name) { return descriptor.variables.contains(name); };
    require(real.isRanged() == isRanged(descriptor), "a range is known");
    require(real.isEnumerated() == isEnumerated(descriptor), "an enumeration is known");
    require(real.isValid(value) == isValid(&descriptor, value), "a valid value is known");
    require(real.getVariableType() == typeIn(descriptor), "the stated kind is returned");
    require(real.hasDefault() == has("default") && real.hasPreadorn() == has("preadorn") &&
                real.hasPostadorn() == has("postadorn") && real.hasWrapped() == has("wrapped") &&
                real.hasInterpolated() == has("interpolated") &&
                real.hasStepsize() == has("stepsize"),
            "properties are known");
    require(real.getDefault() == realOf(descriptor.variable("default")), "the default is returned");
    require(real.getWrapped() == convertToBoolean(realOf(descriptor.variable("wrapped"))),
            "whether values wrap is returned");
    require(
        real.getInterpolated() ==
            (!has("interpolated") || convertToBoolean(realOf(descriptor.variable("interpolated")))),
        "whether values are interpolated is returned");
    require(has("stepsize") || real.getStepsize() == 1.0, "the step is 1 if it is not stated");
    if (isRanged(descriptor)) {
        require(real.getMin() == realOf(descriptor.variable("min")) &&
                    real.getMax() == realOf(descriptor.variable("max")),
                "bounds are returned");
        require(real.inRange(value) == isInRange(descriptor, value), "a range has its values");
    } else {
        rounds_.expectRefusal(notRanged, [&real] { real.getMin(); });
        rounds_.expectRefusal(notRanged, [&real] { real.getMax(); });
        rounds_.expectRefusal(notRanged, [&real] { real.inRange(int32_t{1}); });
        rounds_.expectRefusal(notRanged, [&real] { real.inRange(1.0); });
    }
    if (const Node* allowed = allowedBy(descriptor)) {
        require(real.getEnum() == &allowed->as<KEL_Array>(), "the allowed values are returned");
    } else {
        rounds_.expectRefusal(notEnumerated, [&real] { real.getEnum(); });
    }
    if (isEnumerated(descriptor)) {
        require(real.inEnum(value) == isAllowed(descriptor, value), "allowed values are known");
    } else {
        rounds_.expectRefusal(notEnumerated, [&real] { real.inEnum(true); });
        rounds_.expectRefusal(notEnumerated, [&real] { real.inEnum("1"); });
        rounds_.expectRefusal(notEnumerated, [&real] { real.inEnum(int32_t{1}); });
        rounds_.expectRefusal(notEnumerated, [&real] { real.inEnum(1.0); });
    }
}

} // namespace kel::fuzz
