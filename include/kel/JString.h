/// \file
/// JString: the runtime's owned, NUL-terminated 8-bit string.
#pragma once

#include <kel/JObject.h>

class MemoryPool;

/// An owned string of bytes with a terminating NUL; no encoding is implied. The buffer is exactly
/// as large as the text; every change makes a new one. Two strings are equal as objects only if
/// they are one object; `equals(const char*)` compares the text.
///
/// A string made from a null pointer has no buffer. Only `equals`, `chars` and assignment speak of
/// that state; elsewhere it behaves as the empty string.
class JString : public virtual JObject {
public:
    /// Copies the text; null gives a string without a buffer.
    /// \throws JOutOfMemoryException "Cannot allocate memory in JString constructor."
    explicit JString(const char* text);

    /// A string without a buffer, with a given identity.
    explicit JString(const JHashCode& identity) : JObject(identity), buffer_(nullptr) {}

    /// Copies count bytes from text + offset. The caller guarantees that they exist.
    /// \throws JOutOfMemoryException "Cannot allocate memory in JString constructor."
    JString(const char* text, uint32_t offset, uint32_t count);

    /// Copies count bytes from position offset of the pool.
    /// \throws JOutOfMemoryException "Cannot allocate memory in JString constructor."
    /// \throws JIOException "MemoryPool read: out of bounds." when the pool holds fewer
    JString(const MemoryPool& pool, uint32_t offset, uint32_t count);

    JString(const JString&) = delete;
    JString& operator=(const JString&) = delete;
    ~JString() override;

    /// Takes a copy of text. Null leaves the string unchanged. When the copy cannot be allocated
    /// the string ends without a buffer and nothing is thrown.
    JString& operator=(const char* text);

    /// The characters, owned by the string and valid until it changes; null without a buffer.
    const char* chars() const { return buffer_; }

    using JObject::equals;

    /// Byte-wise, case-sensitive comparison with text. Null equals only a string without a buffer.
    virtual bool equals(const char* text) const;

    /// Number of bytes before the NUL, found by scanning.
    virtual uint32_t length() const;

    KEL_SLOTS(
        /// A new string of the bytes from begin to before end; the caller owns it. The caller
        /// guarantees the range. Null when the object cannot be allocated.
        virtual JString* substring(uint32_t begin, uint32_t end) const;,
        /// A new string of the bytes from begin on; the caller owns it.
        virtual JString* substring(uint32_t begin) const;)

    KEL_SLOTS(
        /// Appends one character.
        /// \throws JOutOfMemoryException as the constructors; the string is then unchanged
        virtual void append(char character);,
        /// Appends text; null appends nothing.
        /// \throws JOutOfMemoryException as the constructors; the string is then unchanged
        virtual void append(const char* text);,
        /// Appends the other string's text.
        /// \throws JOutOfMemoryException as the constructors; the string is then unchanged
        virtual void append(const JString& other);)

    /// The character at index. A negative index is not refused: it answers NUL.
    /// \throws JArrayIndexOutOfBoundsException "JString::getChar: index too large" when index is
    ///         not below the length
    virtual char getChar(int32_t index) const;

    /// True when a tokenizer met this text between double quotes.
    bool isQuoted() const { return reserved_ != 0; }
    /// Sets the mark that isQuoted answers.
    void setQuoted(bool quoted) { reserved_ = quoted ? 1 : 0; }

private:
    char* buffer_;
    uint32_t reserved_ = 0;
};
