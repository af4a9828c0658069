/// \file
/// The implementations of the value layer's failures. They are always thrown as pointers:
/// `throw new KELIOException_Impl("...")`.
#pragma once

#include "runtime/Storage.h"

#include <kel/JException.h>
#include <kel/KELException.h>

/// The message of every failure that has no message of its own.
inline constexpr const char* generalKelMessage = "General KEL exception.";

/// Base of the implementations. Its JException part is not a virtual base. A failure that also is a
/// runtime exception therefore has two JException parts, so it can be caught as a pointer to that
/// runtime exception but not as a JException pointer.
class KELException_Impl : public JException, public virtual KELException, public kel::Stored {
public:
    explicit KELException_Impl(const char* message = generalKelMessage) : JException(message) {}
    ~KELException_Impl() override = default;

    using JException::getMessage;
    const char* getMessage() override { return getMessageText(); }
    const char* getMessageText() const override {
        const char* text = messageChars();
        return text == nullptr ? "" : text;
    }
    void addRef() override { JObject::addRef(); }
    int32_t release() override { return JObject::release(); }
    int32_t getRefCount() const override { return 1; }
};

/// Defines a failure without a counterpart in the runtime.
#define KEL_PLAIN_EXCEPTION(Name)                                                                  \
    class Name##_Impl final : public virtual Name, public KELException_Impl {                      \
    public:                                                                                        \
        explicit Name##_Impl(const char* message = generalKelMessage)                              \
            : KELException_Impl(message) {}                                                        \
    }

/// Defines a failure that library code can also catch as the runtime's. Both message parts carry
/// the text.
#define KEL_DOUBLED_EXCEPTION(Name, Runtime)                                                       \
    class Name##_Impl final : public virtual Name, public KELException_Impl, public Runtime {      \
    public:                                                                                        \
        explicit Name##_Impl(const char* message = generalKelMessage)                              \
            : JException(message), KELException_Impl(message), Runtime(message) {}                 \
        using KELException_Impl::addRef;                                                           \
        using KELException_Impl::getMessage;                                                       \
        using KELException_Impl::release;                                                          \
    }

KEL_PLAIN_EXCEPTION(KELArrayIndexOutOfBoundsException);
KEL_PLAIN_EXCEPTION(KELNoSuchElementException);
KEL_PLAIN_EXCEPTION(KELNoSuchTypeException);
KEL_PLAIN_EXCEPTION(KELRenameException);
KEL_PLAIN_EXCEPTION(KELMemBlockException);
KEL_DOUBLED_EXCEPTION(KELOutOfMemoryException, JOutOfMemoryException);
KEL_DOUBLED_EXCEPTION(KELIOException, JIOException);
KEL_DOUBLED_EXCEPTION(KELEOFException, JEOFException);
KEL_DOUBLED_EXCEPTION(KELNullPointerException, JNullPointerException);

#undef KEL_PLAIN_EXCEPTION
#undef KEL_DOUBLED_EXCEPTION
