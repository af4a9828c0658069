#include "parts/TextParts.h"

#include "document/KelReader.h"
#include "parts/NotInParts.h"
#include "parts/TextOutline.h"

#include <string>
#include <vector>

namespace kel::tool {

namespace {

/// Reads the parts of one text.
class TextPartReader {
public:
    TextPartReader(const InputBytes& content, const TextOutline& outline, RootVisitor& visitor)
        : content_(content), trail_(content),
          definitions_(content.view().substr(0, outline.definitions)), visitor_(visitor) {}

    void read(const TextPart& part) {
        trail_.reach(content_.data() + part.begin);
        text_ = definitions_;
        const std::string_view values = content_.substr(part.begin, part.end - part.begin);
        if (part.roots > 0) {
            text_ += values;
            visitRoots(part);
        } else {
            ((text_ += '[') += values) += ']';
            visitElements(part);
        }
    }

private:
    std::vector<Value> valuesOf(size_t count) const {
        std::vector<Value> values = rootsOfText(text_, count);
        // not reached: only a file that changes meanwhile has such a part
        if (values.size() != count) {
            throw UnreadablePart();
        }
        return values;
    }

    void visitRoots(const TextPart& part) {
        for (const Value& value : valuesOf(part.roots)) {
            visitor_.visit({value.get(), roots_++});
        }
    }

    void visitElements(const TextPart& part) {
        const Value array = std::move(valuesOf(1).front());
        firstElement_ = part.isFirst ? 0 : firstElement_;
        visitor_.visit({array.get(), roots_, firstElement_, part.isFirst, part.isLast});
        firstElement_ += static_cast<uint64_t>(dynamic_cast<const KEL_Array&>(*array).getCount());
        roots_ += part.isLast ? 1 : 0;
    }

    std::string_view content_;
    Trail trail_;
    std::string_view definitions_;
    RootVisitor& visitor_;
    std::string text_;          ///< of the part; kept because new memory costs time
    size_t roots_ = 0;          ///< that were visited
    uint64_t firstElement_ = 0; ///< the number of the part's first element
};

} // namespace

bool visitPlainText(const InputBytes& content, RootVisitor& visitor, size_t size) {
    const std::optional<TextOutline> outline = outlineText(content, size);
    if (!outline) {
        return false;
    }
    visitor.begin(outline->roots > 1, true);
    TextPartReader reader(content, *outline, visitor);
    for (const TextPart& part : outline->parts) {
        reader.read(part);
    }
    return true;
}

} // namespace kel::tool
