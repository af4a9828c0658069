#include "document/Formatting.h"

#include "document/KelWriter.h"
#include "failures/Failure.h"
#include "losses/DocumentScan.h"
#include "parts/NotInParts.h"
#include "parts/RootVisitor.h"
#include "parts/TextParts.h"
#include "system/System.h"
#include "json/JsonParts.h"
#include "json/JsonWriter.h"

#include <optional>
#include <string_view>

namespace kel::tool {

namespace {

/// Writes the root values that it visits as JSON.
class JsonOfRoots : public RootVisitor {
public:
    JsonOfRoots(const JsonLayout& layout, const TextBuffer::PassOn& passOn)
        : layout_(layout), buffer_(passOn) {}

    void begin(bool hasSeveralRoots, bool) override {
        hasSeveralRoots_ = hasSeveralRoots;
        writer_.emplace(buffer_, layout_, hasSeveralRoots ? 2 : 1);
    }

    void visit(const RootPart& part) override {
        if (part.isFirst && part.isLast) {
            writer_->write(part.value);
            return;
        }
        if (part.isFirst) {
            writer_->open(false, nullptr);
        }
        writer_->writeContents(*part.value);
        if (part.isLast) {
            writer_->close();
        }
    }

    void finish() { buffer_.flush(); }
    bool hasSeveralRoots() const { return hasSeveralRoots_; }

private:
    JsonLayout layout_;
    TextBuffer buffer_;
    std::optional<JsonWriter> writer_;
    bool hasSeveralRoots_ = false;
};

/// Returns the text of a root value, or of its part without the brackets of other parts.
std::string textOfPart(const RootPart& part) {
    if (part.value == nullptr) {
        return "NULL\n";
    }
    constexpr std::string_view opening = "[\n";
    constexpr std::string_view closing = "]\n";
    std::string text = textOf(*part.value);
    if (!part.isLast) {
        text.resize(text.size() - closing.size());
    }
    if (!part.isFirst) {
        text.erase(0, opening.size());
    }
    return text;
}

/// Passes on the texts of the root values that it visits.
class TextOfRoots : public RootVisitor {
public:
    explicit TextOfRoots(const TextBuffer::PassOn& passOn) : passOn_(passOn) {}

    void begin(bool, bool) override {}
    void visit(const RootPart& part) override { passOn_(textOfPart(part)); }

private:
    const TextBuffer::PassOn& passOn_;
};

/// Examines the root values that it visits.
class TextExaminer : public RootVisitor {
public:
    TextExaminer(std::string_view content, TextExamination wanted, uint64_t limit)
        : rest_(content), wanted_(wanted), limit_(limit), isSame_(wanted.compares) {}

    void begin(bool, bool) override {}

    void visit(const RootPart& part) override {
        if (wanted_.willBeLaid) {
            requireNoLoss(part);
        }
        if (isSame_) {
            const std::string text = textOfPart(part);
            isSame_ = rest_.starts_with(text);
            rest_.remove_prefix(isSame_ ? text.size() : 0);
        }
    }

    bool isSame() const { return isSame_ && rest_.empty(); }

private:
    /// \throws NotInParts
    void requireNoLoss(const RootPart& part) {
        constexpr uint64_t mostOfPart = uint64_t{256} << 20U; // which the library always writes
        std::vector<Value> values;
        values.push_back(share(part.value));
        Losses losses;
        const uint64_t size =
            scanDocument(Document(std::move(values), false), Format::text, &losses).bytes;
        if (losses.count() > 0 || size > mostOfPart || size > limit_ - size_) {
            throw NotInParts();
        }
        size_ += size;
    }

    std::string_view rest_; ///< of the content, to be compared
    TextExamination wanted_;
    uint64_t limit_;
    uint64_t size_ = 0; ///< of the layout so far, at most
    bool isSame_;
};

} // namespace

std::optional<bool> examineText(const InputBytes& content, TextExamination wanted, uint64_t limit) {
    TextExaminer examiner(content, wanted, limit);
    try {
        if (visitPlainText(content, examiner)) {
            return examiner.isSame();
        }
    } catch (const NotInParts&) {
    } catch (const UnreadablePart&) {
    } catch (const Failure&) { // the library refuses the length of a text
    }
    return std::nullopt;
}

void layOutText(const InputBytes& content, const std::string& name,
                const TextBuffer::PassOn& passOn) {
    TextOfRoots writer(passOn);
    try {
        if (visitPlainText(content, writer)) {
            return;
        }
    } catch (const UnreadablePart&) {
    }
    // not reached: no test changes a file just then
    throw changedMeanwhile(name);
}

LaidOut layOutJson(const Content& content, const std::string& name, const JsonLayout& layout,
                   uint64_t limit, const TextBuffer::PassOn& passOn) {
    LaidOut laidOut;
    std::string_view rest = content.bytes;
    uint64_t size = 0;
    bool isSame = true;
    JsonOfRoots writer(layout, [&](std::string_view text) {
        size += text.size();
        refuseHugeOutput({size, size, size, std::nullopt, false, {}}, Format::json, limit, name);
        isSame = isSame && rest.starts_with(text);
        rest.remove_prefix(isSame ? text.size() : 0);
        if (passOn) {
            passOn(text);
        }
    });
    visitJson(content.bytes, name, Format::json, writer, laidOut.losses);
    writer.finish();
    laidOut.isSame = isSame && rest.empty();
    laidOut.hasSeveralRoots = writer.hasSeveralRoots();
    return laidOut;
}

bool isFormattedText(const Document& document, std::string_view text) {
    MemoryToWrite memory(text.size() + 1);
    try {
        writeKel(document, Format::text, memory.file());
    } catch (const Failure&) {
        return false; // the other text is longer
    }
    return memory.take() == text;
}

} // namespace kel::tool
