// The tool's comparison of two documents, which are separated by a line "----". Equal documents
// have no differences. Every path leads to the value that the difference is about. The report of
// "kel diff --json" has everything that makes the second document of the first one.
#include "diff/Comparison.h"

#include "Property.h"
#include "Roots.h"
#include "diff/ChangeReport.h"
#include "diff/ChangeText.h"
#include "document/KelReader.h"
#include "document/TreeCursor.h"
#include "failures/Failure.h"
#include "path/Place.h"
#include "words/Utf8.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

using namespace kel::fuzz;
using namespace kel::tool;

namespace {

Document read(const std::string& content) {
    return readKel(content, isBinary(content) ? Format::binary : Format::text, "input");
}

/// Requires that no difference is found, also not in sharing.
void requireNone(const Document& a, const Document& b, const char* property) {
    ComparisonOptions options;
    options.countsSharing = true;
    require(compare(a, b, options).list.empty(), property);
}

KEL* valueAt(const Document& document, const std::string& path) {
    try {
        return findValue(document, Path::of(path)).value;
    } catch (const Failure& failure) {
        fail("every path leads to a value", failure.message);
    }
}

/// Requires that the paths of a difference lead to its values.
void requirePlaces(const Document& before, const Document& after, const Changes& changes) {
    for (const Change& change : changes.list) {
        const std::string line = lineFor(change, changes.places);
        require(isUtf8(line) && line.find('\n') == std::string::npos,
                "a difference is described on one line", line);
        if (change.kind == Change::Kind::changed || change.kind == Change::Kind::removed) {
            require(valueAt(before, changes.places.pathBefore(change.place)) == change.before,
                    "the old path leads to the old value", line);
        }
        if (change.kind == Change::Kind::changed || change.kind == Change::Kind::added) {
            require(valueAt(after, changes.places.pathAfter(change.place)) == change.after,
                    "the new path leads to the new value", line);
        }
        if (change.kind == Change::Kind::moved) {
            const KEL* from = valueAt(before, changes.places.pathBefore(change.place));
            const KEL* to = valueAt(after, changes.places.pathAfter(*change.other));
            require(from->getType() == to->getType(), "a moved value keeps its kind", line);
        }
    }
}

// ---- Patching ----------------------------------------------------------------------------------

/// Returns whether a patch can be made: one root value each, of structs, arrays and scalars, and of
/// a limited number of places.
bool isPlain(const Document& document) {
    constexpr int mostPlaces = 2000;
    if (document.roots().size() != 1) {
        return false;
    }
    TreeCursor cursor(document.roots()[0].get());
    for (int i = 0; i < mostPlaces; ++i) {
        if (cursor.next() == TreeCursor::Event::done) {
            return true;
        }
        const KEL* value = cursor.value();
        if (value != nullptr && value->getType() > KELKind_Struct) {
            return false;
        }
    }
    return false;
}

/// One entry of the report.
class Entry {
public:
    explicit Entry(KEL* value) : variables_(dynamic_cast<KEL_Struct&>(*value)) {}

    /// Returns a text of the entry, or the text for a missing one.
    std::string text(const char* name, const std::string& otherwise = "") const {
        return variables_.containsVar(name) ? memberOf(variables_, name)->toString() : otherwise;
    }
    Value value(const char* name) const { return copyOf(memberOf(variables_, name)); }

    std::string change() const { return text("change"); }
    std::string path() const { return text("path"); }
    std::string newPath() const { return text("newPath", path()); }

    static Value copyOf(const KEL* value) {
        return Value(value == nullptr ? nullptr : value->copy());
    }

private:
    const KEL_Struct& variables_;
};

/// Applies a report to a copy of the first document, in which no value is shared.
class Patch {
public:
    Patch(const Document& before, const Document& after)
        : after_(after), patched_(copyOf(before)) {}

    const Document& apply(const Document& report) {
        const auto& root = dynamic_cast<const KEL_Struct&>(*report.roots()[0]);
        const auto& changes = dynamic_cast<const KEL_Array&>(*memberOf(root, "changes"));
        for (int32_t i = 0; i < changes.getCount(); ++i) {
            note(Entry(changes.getVar(i)));
        }
        for (Put& put : replaced_) { // the old paths are right as long as nothing was removed
            replace(put);
        }
        // From the last element on, so that the paths of the others stay right.
        std::stable_sort(removed_.begin(), removed_.end(), isLater);
        for (const Path& path : removed_) {
            remove(path);
        }
        std::stable_sort(added_.begin(), added_.end(),
                         [](const Put& a, const Put& b) { return isLater(b.path, a.path); });
        for (Put& put : added_) {
            add(put);
        }
        return patched_;
    }

private:
    struct Put {
        Path path;
        Value value;
    };

