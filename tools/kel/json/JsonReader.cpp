#include "json/JsonReader.h"

#include "explain/Refusal.h"
#include "explain/SourceExcerpt.h"
#include "failures/Failure.h"
#include "path/PathText.h"
#include "json/JsonBuilder.h"
#include "json/JsonParts.h"
#include "json/JsonRecordBuilder.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

namespace kel::tool {

namespace {

/// The content of an input and the place that the parser has come to. A line end seems to follow
/// the content, so that the parser finds white space after every number.
struct Source {
    const InputBytes& content;
    size_t at;

    /// Returns the offset after the line end.
    size_t end() const { return content.size() + 1; }

    char peek() const { return charAt(at); }
    char charAt(size_t place) const {
        return place < content.size() ? content.data()[place] : '\n';
    }
};

/// Reads the source for the parser and moves its place: the parser itself does not report where a
/// JSON text ended.
class Reader {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = char;

    explicit Reader(Source& source) : source_(&source) {}

    reference operator*() const { return source_->peek(); }
    Reader& operator++() {
        ++source_->at;
        return *this;
    }
    friend bool operator==(const Reader& a, const Reader& b) {
        return a.source_->at == b.source_->at;
    }

private:
    Source* source_;
};

/// Passes the parser's events to a builder and keeps failures.
class Handler {
public:
    Handler(const Source& source, JsonBuilder& builder)
        : source_(source), trail_(source.content), builder_(builder) {}

    bool null() { return builder_.addNull(), hasPassed(); }
    bool boolean(bool value) { return builder_.addBoolean(value), hasPassed(); }
    bool number_integer(int64_t value) { return builder_.addInteger(value), hasPassed(); }
    bool number_unsigned(uint64_t value) { return builder_.addUnsigned(value), hasPassed(); }
    bool number_float(double value, const std::string& spelling) {
        return builder_.addDouble(value, spelling), hasPassed();
    }
    bool string(std::string& text) { return builder_.addString(text), hasPassed(); }
    // not reached: JSON text contains none
    bool binary(nlohmann::json::binary_t&) { return false; }
    bool start_object(size_t) { return builder_.beginStruct(), true; }
    bool key(std::string& name) { return builder_.setName(name), true; }
    bool end_object() { return builder_.endStruct(), hasPassed(); }
    bool start_array(size_t) { return builder_.beginArray(), true; }
    bool end_array() { return builder_.endArray(), hasPassed(); }

    bool parse_error(size_t, const std::string&, const nlohmann::json::exception& failure) {
        failure_ = failure.what();
        return false;
    }

    const std::string& failure() const { return failure_; }

private:
    bool hasPassed() {
        trail_.reach(source_.content.data() + source_.at);
        return true;
    }

    const Source& source_;
    Trail trail_;
    JsonBuilder& builder_;
    std::string failure_;
};

/// Returns the parser's message without the parser's name and the place, which counts from the
/// beginning of one JSON text only.
std::string reasonOf(std::string_view message) {
    constexpr size_t longestReason = 200; // messages quote input, which can be one huge string
    const auto removeThrough = [&message](std::string_view lead) {
        const size_t at = message.find(lead);
        // not reached: the parser's messages have these parts
        message.remove_prefix(at == std::string_view::npos ? 0 : at + lead.size());
    };
    removeThrough("] ");
    if (message.starts_with("parse error at ")) {
        removeThrough(": ");
    }
    const bool isLong = message.size() > longestReason;
    return withoutControls(message.substr(0, longestReason)) + (isLong ? "..." : "");
}

/// Reads one JSON text after the other.
class JsonReader {
public:
    JsonReader(const InputBytes& content, const std::string& inputName, JsonBuilder& builder)
        : source_{content, 0}, inputName_(inputName), handler_(source_, builder) {}

    void readAll() {
        do {
            const size_t first = source_.at;
            readOne(first);
            stepBackBehindNumber(first);
            requireSeparator();
        } while (source_.at != source_.end());
    }

private:
    static bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

    /// Returns the first place that is not white space, or the end.
    size_t skipSpace(size_t at, size_t end) const {
        while (at != end && isSpace(source_.charAt(at))) {
            ++at;
        }
        return at;
    }

    void readOne(size_t first) {
        Source end{source_.content, source_.end()};
        if (!nlohmann::json::sax_parse(Reader(source_), Reader(end), &handler_,
                                       nlohmann::json::input_format_t::json, false)) {
            fail(first, source_.at, reasonOf(handler_.failure()));
        }
    }

    /// Steps back to the end of a number. The parser has also read the one character after it.
    void stepBackBehindNumber(size_t first) {
        const size_t start = skipSpace(first, source_.at);
        const char c = source_.charAt(start);
        if (start != source_.at && (c == '-' || (c >= '0' && c <= '9'))) {
            --source_.at;
        }
    }

    /// Moves to the next text or the end. "01" is a mistake, not a pair of numbers.
    void requireSeparator() {
        const char last = source_.charAt(source_.at - 1);
        const size_t end = source_.at;
        source_.at = skipSpace(end, source_.end());
        const char next = source_.peek();
        if (source_.at != source_.end() && source_.at == end && last != '}' && last != ']' &&
            next != '{' && next != '[') {
            failBetweenRoots();
        }
    }

    [[noreturn]] void fail(size_t first, size_t stop, const std::string& reason) const {
        throw failureOf(
            {Format::json, source_.content, inputName_, inContent(first), inContent(stop), reason});
    }

    [[noreturn]] void failBetweenRoots() const {
        const char next = source_.peek();
        const bool isAfterZero =
            source_.charAt(source_.at - 1) == '0' && next >= '0' && next <= '9';
        throw failureAt(source_.content, inputName_,
                        {inContent(source_.at), 1, "white space is missing between two values",
                         isAfterZero ? "numbers have no leading zeros" : ""});
    }

    size_t inContent(size_t at) const { return std::min(at, source_.content.size()); }

    Source source_;
    const std::string& inputName_;
    Handler handler_;
};

} // namespace

Document readJson(const InputBytes& content, const std::string& inputName,
                  std::optional<Format> target, Losses& losses) {
    JsonBuilder builder(target, losses);
    JsonReader(content, inputName, builder).readAll();
    return Document(builder.takeRoots(), false);
}

OutputBytes recordsOfJson(const InputBytes& content, const std::string& inputName,
                          std::FILE* file) {
    JsonRecordBuilder builder(file);
    JsonReader(content, inputName, builder).readAll();
    return builder.takeRecords();
}

void visitJson(const InputBytes& content, const std::string& inputName,
               std::optional<Format> target, RootVisitor& visitor, Losses& losses) {
    visitor.begin(hasSeveralTexts(content), true);
    JsonParts builder(target, visitor, losses);
    JsonReader(content, inputName, builder).readAll();
}

} // namespace kel::tool
