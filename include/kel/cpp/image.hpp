/// \file
/// Values as text and binary in memory.
#pragma once

#include <kel/cpp/printable_copy.hpp>
#include <kel/cpp/system.hpp>

namespace kel {
inline namespace v1 {

/// The form of stored values. Text is for people, but it does not hold everything: doubles have six
/// decimals, a String with a double quote and a memory block cannot be read again, and identities
/// and sharing are lost. Binary is exact. It holds Int, Boolean, Double, MemBlock, String, Array
/// and Struct.
enum class format {
    automatic, ///< reading: by the content; writing: binary for names that end in .kelb, else text
    text,
    binary
};

namespace detail {

/// Returns the length of a text as the library takes it.
/// \throws io_error, or another one, for 2 GiB or more
template <class Failure = io_error>
std::int32_t length_of_text(std::uint64_t size, const std::string& name) {
    if (size > INT32_MAX) {
        throw Failure(name, 0, "a text of 2 GiB or more is refused");
    }
    return static_cast<std::int32_t>(size);
}

/// Returns why a value cannot be written in a format, with the path of the first one inside.
inline std::string unwritten(const value& root, format how) {
    const bool is_text = how == format::text;
    const auto has_no_form = [is_text](KEL& each) -> const char* {
        const KELKindFacts* facts = findKELKind(each.getType());
        return facts == nullptr || (is_text ? facts->hasTextForm : facts->hasBinaryForm)
                   ? nullptr
                   : facts->words;
    };
    const std::vector<std::string> found = complaints_about(root, 1, has_no_form);
    return (found.empty() ? "a value" : found.front()) +
           (is_text ? " has no text form" : " has no binary form");
}

/// Returns the text of a value as the library writes it.
inline std::string text_image(KEL& root) {
    return call([&root] {
        const auto stream = adopt_made(CreateKELStringOutputStream());
        try {
            stream->write(&root);
        } catch (KELIOException* failure) {
            // The stream has two states of failure: out of memory, and 4 GiB.
            const std::string_view message = failure->getMessage();
            if (message.find("bad() flag") != std::string_view::npos) {
                DeleteKELException(failure);
                throw std::bad_alloc();
            }
            if (message.find("fail() flag") != std::string_view::npos) {
                DeleteKELException(failure);
                length_of_text(UINT32_MAX, {});
            }
            throw;
        }
        const std::uint32_t size = stream->getStringSize() - 1; // without the NUL
        length_of_text(size, {});
        return std::string(stream->getString(), size);
    });
}

/// Returns the bytes of a file that holds this value.
/// \param name the name of the file for messages, empty for none
inline std::string image(const value& root, format how, const std::string& name) {
    if (how == format::text && !root) {
        return "null\n";
    }
    if (!root) {
        throw io_error(name, 0, "null has no binary form");
    }
    try {
        return how == format::text ? text_image(*root.raw()) : binary_image(*root.raw());
    } catch (const io_error& failure) {
        std::string message = failure.what();
        if (message == "General KEL exception.") { // the library's word for such kinds
            message = unwritten(root, how);
        }
        throw io_error(name, 0, message);
    }
}

/// Returns the text of a value without a final line end.
inline std::string text_without_end(const value& content) {
    std::string text = image(content, format::text, {});
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

} // namespace detail

/// Returns the value as text for people, without a final line end, and "null" for null. Whoever
/// wrote the document, the text is safe for a terminal and a log: Strings and names are printable,
/// so control characters and line ends in them are escapes. The text can also show what from_text
/// would not read again, such as a double quote in a String. to_text refuses that, and escapes
/// nothing.
///
/// \throws io_error for a selector, a value that contains itself, and a text of 2 GiB or more
inline std::string shown(const value& content) {
    std::string text = detail::text_without_end(content); // not without end, so not a ring
    if (!detail::has_only_printable_texts(content)) {
        text = std::string(); // the memory of one text is enough
        text = detail::text_without_end(detail::printable_copy(content));
    }
    return text;
}
/// Writes what shown returns. It fails in the same way.
inline std::ostream& operator<<(std::ostream& out, const value& content) {
    return out << shown(content);
}

} // namespace v1
} // namespace kel
