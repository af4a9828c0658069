#include "document/Formatting.h"

#include "document/KelWriter.h"
#include "failures/Failure.h"
#include "losses/DocumentScan.h"
#include "parts/RootVisitor.h"
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

} // namespace

LaidOut layOutJson(const Content& content, const std::string& name, const JsonLayout& layout,
                   uint64_t limit, const TextBuffer::PassOn& passOn) {
    LaidOut laidOut;
    std::string_view rest(content.bytes.data(), content.size());
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

bool isFormattedText(const Document& document, const std::string& text) {
    MemoryToWrite memory(text.size() + 1);
    try {
        writeKel(document, Format::text, memory.file());
    } catch (const Failure&) {
        return false; // the other text is longer
    }
    return memory.take() == text;
}

} // namespace kel::tool
