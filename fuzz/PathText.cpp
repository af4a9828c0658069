// The paths of the tool. The first bytes are the steps of a path. Every path is one line of
// printable UTF-8 of a limited length, and the steps can be read from it.
#include "path/PathText.h"

#include "Property.h"
#include "Script.h"
#include "failures/Failure.h"
#include "path/Path.h"
#include "words/GuidText.h"
#include "words/Utf8.h"

#include <algorithm>
#include <vector>

using namespace kel::fuzz;
using namespace kel::tool;

namespace {

/// Returns whether no terminal reacts to the text.
bool isPrintable(std::string_view text) {
    return isUtf8(text) && std::none_of(text.begin(), text.end(),
                                        [](char c) { return (c >= 0 && c < 0x20) || c == 0x7F; });
}

/// Returns the step in the form in which the script notes it.
std::string noted(const Step& step) {
    switch (step.kind) {
    case Step::Kind::index:
        return "index " + std::to_string(step.index);
    case Step::Kind::identity:
        return "identity " + step.text;
    case Step::Kind::name:
        break;
    }
    return "name " + step.text;
}

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

void readBack(const std::string& text, const std::vector<std::string>& steps) {
    const Path path = Path::of(text);
    require(path.steps.size() == steps.size(), "the path has as many steps", text);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        requireSame(noted(path.steps[i]), steps[i], "the steps can be read from the path");
    }
}

/// Reads any text as a path, which is refused or written again as itself.
void readAny(std::string_view text) {
    try {
        const std::string again = Path::of(text).text();
        requireSame(Path::of(again).text(), again, "a path is written as it is read");
    } catch (const Failure& failure) {
        require(isPrintable(failure.message), "the reason is printable", failure.message);
    }
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
    readAny(all);
    const std::string safe = withoutControls(all);
    require(isPrintable(safe) && safe.size() <= 6 * size, "text without controls is printable");
    require(!isPrintable(all) || safe == all, "printable text stays as it is");
    const std::optional<JHashCode> guid = guidOfText(all);
    require(!guid || guidOfText(textOfGuid(*guid)) == guid, "a guid is read back");
    return 0;
}
