// The tool's changes of a file at paths: set, rm and mv. The input is one edit on each line, such
// as `set a.b 5`, `rm c[0] c[1]` or `mv d e`, then an empty line, then a document. An edit does
// what it says or is refused. Doing it again, or undoing it, leads to a known document.
#include "edit/Editor.h"

#include "Property.h"
#include "Roots.h"
#include "diff/Comparison.h"
#include "document/KelReader.h"
#include "document/TreeCursor.h"
#include "edit/ValueArgument.h"
#include "failures/Failure.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using namespace kel::fuzz;
using namespace kel::tool;

namespace {

/// One line of the input: up to three words, of which the last one can hold blanks.
struct Edit {
    std::string command;
    std::string path;
    std::string argument;
};

Edit editOf(const std::string& line) {
    const auto cut = [](std::string& text) {
        const std::size_t blank = text.find(' ');
        std::string word = text.substr(0, blank);
        text.erase(0, blank == std::string::npos ? blank : blank + 1);
        return word;
    };
    std::string rest = line;
    std::string command = cut(rest);
    std::string path = cut(rest);
    return {std::move(command), std::move(path), std::move(rest)};
}

/// Edits a document that can be read anew as often as needed.
class Session {
public:
    explicit Session(std::string content)
        : content_(std::move(content)),
          format_(isBinary(content_) ? Format::binary : Format::text) {}

    /// Returns the document after the edits so far.
    /// \throws Failure if the content is damaged
    Document read() const {
        Document document = readKel(content_, format_, "input");
        for (const Edit& edit : done_) {
            Editor editor(document, true);
            apply(editor, edit);
        }
        return document;
    }

    /// Makes the next edit. \return false if it is refused
    bool make(const Edit& edit) {
        Document document = read();
        {
            Editor editor(document, true);
            try {
                apply(editor, edit);
            } catch (const Failure& failure) {
                require(failure.trouble == Trouble::refused || failure.trouble == Trouble::usage,
                        "an edit is refused or the command line is wrong", failure.message);
                require(!failure.message.empty(), "a refusal has a reason");
                return false;
            }
        }
        check(document, edit);
        done_.push_back(edit);
        return true;
    }

private:
    static void requireEqual(const Document& a, const Document& b, const char* property,
                             const Edit& edit) {
        require(compare(a, b, {}).list.empty(), property, edit.command + ' ' + edit.path);
    }

    Value valueOf(const Edit& edit) const {
        return valueOfArgument(edit.argument, ValueForm::text, format_, "VALUE", "--string takes");
    }

    void apply(Editor& editor, const Edit& edit) const {
        const Path path = Path::of(edit.path);
        if (edit.command == "set") {
            editor.set(path, valueOf(edit));
        } else if (edit.command == "rm") {
            editor.remove(removedBy(edit));
        } else {
            editor.rename(path, edit.argument, false);
        }
    }

    /// Checks a document after an edit against the document before it.
    void check(Document& after, const Edit& edit) const {
        const Document before = read();
        const Path path = Path::of(edit.path);
        if (edit.command == "set") {
            checkSet(before, after, path, edit);
        } else if (edit.command == "rm") {
            require(!isThere(after, path) || hasNumber(path) || path.steps.empty(),
                    "a removed variable is gone", edit.path);
            checkRemoval(after, edit);
        } else {
            checkRename(before, after, path, edit);
        }
    }

    void checkSet(const Document& before, Document& after, const Path& path,
                  const Edit& edit) const {
        const bool isPair = isPairOf(after, path);
        const bool wasThere = path.steps.empty() ? path.root.value_or(0) < before.roots().size()
                                                 : isPair || isThere(before, path);
        if (!isPair) {
            const Document stored = documentOf(share(findValue(after, path).value));
            requireEqual(stored, documentOf(valueOf(edit)), "a value is where it was set", edit);
        }
        Document twice = read();
        {
            Editor editor(twice, true);
            apply(editor, edit);
            apply(editor, edit);
        }
        requireEqual(twice, after, "setting a value again changes nothing", edit);
        if (!wasThere) {
            Editor editor(after, true);
            editor.remove({path});
            requireEqual(after, before, "removing a value that was added undoes that", edit);
        }
    }

    static std::vector<Path> removedBy(const Edit& edit) {
        std::vector<Path> paths{Path::of(edit.path)};
        std::istringstream words(edit.argument);
        for (std::string word; words >> word;) {
            paths.push_back(Path::of(word));
        }
        return paths;
    }

