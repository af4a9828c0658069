#include "DescriptorCheck.h"

#include "TreeCursor.h"
#include "ViolationFinder.h"

#include <unordered_set>

namespace kel::tool {

namespace {

/// One pass over a document.
class Checker {
public:
    Checker(const ViolationReport& report, size_t rootCount)
        : report_(report), rootCount_(rootCount) {}

    /// Visits everything below a root.
    void visit(KEL* root, size_t rootNumber);

private:
    void report(const TreeCursor& cursor, const std::string& violation);

    const ViolationReport& report_;
    size_t rootCount_;
    size_t rootNumber_ = 0;
    std::unordered_set<const KEL*> met_;
    ViolationFinder finder_;
};

void Checker::visit(KEL* root, size_t rootNumber) {
    rootNumber_ = rootNumber;
    TreeCursor cursor(root);
    const auto reportHere = [&](const std::string& violation) { report(cursor, violation); };
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        if (event == TreeCursor::Event::null || event == TreeCursor::Event::leave) {
            continue;
        }
        finder_.checkPlace(cursor.container(), cursor.name(), *cursor.value(), reportHere);
        if (event != TreeCursor::Event::enter) {
            continue;
        }
        if (!met_.insert(cursor.value()).second) {
            cursor.skip();
        } else if (auto* rules = dynamic_cast<MetaKelVarDescriptor*>(cursor.value())) {
            finder_.checkRules(*rules, reportHere);
        }
    }
}

void Checker::report(const TreeCursor& cursor, const std::string& violation) {
    report_(withRoot(cursor.path(), rootNumber_, rootCount_) + ": " + violation);
}

} // namespace

void checkDescriptors(const Document& document, const ViolationReport& report) {
    Checker checker(report, document.roots().size());
    for (size_t i = 0; i < document.roots().size(); ++i) {
        checker.visit(document.roots()[i].get(), i);
    }
}

} // namespace kel::tool
