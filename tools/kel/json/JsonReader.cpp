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

/// Reads the content for the parser and records the parser's position in a variable outside: the
/// parser itself does not report where a JSON text ended.
class Reader {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    explicit Reader(const char** at) : at_(at) {}

    reference operator*() const { return **at_; }
    Reader& operator++() {
        ++*at_;
        return *this;
    }
    friend bool operator==(const Reader& a, const Reader& b) { return *a.at_ == *b.at_; }

private:
    const char** at_;
};

/// Passes the parser's events to a builder and keeps failures.
class Handler {
public:
    explicit Handler(JsonBuilder& builder) : builder_(builder) {}

    bool null() { return builder_.addNull(), true; }
    bool boolean(bool value) { return builder_.addBoolean(value), true; }
    bool number_integer(int64_t value) { return builder_.addInteger(value), true; }
    bool number_unsigned(uint64_t value) { return builder_.addUnsigned(value), true; }
    bool number_float(double value, const std::string& spelling) {
        return builder_.addDouble(value, spelling), true;
    }
    bool string(std::string& text) { return builder_.addString(text), true; }
    bool binary(nlohmann::json::binary_t&) { return false; } // JSON text contains none
    bool start_object(size_t) { return builder_.beginStruct(), true; }
    bool key(std::string& name) { return builder_.setName(name), true; }
    bool end_object() { return builder_.endStruct(), true; }
    bool start_array(size_t) { return builder_.beginArray(), true; }
    bool end_array() { return builder_.endArray(), true; }

    bool parse_error(size_t, const std::string&, const nlohmann::json::exception& failure) {
        failure_ = failure.what();
        return false;
    }

    const std::string& failure() const { return failure_; }

private:
    JsonBuilder& builder_;
    std::string failure_;
};

/// Returns the parser's message without the parser's name and the place, which counts from the
/// beginning of one JSON text only.
std::string reasonOf(std::string_view message) {
    constexpr size_t longestReason = 200; // messages quote input, which can be one huge string
    const auto removeThrough = [&message](std::string_view lead) {
        const size_t at = message.find(lead);
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
    /// \param content must end with white space, so that something follows every number
    JsonReader(const std::string& content, const std::string& inputName, JsonBuilder& builder)
        : begin_(content.data()), at_(begin_), end_(begin_ + content.size()), inputName_(inputName),
          handler_(builder) {}

    void readAll() {
        do {
            const char* first = at_;
            readOne(first);
            stepBackBehindNumber(first);
            requireSeparator();
        } while (at_ != end_);
    }

private:
    static bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

    void readOne(const char* first) {
        const char* end = end_;
        if (!nlohmann::json::sax_parse(Reader(&at_), Reader(&end), &handler_,
                                       nlohmann::json::input_format_t::json, false)) {
            fail(first, at_, reasonOf(handler_.failure()));
        }
    }

    /// Steps back to the end of a number. The parser has also read the one character after it.
    void stepBackBehindNumber(const char* first) {
        const char* start = std::find_if_not(first, at_, isSpace);
        if (start != at_ && (*start == '-' || (*start >= '0' && *start <= '9'))) {
            --at_;
        }
    }

    /// Moves to the next text or the end. "01" is a mistake, not a pair of numbers.
    void requireSeparator() {
        const char last = at_[-1];
        const char* behind = at_;
        at_ = std::find_if_not(at_, end_, isSpace);
        if (at_ != end_ && at_ == behind && last != '}' && last != ']' && *at_ != '{' &&
            *at_ != '[') {
            failBetweenRoots();
        }
    }

    [[noreturn]] void fail(const char* first, const char* stop, const std::string& reason) const {
        throw failureOf(
            {Format::json, content(), inputName_, offsetOf(first), offsetOf(stop), reason});
    }

    [[noreturn]] void failBetweenRoots() const {
        const bool isAfterZero = at_[-1] == '0' && *at_ >= '0' && *at_ <= '9';
        throw Failure{Trouble::malformed,
                      describeFault(content(), inputName_,
                                    {offsetOf(at_), 1, "white space is missing between two values",
                                     isAfterZero ? "numbers have no leading zeros" : ""})};
    }

    /// Returns the content of the input, without the line end that follows it here.
    std::string_view content() const { return {begin_, end_ - 1}; }

    size_t offsetOf(const char* at) const {
        return std::min(static_cast<size_t>(at - begin_), content().size());
    }

    const char* begin_;
    const char* at_;
    const char* end_;
    const std::string& inputName_;
    Handler handler_;
};

} // namespace

Document readJson(const std::string& content, const std::string& inputName,
                  std::optional<Format> target, Losses& losses) {
    JsonBuilder builder(target, losses);
    JsonReader(content, inputName, builder).readAll();
    return Document(builder.takeRoots(), false);
}

OutputBytes recordsOfJson(const std::string& content, const std::string& inputName,
                          std::FILE* file) {
    JsonRecordBuilder builder(file);
    JsonReader(content, inputName, builder).readAll();
    return builder.takeRecords();
}

void visitJson(const std::string& content, const std::string& inputName,
               std::optional<Format> target, RootVisitor& visitor, Losses& losses) {
    visitor.begin(hasSeveralTexts(content), true);
    JsonParts builder(target, visitor, losses);
    JsonReader(content, inputName, builder).readAll();
}

} // namespace kel::tool
