/// \file
/// JException and the runtime's failures. They are thrown by value; catch them by reference:
///
///     try { ... } catch (const JException& failure) {
///         JPointer<JString> message(failure.getMessage());
///         puts(message->chars());
///     }
#pragma once

#include <kel/JPointer.h>
#include <kel/JString.h>

/// A failure with a message. All its virtual operations are inline, so every module has its own
/// type information and a catch works across the library's boundary.
class JException : public virtual JObject {
public:
    /// Copies the message. When the copy cannot be allocated the exception has none.
    /// \throws JException "Cannot create hash code." when no identity can be drawn
    explicit JException(const char* message);

    /// The same with a given identity, for the failure to draw one. Inside the library only.
    JException(const JHashCode& identity, const char* message);

    ~JException() override {}

    /// The message with one reference added for the caller, who releases it (a JPointer adopts
    /// it); null only when the message could not be allocated.
    virtual JString* getMessage() const {
        if (message_.isValid()) {
            message_->addRef();
        }
        return message_.get();
    }

    /// The same as getMessage, kept as a slot of its own.
    virtual JString* getMessageString() const { return getMessage(); }

protected:
    /// The message's characters, borrowed; null without a message.
    const char* messageChars() const { return message_.isValid() ? message_->chars() : nullptr; }

private:
    JPointer<JString> message_;
};

/// Declares a runtime failure that adds nothing to JException but its type.
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
KEL_RUNTIME_EXCEPTION(JNullPointerException);           ///< null where an object is needed
KEL_RUNTIME_EXCEPTION(TokenizerException);              ///< text that cannot be cut into tokens

#undef KEL_RUNTIME_EXCEPTION