    /// Removes the same values one by one, from the last one to the first one, which is the same
    /// unless two paths lead to one place.
    void checkRemoval(const Document& after, const Edit& edit) const {
        std::vector<Path> paths = removedBy(edit);
        std::sort(paths.begin(), paths.end(), [](const Path& a, const Path& b) {
            return std::pair(a.root, keyOf(a)) > std::pair(b.root, keyOf(b));
        });
        Document oneByOne = read();
        if (paths.size() == 1 || oneByOne.roots().size() > 1 || isShared(oneByOne)) {
            return;
        }
        std::set<std::pair<const KEL*, std::string>> known;
        for (const Path& path : paths) {
            try {
                const Place place = findPlace(oneByOne, path);
                if (hasIdentity(path) || isPairOf(oneByOne, path) ||
                    !known.emplace(place.container, path.text()).second) {
                    return;
                }
                Editor editor(oneByOne, true);
                editor.remove({path});
            } catch (const Failure&) {
                return; // two paths to one place
            }
        }
        requireEqual(oneByOne, after, "values are removed as if one by one", edit);
    }

    /// Returns the steps in a form that orders them.
    static std::vector<std::pair<uint64_t, std::string>> keyOf(const Path& path) {
        std::vector<std::pair<uint64_t, std::string>> steps;
        for (const Step& step : path.steps) {
            steps.emplace_back(step.index, step.text);
        }
        return steps;
    }

    static bool hasIdentity(const Path& path) {
        return std::any_of(path.steps.begin(), path.steps.end(),
                           [](const Step& step) { return step.kind == Step::Kind::identity; });
    }

    /// Returns whether two places hold one container.
    static bool isShared(const Document& document) {
        std::set<const KEL*> containers;
        for (const Value& root : document.roots()) {
            TreeCursor cursor(root.get());
            for (auto event = cursor.next(); event != TreeCursor::Event::done;
                 event = cursor.next()) {
                if (event == TreeCursor::Event::enter &&
                    !containers.insert(cursor.value()).second) {
                    return true;
                }
            }
        }
        return false;
    }

    void checkRename(const Document& before, Document& after, const Path& path,
                     const Edit& edit) const {
        if (path.steps.back().text == edit.argument) {
            requireEqual(after, before, "a name that stays changes nothing", edit);
            return;
        }
        require(!isThere(after, path), "a renamed variable has no value under its old name",
                edit.path);
        Path renamed = path;
        renamed.steps.back().text = edit.argument;
        Editor editor(after, true);
        editor.rename(renamed, path.steps.back().text, false);
        requireEqual(after, before, "renaming back undoes the change", edit);
    }

    static Document documentOf(Value&& root) {
        std::vector<Value> roots;
        roots.push_back(std::move(root));
        return {std::move(roots), true};
    }

    /// Returns whether the path leads to a value, even a null one.
    static bool isThere(const Document& document, const Path& path) {
        try {
            findValue(document, path);
            return true;
        } catch (const Failure&) {
            return false;
        }
    }

    static bool hasNumber(const Path& path) {
        return !path.steps.empty() && path.steps.back().kind == Step::Kind::index;
    }

    /// Returns whether the path names a pair of an index list, which has no value of its own.
    static bool isPairOf(const Document& document, Path path) {
        if (!hasNumber(path)) {
            return false;
        }
        path.steps.pop_back();
        return isThere(document, path) &&
               dynamic_cast<KEL_IndexList*>(findValue(document, path).value) != nullptr;
    }

    std::string content_;
    Format format_;
    std::vector<Edit> done_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr std::size_t mostEdits = 6;
    const std::string all(reinterpret_cast<const char*>(data), size);
    std::vector<Edit> edits;
    std::size_t begin = 0;
    for (std::size_t end = all.find('\n'); end != std::string::npos && end != begin;
         end = all.find('\n', begin)) {
        edits.push_back(editOf(all.substr(begin, end - begin)));
        begin = end + 1;
    }
    Session session(begin < size ? all.substr(begin + 1) : "");
    try {
        session.read();
    } catch (const Failure&) {
        return 0; // a damaged document
    }
    for (std::size_t i = 0; i < edits.size() && i < mostEdits; ++i) {
        session.make(edits[i]);
    }
    return 0;
}