    static Document copyOf(const Document& document) {
        std::vector<Value> roots;
        roots.push_back(Entry::copyOf(document.roots()[0].get()));
        return {std::move(roots), true};
    }

    void note(const Entry& entry) {
        const std::string change = entry.change();
        if (change == "changed") {
            replaced_.push_back({Path::of(entry.path()), entry.value("new")});
        } else if (change == "repeated") {
            replaced_.push_back(
                {Path::of(entry.path()), Entry::copyOf(valueAt(after_, entry.text("as")))});
        } else if (change == "removed") {
            removed_.push_back(Path::of(entry.path()));
        } else if (change == "added") {
            added_.push_back({Path::of(entry.path()), entry.value("new")});
        } else if (change == "moved") {
            added_.push_back(
                {Path::of(entry.newPath()), Entry::copyOf(valueAt(patched_, entry.path()))});
            removed_.push_back(Path::of(entry.path()));
        } else {
            fail("a plain document has no other differences", change);
        }
    }

    /// Orders paths so that a value with a greater number comes before one with a lesser number.
    static bool isLater(const Path& a, const Path& b) {
        for (std::size_t i = 0; i < std::min(a.steps.size(), b.steps.size()); ++i) {
            const Step& x = a.steps[i];
            const Step& y = b.steps[i];
            if (x.kind != y.kind || x.index != y.index || x.text != y.text) {
                return std::pair(x.index, x.text) > std::pair(y.index, y.text);
            }
        }
        return a.steps.size() > b.steps.size();
    }

    void replace(Put& put) {
        const Place place = findValue(patched_, put.path);
        if (place.container == nullptr) {
            patched_.roots()[0] = std::move(put.value);
        } else if (auto* array = dynamic_cast<KEL_Array*>(place.container)) {
            array->setVar(put.value.get(), place.index);
        } else {
            dynamic_cast<KEL_Struct&>(*place.container)
                .setVar(place.step.text.c_str(), put.value.get());
        }
    }

    void remove(const Path& path) {
        const Place place = findValue(patched_, path);
        if (auto* array = dynamic_cast<KEL_Array*>(place.container)) {
            array->removeVar(place.index);
        } else {
            dynamic_cast<KEL_Struct&>(*place.container).removeVar(place.step.text.c_str());
        }
    }

    void add(Put& put) {
        Path around = put.path;
        around.steps.pop_back();
        KEL* container = findValue(patched_, around).value;
        const Step& step = put.path.steps.back();
        if (auto* array = dynamic_cast<KEL_Array*>(container)) {
            require(step.index <= static_cast<uint64_t>(array->getCount()),
                    "an added element has its place");
            array->insertVar(put.value.get(), static_cast<int32_t>(step.index));
        } else {
            auto& variables = dynamic_cast<KEL_Struct&>(*container);
            variables.addVar(step.text.c_str(), put.value.get());
        }
    }

    const Document& after_;
    Document patched_;
    std::vector<Put> replaced_;
    std::vector<Path> removed_;
    std::vector<Put> added_;
};

void requirePatch(const Document& before, const Document& after, const Changes& changes) {
    if (!isPlain(before) || !isPlain(after)) {
        return;
    }
    const Document report = reportOf(changes);
    Patch patch(before, after);
    require(compare(patch.apply(report), after, {}).list.empty(),
            "the report makes the second document of the first one");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string all(reinterpret_cast<const char*>(data), size);
    const std::string separator = "\n----\n";
    const std::size_t middle = all.find(separator);
    if (middle == std::string::npos) {
        return 0;
    }
    const std::string first = all.substr(0, middle) + "\n";
    const std::string second = all.substr(middle + separator.size());
    try {
        const Document before = read(first);
        const Document after = read(second);
        requireNone(before, before, "a document has no differences from itself");
        requireNone(before, read(first), "what is read twice has no differences");
        const Changes changes = compare(before, after, {});
        require(changes.list.empty() == compare(after, before, {}).list.empty(),
                "differences are found in both directions");
        requirePlaces(before, after, changes);
        requirePatch(before, after, changes);
    } catch (const Failure& failure) {
        require(failure.trouble == Trouble::malformed, "only reading fails", failure.message);
    }
    return 0;
}
