/// \file
/// JException and the failures of the runtime. They are thrown by value. Catch them by reference. A
/// failure without memory for its message has none:
///
///     try { ... } catch (const JException& failure) {
///         JPointer<JString> message(failure.getMessage());
///         puts(message.isValid() ? message->chars() : "Out of memory!");
///     }
#pragma once

#include <kel/JPointer.h>
#include <kel/JString.h>

/// A failure with a message. All its virtual operations are inline, so every module has its own
/// type information and a catch works across the library's boundary.
///
/// \par Failures
/// Never fails.
class JException : public virtual JObject {
public:
    /// Copies the message. If the copy cannot be allocated, the exception has no message.
    /// \throws JException "Cannot create hash code." if no identity can be drawn
    explicit JException(const char* message);

    /// Copies the message and takes the given identity. The library throws it when no identity can
    /// be drawn. Only the library calls this constructor.
    JException(const JHashCode& identity, const char* message);

    ~JException() override {}

    /// Returns the message with one reference added for the caller. The caller releases it; a
    /// JPointer adopts it. Returns null only if the message could not be allocated.
    virtual JString* getMessage() const {
        if (message_.isValid()) {
            message_->addRef();
        }
        return message_.get();
    }

    /// Does the same as getMessage, and the caller owns the reference too. It has a slot of its
    /// own.
    virtual JString* getMessageString() const { return getMessage(); }

protected:
    /// Returns the message's characters, borrowed, or null without a message.
    const char* messageChars() const { return message_.isValid() ? message_->chars() : nullptr; }

private:
    JPointer<JString> message_;
};

/// Declares a runtime failure that adds only its type to JException.
#define KEL_RUNTIME_EXCEPTION(Name)                                                                \
    class Name : public virtual JException {                                                       \
    public:                                                                                        \
        explicit Name(const char* message) : JException(message) {}                                \
        ~Name() override {}                                                                        \
    }

KEL_RUNTIME_EXCEPTION(JOutOfMemoryException);           ///< storage could not be allocated
KEL_RUNTIME_EXCEPTION(JArrayIndexOutOfBoundsException); ///< an index outside a vector or string
KEL_RUNTIME_EXCEPTION(JNoSuchElementException);         ///< nothing left to enumerate
KEL_RUNTIME_EXCEPTION(JIOException);                    ///< a stream failed
KEL_RUNTIME_EXCEPTION(JEOFException);                   ///< input ended inside a number or string
KEL_RUNTIME_EXCEPTION(JNullPointerException);           ///< null instead of an object
KEL_RUNTIME_EXCEPTION(TokenizerException);              ///< text that cannot be split into tokens

#undef KEL_RUNTIME_EXCEPTION
