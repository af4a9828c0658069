#include "html/GivenIdentities.h"

#include "TreeCursor.h"

namespace kel::tool {

namespace {

bool haveSameIdentity(const KEL& a, const KEL& b) {
    JHashCode ofA;
    JHashCode ofB;
    return a.getHashCode(ofA) == b.getHashCode(ofB);
}

} // namespace

GivenIdentities::GivenIdentities(const Document& document, Format format, const Document* again)
    : areAllGiven_(format == Format::binary) {
    for (size_t i = 0; again != nullptr && i < document.roots().size(); ++i) {
        compare(document.roots()[i].get(), again->roots()[i].get());
    }
    met_.clear();
}

/// Visits a root value of both documents in step.
void GivenIdentities::compare(KEL* root, KEL* again) {
    TreeCursor cursor(root);
    TreeCursor other(again);
    for (auto event = cursor.next(); event != TreeCursor::Event::done; event = cursor.next()) {
        other.next();
        if (event == TreeCursor::Event::null || event == TreeCursor::Event::leave) {
            continue;
        }
        if (haveSameIdentity(*cursor.value(), *other.value())) {
            given_.insert(cursor.value());
        }
        if (event == TreeCursor::Event::enter && !met_.insert(cursor.value()).second) {
            cursor.skip();
            other.skip();
        }
    }
}

} // namespace kel::tool
