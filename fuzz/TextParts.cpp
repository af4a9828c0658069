// The tool reads a text part by part as it reads the whole text, however small the parts are, or it
// refuses to do so before it has shown a value.
#include "parts/TextParts.h"

#include "Property.h"
#include "document/KelReader.h"
#include "failures/Failure.h"
#include "parts/NotInParts.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

using namespace kel::fuzz;
using namespace kel::tool;

namespace {

/// Puts the parts of root values together.
class Collector : public RootVisitor {
public:
    void begin(bool hasSeveralRoots, bool isTree) override {
        require(isTree, "a text that is read in parts shares nothing");
        hasSeveralRoots_ = hasSeveralRoots;
    }

    void visit(const RootPart& part) override {
        if (part.isFirst) {
            require(part.root == roots_.size(), "root values are numbered");
            roots_.push_back(share(part.value));
        } else {
            require(part.root + 1 == roots_.size(), "parts of a root value have its number");
            append(dynamic_cast<KEL_Array&>(*part.value), part.firstElement);
        }
    }

    const std::vector<Value>& roots() const { return roots_; }
    bool hasSeveralRoots() const { return hasSeveralRoots_; }

private:
    void append(const KEL_Array& elements, std::uint64_t first) {
        auto& array = dynamic_cast<KEL_Array&>(*roots_.back());
        require(first == static_cast<std::uint64_t>(array.getCount()), "elements are numbered");
        for (std::int32_t i = 0; i < elements.getCount(); ++i) {
            array.addVar(elements.getVar(i));
        }
    }

    std::vector<Value> roots_;
    bool hasSeveralRoots_ = false;
};

std::optional<Document> readWhole(std::string_view text) {
    try {
        return readKel(text, Format::text, "input");
    } catch (const Failure&) {
        return std::nullopt;
    }
}

void requireSameRoots(const Collector& parts, const Document& whole) {
    require(parts.roots().size() == whole.roots().size(), "both ways read as many root values");
    require(parts.hasSeveralRoots() == (whole.roots().size() > 1), "their number is announced");
    for (std::size_t i = 0; i < whole.roots().size(); ++i) {
        const KEL* one = parts.roots()[i].get();
        const KEL* other = whole.roots()[i].get();
        require(one == nullptr || other == nullptr ? one == other : one->equalsValue(other),
                "both ways read the same values");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::optional<Document> whole = readWhole(text);
    for (const std::size_t most : {1U, 10U, 100U}) {
        Collector parts;
        try {
            if (visitPlainText(text, parts, most)) {
                require(whole.has_value(), "what is read in parts is read as a whole");
                requireSameRoots(parts, *whole);
            }
        } catch (const UnreadablePart&) {
            fail("the library reads every part");
        }
    }
    return 0;
}
