#include "check/DescriptorCheck.h"

#include "check/VariableRules.h"
#include "check/ViolationFinder.h"
#include "document/TreeCursor.h"
#include "words/ValueText.h"

#include <cstring>
#include <unordered_set>

namespace kel::tool {

namespace {

/// Returns the descriptor of a variable of the container, or null.
const MetaKelVarDescriptor* rulesFor(const KEL* container, const char* name) {
    const auto* owner = dynamic_cast<const MetaKel*>(container);
    const MetaKelDescriptor* descriptor = owner == nullptr ? nullptr : owner->getDescriptor();
    KELVarCursor entry;
    return descriptor != nullptr && walkOver(*descriptor).findVar(entry, name)
               ? dynamic_cast<const MetaKelVarDescriptor*>(entry.value)
               : nullptr;
}

/// One pass over a document.
class Checker {
public:
    Checker(Findings& found, bool isStrict, size_t rootCount)
        : found_(found), isStrict_(isStrict), rootCount_(rootCount) {}

    /// Visits everything below a root.
    void visit(KEL* root, size_t rootNumber);

private:
    void checkPlace(const TreeCursor& cursor);
    void checkRules(const TreeCursor& cursor, MetaKelVarDescriptor& rules);
    void checkName(const TreeCursor& cursor);
    void checkKind(const TreeCursor& cursor, const MetaKelVarDescriptor& rules, const KEL& value,
                   const char* role);
    void report(const TreeCursor& cursor, std::string message, Severity severity);

    Findings& found_;
    bool isStrict_;
    size_t rootCount_;
    size_t rootNumber_ = 0;
    std::unordered_set<const KEL*> met_;
    ViolationFinder finder_;
    UnknownNames unknown_;
};

void Checker::visit(KEL* root, size_t rootNumber) {
    rootNumber_ = rootNumber;
    TreeCursor cursor(root);
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        if (event == TreeCursor::Event::leave) {
            continue;
        }
        if (isStrict_) {
            checkName(cursor);
        }
        if (event == TreeCursor::Event::null) {
            continue;
        }
        checkPlace(cursor);
        if (event != TreeCursor::Event::enter) {
            continue;
        }
        if (!met_.insert(cursor.value()).second) {
            cursor.skip();
        } else if (auto* rules = dynamic_cast<MetaKelVarDescriptor*>(cursor.value())) {
            checkRules(cursor, *rules);
        }
    }
}

/// Checks a value against its container.
void Checker::checkPlace(const TreeCursor& cursor) {
    const size_t before = found_.size();
    finder_.checkPlace(
        cursor.container(), cursor.name(), *cursor.value(),
        [&](const std::string& violation) { report(cursor, violation, Severity::error); });
    if (isStrict_ && found_.size() == before) {
        if (const auto* rules = rulesFor(cursor.container(), cursor.name())) {
            checkKind(cursor, *rules, *cursor.value(), "");
        }
    }
}

/// Checks a variable descriptor itself.
void Checker::checkRules(const TreeCursor& cursor, MetaKelVarDescriptor& rules) {
    const size_t before = found_.size();
    finder_.checkRules(
        rules, [&](const std::string& violation) { report(cursor, violation, Severity::error); });
    const KEL* standard = rules.getDefault();
    if (isStrict_ && standard != nullptr && found_.size() == before) {
        checkKind(cursor, rules, *standard, "the default ");
    }
}

/// Reports a value whose kind is not the described one. \param role what the value is, for messages
void Checker::checkKind(const TreeCursor& cursor, const MetaKelVarDescriptor& rules,
                        const KEL& value, const char* role) {
    if (const std::string mistake = mistakeInKind(rules, value); !mistake.empty()) {
        report(cursor, role + mistake, Severity::warning);
    }
}

/// Reports a variable of a checked struct that its descriptor does not know, and a descriptor of
/// another kind.
void Checker::checkName(const TreeCursor& cursor) {
    const auto* owner = dynamic_cast<const MetaKel*>(cursor.container());
    if (owner == nullptr) {
        return;
    }
    const MetaKelDescriptor* descriptor = owner->getDescriptor();
    if (std::strcmp(cursor.name(), descriptorName) == 0) {
        if (descriptor == nullptr) {
            report(cursor, wordsFor(cursor.value()) + " is not a struct descriptor",
                   Severity::warning);
        }
    } else if (descriptor != nullptr && !descriptor->containsVar(cursor.name())) {
        report(cursor, unknown_.wordsFor(cursor.name(), walkOver(*descriptor)), Severity::warning);
    }
}

void Checker::report(const TreeCursor& cursor, std::string message, Severity severity) {
    found_.push_back({severity, withRoot(cursor.path(), rootNumber_, rootCount_),
                      std::move(message), cursor.value()});
    if (cursor.value() == nullptr) {
        found_.back().owner = cursor.container();
        found_.back().name = cursor.name();
    }
}

} // namespace

void checkDescriptors(const Document& document, bool isStrict, Findings& found) {
    Checker checker(found, isStrict, document.roots().size());
    for (size_t i = 0; i < document.roots().size(); ++i) {
        checker.visit(document.roots()[i].get(), i);
    }
}

} // namespace kel::tool
