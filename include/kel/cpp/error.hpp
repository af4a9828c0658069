/// \file
/// The failures of kel.hpp. Every one is a kel::error, except these two of the standard library:
/// std::bad_alloc when out of memory, and std::out_of_range for a number that is too large for the
/// place in which a program stores it.
#pragma once

#if defined(_MSVC_LANG) ? _MSVC_LANG < 201703L : __cplusplus < 201703L
#error "kel.hpp needs C++17: compile with -std=c++17 or /std:c++17, or later."
#endif
#if !defined(__cpp_exceptions) && !defined(_CPPUNWIND)
#error                                                                                             \
    "kel.hpp needs exceptions: compile without -fno-exceptions. The headers *.h work without them."
#endif

#if !defined(__GXX_RTTI) && !defined(_CPPRTTI)
#error "kel.hpp needs run-time type information: compile without -fno-rtti or /GR-."
#endif

/// Marks a function of a failure or of a first call, so that compilers keep it away from the usual
/// path, which is then small enough to become part of its caller.
#if defined(__GNUC__)
#define KEL_SELDOM [[gnu::cold, gnu::noinline]]
#else
#define KEL_SELDOM
#endif

#include <kel/cpp/printable.hpp>
#include <kel/kel.h>

#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace kel {
inline namespace v1 {

/// Who is to blame for a failure.
///
/// | Failure | To blame |
/// | --- | --- |
/// | type_error, not_found, range_error | the content, which is not what the program wants |
/// | io_error, malformed | the system if there is a reason(), otherwise the content |
/// | name_error, not_allowed, error | the argument: a name, a value or a description |
///
/// A few type_errors and not_founds are about an argument too, such as a null that is put into an
/// array, or a name that is not described. They say so. merge, load_into and take throw nothing for
/// a refused value of a document: they return it.
enum class blame {
    content,  ///< a document, or a value that cannot be written in a format
    argument, ///< what the program passed, or a person typed
    system    ///< the same call can succeed later
};

/// The base of every failure. Its text is printable, whatever the names and texts of a document in
/// it are.
///
///     try {
///         settings = read_settings(file); // with load_struct, get, merge
///     } catch (const kel::error& failure) {
///         puts(failure.message_in(file).c_str());
///         if (failure.blames_content()) { repair(file); }
///     }
class error : public std::runtime_error {
public:
    /// Makes one with a text, which becomes printable.
    explicit error(const std::string& message, blame whose = blame::argument)
        : std::runtime_error(printable(message)), whose_(whose) {}

    /// Returns who is to blame.
    blame blames() const noexcept { return whose_; }
    /// Returns whether the content is to blame, so that a document can be repaired.
    bool blames_content() const noexcept { return whose_ == blame::content; }
    /// Returns what() with the file before it. Returns what() alone if the argument is to blame, or
    /// if it begins with a file already.
    virtual std::string message_in(const std::string& file) const {
        return whose_ == blame::argument ? what() : printable(file) + ": " + what();
    }

private:
    blame whose_;
};

/// A value of another kind than the program wanted.
class type_error : public error {
public:
    /// Makes one that blames the content, unless the program says otherwise.
    explicit type_error(const std::string& message, blame whose = blame::content)
        : error(message, whose) {}
};

/// An unknown name, index, key or identity.
class not_found : public error {
public:
    /// Makes one that blames the content, unless the program says otherwise.
    explicit not_found(const std::string& message, blame whose = blame::content)
        : error(message, whose) {}
};

/// A number in a document that the type wanted by the program cannot hold without loss.
class range_error : public error {
public:
    /// Makes one that blames the content, unless the program says otherwise.
    explicit range_error(const std::string& message, blame whose = blame::content)
        : error(message, whose) {}
};

/// A name that a variable cannot have: it is empty, contains a double quote or a NUL, or exists
/// already.
class name_error : public error {
public:
    using error::error;
};

/// A value that the description of a variable does not allow. A program that checks a value of a
/// document itself makes one that blames the content.
class not_allowed : public error {
public:
    using error::error;
};

/// Reading or writing failed. A failure of the system has a reason. A content that cannot be read
/// is malformed. All other failures are about values that cannot be written in a format.
///
///     try {
///         settings = kel::load_struct_or("app.kel", kel::object());
///     } catch (const kel::malformed& failure) {
///         repair(failure.line());
///     } catch (const kel::io_error& failure) {
///         puts(failure.what()); // the file can be sound
///     }
class io_error : public error {
public:
    /// \param file the name of the file; empty for text in memory
    /// \param line the line in which reading stopped, counted from 1; 0 if it is not known
    /// \param reason the reason of the system; empty if the system is not to blame
    /// \param column the place in the line of the last byte that was read, counted from 1; 0 if it
    ///        is not known
    io_error(std::string file, std::int64_t line, const std::string& message,
             std::error_code reason = {}, std::int64_t column = 0)
        : error(describe(file, line, column, message, reason),
                reason ? blame::system : blame::content),
          file_(std::move(file)), line_(line), column_(column), reason_(reason) {}

    /// Return what the constructor was given. The text and the reason are borrowed.
    const std::string& file() const noexcept { return file_; }
    std::int64_t line() const noexcept { return line_; }
    std::int64_t column() const noexcept { return column_; }
    const std::error_code& reason() const noexcept { return reason_; }

    std::string message_in(const std::string& file) const override {
        return file_.empty() ? error::message_in(file) : what();
    }

private:
    static std::string describe(const std::string& file, std::int64_t line, std::int64_t column,
                                const std::string& message, const std::error_code& reason) {
        std::string text = file;
        if (line > 0) {
            text += (file.empty() ? "line " : ":") + std::to_string(line);
        }
        if (column > 0) {
            text += (file.empty() ? ", column " : ":") + std::to_string(column);
        }
        text += (text.empty() ? "" : ": ") + message;
        return reason ? text + ": " + reason.message() : text;
    }

    std::string file_;
    std::int64_t line_;
    std::int64_t column_;
    std::error_code reason_;
};

/// A content was read that is not a document: it is damaged, cut off, or not in this format, holds
/// no value or several, or another kind of value than the caller needs. The system has not failed,
/// so reading the same content again fails again.
class malformed : public io_error {
public:
    using io_error::io_error;
};

namespace detail {

/// Throws the failure that stands for an exception of the library.
[[noreturn]] inline void raise(KELException* caught) {
    struct owner {
        KELException* failure;
        ~owner() { DeleteKELException(failure); }
    } const owned{caught}; // NOLINT(clang-analyzer-deadcode.DeadStores): its destructor acts
    const char* said = caught->getMessage();
    const std::string message = said == nullptr ? "" : said;
    if (dynamic_cast<KELOutOfMemoryException*>(caught) != nullptr) {
        throw std::bad_alloc();
    }
    if (dynamic_cast<KELNoSuchElementException*>(caught) != nullptr ||
        dynamic_cast<KELArrayIndexOutOfBoundsException*>(caught) != nullptr) {
        throw not_found(message);
    }
    if (dynamic_cast<KELNoSuchTypeException*>(caught) != nullptr) {
        throw type_error(message);
    }
    if (dynamic_cast<KELRenameException*>(caught) != nullptr) {
        throw name_error(message);
    }
    if (dynamic_cast<KELIOException*>(caught) != nullptr ||
        dynamic_cast<KELEOFException*>(caught) != nullptr) {
        throw io_error("", 0, message);
    }
    throw error(message);
}

/// Throws the failure that stands for an exception of the library's runtime.
[[noreturn]] inline void raise(const JException& caught) {
    const JPointer<JString> said(caught.getMessage());
    if (dynamic_cast<const JOutOfMemoryException*>(&caught) != nullptr || said.isNull()) {
        throw std::bad_alloc();
    }
    const std::string message = said->chars() == nullptr ? "" : said->chars();
    if (dynamic_cast<const JIOException*>(&caught) != nullptr ||
        dynamic_cast<const JEOFException*>(&caught) != nullptr ||
        dynamic_cast<const TokenizerException*>(&caught) != nullptr) {
        throw io_error("", 0, message);
    }
    throw error(message);
}

/// Calls the library. Both families of its exceptions become failures of this header here, and
/// nowhere else. Exceptions of observers pass through.
template <class Action> decltype(auto) call(Action&& action) {
    try {
        return std::forward<Action>(action)();
    } catch (KELException* failure) {
        raise(failure);
    } catch (const JException& failure) {
        raise(failure);
    }
}

} // namespace detail
} // namespace v1
} // namespace kel
