// The paths of the tool. The first bytes are the steps of a path. Every path is one line of
// printable UTF-8 of a limited length, and the steps can be read from it.
#include "PathText.h"

#include "GuidText.h"
#include "Property.h"
#include "Script.h"
#include "Utf8.h"

#include <algorithm>
#include <charconv>
#include <vector>

using namespace kel::fuzz;
using namespace kel::tool;

namespace {

/// Returns whether no terminal reacts to the text.
bool isPrintable(std::string_view text) {
    return isUtf8(text) && std::none_of(text.begin(), text.end(),
                                        [](char c) { return (c >= 0 && c < 0x20) || c == 0x7F; });
}

/// Reads the steps of a path: indices as "[N]", names as they are, identities as "(GUID)".
class PathReader {
public:
    explicit PathReader(std::string_view path) : rest_(path) {}

    bool isAtEnd() const { return rest_.empty(); }

    /// Returns the next step in the form in which the script notes it.
    std::string step() {
        if (skip("[\"")) {
            return "name " + quoted();
        }
        if (skip("[")) {
            return "index " + upTo(']');
        }
        if (skip("(")) {
            return "identity " + upTo(')');
        }
        skip(".");
        const auto end = std::min(rest_.find_first_of(".[("), rest_.size());
        require(end > 0, "a bare name has characters");
        return "name " + take(end);
    }

private:
    bool skip(std::string_view lead) {
        const bool isThere = rest_.starts_with(lead);
        rest_.remove_prefix(isThere ? lead.size() : 0);
        return isThere;
    }

    std::string take(std::size_t count) {
        const std::string taken(rest_.substr(0, count));
        rest_.remove_prefix(count);
        return taken;
    }

    std::string upTo(char end) {
        const std::size_t count = rest_.find(end);
        require(count != std::string_view::npos, "a bracket is closed");
        const std::string taken = take(count);
        rest_.remove_prefix(1);
        return taken;
    }

    char hex(std::size_t digits) {
        unsigned value = 0;
        const std::string spelled = take(digits);
        const auto parsed =
            std::from_chars(spelled.data(), spelled.data() + spelled.size(), value, 16);
        require(spelled.size() == digits && parsed.ptr == spelled.data() + digits && value < 256,
                "an escape is whole");
        return static_cast<char>(value);
    }

    std::string quoted() {
        std::string name;
        while (!skip("\"]")) {
            if (skip("\\u")) {
                name += hex(4);
            } else if (skip("\\x")) {
                name += hex(2);
            } else {
                skip("\\");
                require(!rest_.empty(), "a quoted name is closed");
                name += take(1);
            }
        }
        return name;
    }

    std::string_view rest_;
};

void addStep(Script& script, PathText& path, std::vector<std::string>& steps) {
    const int choice = script.byte();
    if (choice < 64) {
        const uint64_t index = script.word() * uint64_t{0x100000001};
        path.addIndex(index);
        steps.push_back("index " + std::to_string(index));
    } else if (choice < 96) {
        const uint32_t word = script.word();
        const std::string guid = textOfGuid(JHashCode(word, word * 3, word * 5, ~word));
        require(guidOfText(guid) == JHashCode(word, word * 3, word * 5, ~word),
                "the text of a guid is read back");
        path.addIdentity(guid);
        steps.push_back("identity " + guid);
    } else {
        const std::string name = script.bytes(static_cast<std::size_t>(choice - 96) / 4);
        path.addName(name);
        steps.push_back("name " + name);
    }
}

void readBack(const std::string& path, const std::vector<std::string>& steps) {
    PathReader reader(path);
    for (const std::string& step : steps) {
        requireSame(reader.step(), step, "the steps can be read from the path");
    }
    require(reader.isAtEnd(), "the path has no other steps", path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Script script(data, size);
    PathText path;
    std::vector<std::string> steps;
    while (!script.isAtEnd()) {
        addStep(script, path, steps);
        const std::string text = path.take();
        require(isPrintable(text), "a path is printable", text);
        require(text.size() <= PathText::longest, "a path is not too long", text);
        if (text.find(" ... ") == std::string::npos) {
            readBack(text, steps);
        }
    }
    const std::string_view all(reinterpret_cast<const char*>(data), size);
    const std::string safe = withoutControls(all);
    require(isPrintable(safe) && safe.size() <= 6 * size, "text without controls is printable");
    require(!isPrintable(all) || safe == all, "printable text stays as it is");
    const std::optional<JHashCode> guid = guidOfText(all);
    require(!guid || guidOfText(textOfGuid(*guid)) == guid, "a guid is read back");
    return 0;
}
