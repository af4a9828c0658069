#include "findings/Schema.h"

#include "check/VariableRules.h"
#include "check/ViolationFinder.h"
#include "failures/Failure.h"
#include "path/PathText.h"
#include "path/Place.h"
#include "words/ValueText.h"

#include <cstring>
#include <set>

namespace kel::tool {

namespace {

bool isStruct(const KEL* value) {
    return value != nullptr &&
           (value->getType() == KELKind_Struct || value->getType() == KELKind_MetaKel);
}

/// Returns the descriptor that a value of a schema stands for: a struct descriptor itself, the
/// descriptor of a checked struct, or a struct of such values. Returns null for any other value.
KEL* descriptionIn(KEL* value) {
    if (value == nullptr) {
        return nullptr;
    }
    if (const auto* checked = dynamic_cast<const MetaKel*>(value)) {
        return checked->getDescriptor();
    }
    const int32_t kind = value->getType();
    return kind == KELKind_MetaKelDescriptor || kind == KELKind_Struct ? value : nullptr;
}

/// Returns the descriptor of the structs that a variable can hold, or null.
KEL* nestedIn(const MetaKelVarDescriptor& rules) {
    KELVarCursor property;
    auto* own = walkOver(rules).findVar(property, descriptorName)
                    ? dynamic_cast<MetaKelDescriptor*>(property.value)
                    : nullptr;
    const auto* standard = dynamic_cast<const MetaKel*>(rules.getDefault());
    return own == nullptr && standard != nullptr ? standard->getDescriptor() : own;
}

/// Returns whether the struct holds only descriptions, and at least one.
bool isStructOfDescriptions(const KEL_Struct& structure) {
    std::vector<const KEL_Struct*> pending{&structure};
    std::set<const KEL*> met;
    bool hasDescriptor = false;
    while (!pending.empty()) {
        const KEL_Struct& next = *pending.back();
        pending.pop_back();
        for (KELVarCursor at; walkOver(next).nextVar(at);) {
            KEL* description = descriptionIn(at.value);
            if (description == nullptr) {
                return false;
            }
            const bool isInner = description->getType() == KELKind_Struct;
            hasDescriptor = hasDescriptor || !isInner;
            if (isInner && met.insert(description).second) {
                pending.push_back(dynamic_cast<const KEL_Struct*>(description));
            }
        }
    }
    return hasDescriptor;
}

/// One pass over the described structs of a document. They are visited level by level.
class SchemaCheck {
public:
    SchemaCheck(size_t rootCount, bool isStrict, Findings& found)
        : rootCount_(rootCount), isStrict_(isStrict), found_(found) {}

    /// Checks a value and everything in it that is described.
    /// \param steps the steps that lead to the value
    void check(KEL* description, KEL* value, size_t root, const std::vector<Step>& steps) {
        root_ = root;
        steps_ = &steps;
        parts_.assign(1, {description, value, 0, nullptr});
        for (size_t i = 0; i < parts_.size(); ++i) {
            checkPart(i);
        }
    }

private:
    /// A value and its description.
    struct Part {
        KEL* description;
        KEL* value;
        size_t parent;    ///< the number of the struct around it
        const char* name; ///< its name there; null for the first part
    };

    void checkPart(size_t number) {
        const Part part = parts_[number];
        if (!isStruct(part.value)) {
            reportPart(number, wordsFor(part.value) + " where a struct is described");
            return;
        }
        if (!met_.insert({part.value, part.description}).second) {
            return;
        }
        const auto& described = dynamic_cast<const KELInterface_Struct_V2&>(*part.description);
        const auto& variables = dynamic_cast<const KELInterface_Struct_V2&>(*part.value);
        const bool isChecked = part.value->getType() == KELKind_MetaKel;
        for (KELVarCursor at; variables.nextVar(at);) {
            if (isChecked && std::strcmp(at.name, descriptorName) == 0) {
                continue;
            }
            KELVarCursor entry;
            if (!described.findVar(entry, at.name)) {
                if (isStrict_) {
                    report(number, at.name, at.value, unknown_.wordsFor(at.name, described),
                           Severity::warning);
                }
            } else if (at.value != nullptr && entry.value != nullptr) {
                checkVariable(number, at, *entry.value);
            }
        }
    }

