/// \file
/// The root values of a text or binary content in memory, one after the other.
#pragma once

#include <kel/cpp/limits.hpp>
#include <kel/cpp/number_scan.hpp>

#include <charconv>

namespace kel {
inline namespace v1 {
namespace detail {

/// The bytes with which every binary file begins.
inline constexpr std::string_view magic("KEL\0", 4);

/// Room for what text_roots appends to a content.
inline constexpr std::size_t mark_size = 64;

/// Reads the roots of one content. The end of the content inside a root is a failure.
class roots {
public:
    roots(std::string name, std::string content, const limits& allowed)
        : name_(std::move(name)), content_(std::move(content)), allowed_(allowed) {
        require_bytes(allowed_, content_.size(), name_);
    }
    roots(const roots&) = delete;
    roots& operator=(const roots&) = delete;
    virtual ~roots() = default;

    /// Reads the next root. \return false at the end
    /// \throws malformed for a content that cannot be read, and io_error at every later call
    bool next(value& out) {
        if (has_failed_) {
            throw io_error(name_, 0, "cannot be read on after a failure");
        }
        has_failed_ = true; // until the read returns
        value root;
        const bool is_found = read(root);
        if (is_found) {
            accept_or_free(allowed_, root, name_);
            out = std::move(root);
        }
        has_failed_ = false;
        return is_found;
    }

    /// Reads the only root.
    /// \throws malformed also for none and for several
    value only() {
        value root;
        value another;
        if (!next(root)) {
            throw malformed(name_, 0, "holds no value");
        }
        if (next(another)) {
            refuse_more();
        }
        return root;
    }

protected:
    virtual bool read(value& out) = 0;

    [[noreturn]] void refuse_more() const {
        throw malformed(name_, 0, "holds more than one value (kel::reader reads several)");
    }

    const std::string name_;
    std::string content_;

private:
    const limits allowed_;
    bool has_failed_ = false;
};

/// Reads text. The library reports the end of the input both after the last root and in the middle
/// of one. So a root with an identity of its own is appended: once that is read, the content was
/// whole.
class text_roots final : public roots {
public:
    text_roots(std::string name, std::string content, const limits& allowed)
        : roots(std::move(name), std::move(content), allowed), size_(content_.size()) {
        mark_ = value(0).identity(); // which no content can know
        char identity[guid::guidTextLength + 1];
        mark_.toGuidText(identity);
        // The blank keeps a carriage return at the end of the content from becoming half a line
        // end. Without quotes and brackets the mark cannot complete a value that is cut off.
        content_ += " \n" + std::string(identity) + " = 0\n";
        stream_ = open(content_.size());
        if (allowed.only_fitting_numbers()) {
            numbers_.emplace(std::string_view(content_).substr(0, size_));
        }
    }

private:
    ref<KELInputStream> open(std::size_t size) const {
        const std::int32_t length = length_of_text<malformed>(size, name_);
        return adopt_made<KELInputStream>(CreateKELStringInputStream(content_.data(), length));
    }

    bool read(value& out) override {
        if (!stream_) {
            return false;
        }
        value root;
        try {
            root = read_from(*stream_);
        } catch (const error&) {
            fail();
        }
        if (root.kind() == kind::guid && root.get<guid>() == mark_) {
            fail(); // the content ends in an identity and "=", and the mark became its value
        }
        if (root.identity() == mark_) {
            stream_ = nullptr;
            return false;
        }
        require_fitting_numbers();
        out = std::move(root);
        return true;
    }

    /// Refuses the numbers of the root that was read last, if reading has changed one.
    void require_fitting_numbers() {
        if (numbers_) {
            numbers_->next_root([this](std::size_t at, std::string_view number) {
                const written_number spelt(number);
                constexpr std::size_t most_shown = 40;
                const std::string shown = printable(number, most_shown);
                refuse_at(at, lead(numbers_->path()) +
                                  (spelt.is_decimal
                                       ? "the whole part of " + shown + " does not fit in 32 bits"
                                       : shown + " does not fit in 32 bits, and is " +
                                             std::to_string(spelt.as_read()) + " when it is read"));
            });
        }
    }
    /// Refuses what is at an offset of the content.
    [[noreturn]] void refuse_at(std::size_t at, const std::string& message) const {
        const std::string_view before(content_.data(), at);
        const auto line = 1 + std::count(before.begin(), before.end(), '\n');
        const std::size_t begin = before.rfind('\n') + 1; // 0 for the first line
        throw malformed(name_, line, message, {}, static_cast<std::int64_t>(at - begin) + 1);
    }

    static value read_from(KELInputStream& stream) {
        return value(call([&stream] { return adopt(stream.read()); }));
    }

    /// Reads again without the mark, which may have changed the failure, and throws that.
    [[noreturn]] void fail() {
        if (content_.compare(0, magic.size(), magic) == 0) {
            throw malformed(name_, 0, "wanted text, found a binary document");
        }
        stream_ = open(size_);
        try {
            for (;;) {
                read_from(*stream_);
            }
        } catch (const error& failure) {
            throw located(failure.what());
        }
    }

    /// Moves the line from the end of the library's message into the failure.
    malformed located(std::string message) const {
        constexpr std::string_view lead = "Error reading KEL - ";
        constexpr std::string_view before_line = " at line: ";
        std::int64_t line = 0;
        const std::size_t at = message.rfind(before_line);
        if (at != std::string::npos) {
            const char* digits = message.data() + at + before_line.size();
            std::from_chars(digits, message.data() + message.size(), line);
            message.resize(at);
        } else {
            // Only a quoted word that reaches to the end of the content is reported without a line.
            const std::string_view body(content_.data(), size_);
            const std::size_t end = body.find_last_not_of('\n') + 1;
            line =
                1 + std::count(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(end), '\n');
        }
        if (message.compare(0, lead.size(), lead) == 0) {
            message.erase(0, lead.size());
        }
        const std::optional<std::size_t> end =
            at == std::string::npos ? std::nullopt : end_of_read();
        if (end && message == "syntax error" && is_after_bare_text(*end)) {
            message += ". A text needs quotes";
        }
        return malformed(name_, line, message, {}, end ? column_in(line, *end) : 0);
    }

    /// Returns where the library has stopped reading, if it can be had.
    std::optional<std::size_t> end_of_read() const {
        std::size_t left = 0;
        try {
            std::uint8_t piece[4096];
            const auto read = [&] { return stream_->JRead(piece, 0, sizeof piece); };
            for (std::int32_t got = call(read); got > 0; got = call(read)) {
                left += static_cast<std::size_t>(got);
            }
        } catch (const error&) {
            return std::nullopt;
        }
        return size_ - (std::min)(left, size_);
    }

    /// Returns the column of the last byte that was read, or 0 if that is not in this line.
    std::int64_t column_in(std::int64_t line, std::size_t end) const {
        const std::string_view body(content_.data(), end);
        const std::size_t begin = body.rfind('\n') + 1; // 0 for the first line
        return 1 + std::count(body.begin(), body.end(), '\n') == line
                   ? static_cast<std::int64_t>(body.size() - begin)
                   : 0;
    }

    /// Returns whether a word without quotes ends here that is a value or an element, in a content
    /// without definitions.
    bool is_after_bare_text(std::size_t end) const {
        const std::string_view body(content_.data(), end);
        const std::size_t begin = body.find_last_not_of("abcdefghijklmnopqrstuvwxyz"
                                                        "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_") +
                                  1;
        const std::size_t before = body.substr(0, begin).find_last_not_of(" \t\r\n");
        return begin < end && !is_digit(body[begin]) && before != std::string_view::npos &&
               (body[before] == '=' || body[before] == '[') &&
               body.find("define") == std::string_view::npos;
    }

    const std::size_t size_; ///< of the content without the mark
    guid mark_;
    ref<KELInputStream> stream_;         ///< empty after the last root
    std::optional<number_scan> numbers_; ///< if those that reading changes are refused
};

/// Reads binary. The header of a record states where the next one begins, so the end after the last
/// root is known.
class binary_roots final : public roots {
public:
    binary_roots(std::string name, std::string content, const limits& allowed)
        : roots(std::move(name), std::move(content), allowed) {}

    /// Refuses several roots before it reads one. A value that contains itself would otherwise
    /// remain in memory.
    void refuse_several() const {
        if (begins_with_magic() && record_size() < content_.size()) {
            refuse_more();
        }
    }

private:
    bool read(value& out) override {
        if (at_ == content_.size()) {
            return false;
        }
        if (at_ == 0 && looks_like_text()) {
            throw malformed(name_, 0, "wanted a binary document, found text");
        }
        const std::size_t size = record_size();
        if (begins_with_magic() && size == too_large) {
            fail(content_.size(), "unexpected end of input");
        }
        if (!source_) {
            source_ = std::make_unique<binary_source>(content_);
        }
        try {
            out = value(call([this] { return adopt(source_->stream().read()); }));
        } catch (const error& failure) {
            const std::int64_t offset = source_->end();
            fail(offset < 0 ? at_ : static_cast<std::size_t>(offset), failure.what());
        }
        at_ += size;
        return true;
    }

    [[noreturn]] void fail(std::size_t offset, const std::string& message) const {
        throw malformed(name_, 0, "byte offset " + std::to_string(offset) + ": " + message);
    }

    /// Returns whether the magic, or what is left of it, is in the next place.
    bool begins_with_magic() const {
        const std::size_t left = content_.size() - at_;
        for (std::size_t i = 0; i < magic.size() && i < left; ++i) {
            if (content_[at_ + i] != magic[i]) {
                return false;
            }
        }
        return true;
    }

    /// Returns whether the content begins with other characters than a binary document.
    bool looks_like_text() const {
        constexpr std::size_t enough = 64; // a header of a record contains a NUL
        return !begins_with_magic() &&
               std::string_view(content_).substr(0, enough).find('\0') == std::string_view::npos;
    }

    std::uint64_t number_at(std::size_t offset, std::size_t size) const {
        std::uint64_t number = 0;
        while (size-- > 0) {
            number = number << 8 | static_cast<unsigned char>(content_[at_ + offset + size]);
        }
        return number;
    }

    /// Returns the size of the next record by its header: too_large if that is more than is left.
    std::size_t record_size() const {
        constexpr std::size_t kind_offset = 20; // after the magic and the identity
        constexpr std::size_t reference_size = 24;
        constexpr std::size_t length_offset = 26;
        constexpr std::uint64_t reference = 0x7FFFFFFF;
        const std::size_t left = content_.size() - at_;
        if (left >= reference_size && number_at(kind_offset, 4) == reference) {
            return reference_size;
        }
        if (left < record_header_size || number_at(length_offset, 8) > left - record_header_size) {
            return too_large;
        }
        return record_header_size + static_cast<std::size_t>(number_at(length_offset, 8));
    }

    static constexpr std::size_t too_large = SIZE_MAX;

    std::size_t at_ = 0; ///< where the next record begins
    std::unique_ptr<binary_source> source_;
};

/// Returns whether the content is to be read as binary.
inline bool is_binary(std::string_view content, format how) {
    return how == format::automatic ? content.substr(0, magic.size()) == magic
                                    : how == format::binary;
}

/// Returns a reader of the roots of this content.
inline std::unique_ptr<roots> roots_of(std::string name, std::string content,
                                       const limits& allowed) {
    if (is_binary(content, allowed.format())) {
        return std::make_unique<binary_roots>(std::move(name), std::move(content), allowed);
    }
    return std::make_unique<text_roots>(std::move(name), std::move(content), allowed);
}

/// Returns the only root of this content.
/// \throws malformed also for none and for several
inline value only_root(std::string name, std::string content, const limits& allowed) {
    if (is_binary(content, allowed.format())) {
        binary_roots input(std::move(name), std::move(content), allowed);
        input.refuse_several();
        return input.only();
    }
    return text_roots(std::move(name), std::move(content), allowed).only();
}

} // namespace detail

/// Returns the only value of a text.
/// \throws malformed for a text with none or several, for one that cannot be read, and for what is
/// not allowed
inline value from_text(std::string text, const limits& allowed = {}) {
    return detail::only_root({}, std::move(text), allowed.of(format::text));
}

/// Returns the only value of a content in binary.
/// \throws malformed as from_text
inline value from_binary(std::string content, const limits& allowed = {}) {
    return detail::only_root({}, std::move(content), allowed.of(format::binary));
}

} // namespace v1
} // namespace kel