    void checkVariable(size_t owner, const KELVarCursor& variable, KEL& entry) {
        auto* rules = dynamic_cast<MetaKelVarDescriptor*>(&entry);
        KEL* description = rules != nullptr ? nestedIn(*rules) : descriptionIn(&entry);
        if (description != nullptr) {
            parts_.push_back({description, variable.value, owner, variable.name});
            return;
        }
        if (rules == nullptr) {
            return; // the check of the schema itself reports it
        }
        // A format without checked structs holds plain ones instead.
        const bool isFreeStruct =
            rules->getVariableType() == KELKind_MetaKel && isStruct(variable.value);
        const std::string mistake =
            isFreeStruct ? std::string() : mistakeInKind(*rules, *variable.value);
        const auto reportHere = [&](const std::string& violation) {
            report(owner, variable.name, variable.value, violation, Severity::error);
        };
        if (!mistake.empty()) {
            reportHere(mistake);
        } else {
            finder_.checkValue(*rules, *variable.value, reportHere);
        }
    }

    void reportPart(size_t number, std::string message) {
        const Part& part = parts_[number];
        report(part.parent, part.name, part.value, std::move(message), Severity::error);
    }

    /// Reports a variable of a part, or for a null name the first part itself.
    void report(size_t owner, const char* name, const KEL* value, std::string message,
                Severity severity) {
        found_.push_back({severity, pathOf(owner, name), std::move(message), value});
        if (value == nullptr && name != nullptr) {
            found_.back().owner = parts_[owner].value;
            found_.back().name = name;
        }
    }

    std::string pathOf(size_t owner, const char* name) const {
        std::vector<const char*> names;
        for (; name != nullptr; name = parts_[owner].name, owner = parts_[owner].parent) {
            names.push_back(name);
        }
        PathText path;
        for (const Step& step : *steps_) {
            switch (step.kind) {
            case Step::Kind::index:
                path.addIndex(step.index);
                break;
            case Step::Kind::name:
                path.addName(step.text);
                break;
            case Step::Kind::identity:
                path.addIdentity(step.text);
                break;
            }
        }
        for (; !names.empty(); names.pop_back()) {
            path.addName(names.back());
        }
        return withRoot(path.take(), root_, rootCount_);
    }

    size_t rootCount_;
    bool isStrict_;
    Findings& found_;
    size_t root_ = 0;
    const std::vector<Step>* steps_ = nullptr;
    std::vector<Part> parts_;
    std::set<std::pair<const KEL*, const KEL*>> met_;
    ViolationFinder finder_;
    UnknownNames unknown_;
};

} // namespace

Schema::Schema(Document&& document, const std::string& name) : document_(std::move(document)) {
    KEL* description =
        document_.roots().size() == 1 ? descriptionIn(document_.roots().front().get()) : nullptr;
    const bool isSound = description != nullptr &&
                         (description->getType() != KELKind_Struct ||
                          isStructOfDescriptions(dynamic_cast<const KEL_Struct&>(*description)));
    if (!isSound) {
        throw Failure{Trouble::malformed, name +
                                              ": not a schema: expected one struct descriptor "
                                              "({ @type = 51 ... }) or a struct of them by name"};
    }
}

void Schema::check(const Document& document, const std::optional<Path>& at, bool isStrict,
                   Findings& found) const {
    KEL* description = descriptionIn(document_.roots().front().get());
    SchemaCheck check(document.roots().size(), isStrict, found);
    if (at) {
        const Place place = findValue(document, *at);
        check.check(description, place.value, place.root, at->steps);
        return;
    }
    for (size_t i = 0; i < document.roots().size(); ++i) {
        check.check(description, document.roots()[i].get(), i, {});
    }
}

} // namespace kel::tool
