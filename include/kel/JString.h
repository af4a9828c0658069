/// \file
/// JString: the runtime's owned, null-terminated 8-bit string.
#pragma once

#include <kel/JObject.h>

class MemoryPool;

/// An owned, null-terminated string of bytes. No encoding is implied. The buffer is exactly as
/// large as the text, and every change allocates a new one. As objects, two strings are equal only
/// if they are one object; `equals(const char*)` compares the text.
///
/// A string made from a null pointer has no buffer. Only `equals`, `chars` and assignment
/// distinguish that state. Everything else treats such a string as empty.
///
/// All virtual operations are inline, so every module has its own type information. They run only
/// in the library, which holds their code and the heap of the characters.
///
/// \par Failures
/// Never fails.
class JString : public virtual JObject {
public:
    /// Copies the text. Null gives a string without a buffer.
    /// \throws JOutOfMemoryException "Cannot allocate memory in JString constructor."
    explicit JString(const char* text);

    /// Creates a string without a buffer, with a given identity.
    explicit JString(const JHashCode& identity) : JObject(identity), buffer_(nullptr) {}

    /// Copies count bytes from text + offset. The caller guarantees that they exist.
    /// \throws JOutOfMemoryException "Cannot allocate memory in JString constructor."
    JString(const char* text, uint32_t offset, uint32_t count);

    /// Copies count bytes from position offset of the pool.
    /// \throws JOutOfMemoryException "Cannot allocate memory in JString constructor."
    /// \throws JIOException "MemoryPool read: out of bounds." if the pool holds fewer bytes
    JString(const MemoryPool& pool, uint32_t offset, uint32_t count);

    JString(const JString&) = delete;
    JString& operator=(const JString&) = delete;
    ~JString() override { freeBuffer(); }

    /// Replaces the text with a copy of the given one. Null leaves the string unchanged. If the
    /// copy cannot be allocated, the string has no buffer afterwards and nothing is thrown.
    JString& operator=(const char* text);

    /// Returns the characters, owned by the string and valid until it changes. A string
    /// without a buffer returns null.
    const char* chars() const { return buffer_; }

    using JObject::equals;

    /// Returns true if the text is equal, byte by byte and case-sensitive. Null equals only a
    /// string without a buffer.
    virtual bool equals(const char* text) const { return hasText(text); }

    /// Returns the number of bytes before the NUL, which it finds by scanning.
    virtual uint32_t length() const { return countBytes(); }

    KEL_SLOTS(
        /// Returns a new string of the bytes from begin up to but not including end, owned by the
        /// caller. The caller guarantees the range. Returns null if the object cannot be allocated.
        /// \throws JOutOfMemoryException as the constructors do if the text cannot be allocated
        virtual JString* substring(uint32_t begin, uint32_t end) const {
            return part(begin, end);
        },
        /// Returns a new string of the bytes from begin to the end, owned by the caller. Returns
        /// null if the object cannot be allocated.
        /// \throws JOutOfMemoryException as the constructors do if the text cannot be allocated
        virtual JString* substring(uint32_t begin) const { return part(begin, countBytes()); })

    KEL_SLOTS(
        /// Appends one character.
        /// \throws JOutOfMemoryException as the constructors do; the string is then unchanged
        virtual void append(char character) { appendBytes(&character, 1); },
        /// Appends text. Null appends nothing.
        /// \throws JOutOfMemoryException as the constructors do; the string is then unchanged
        virtual void append(const char* text) { appendText(text); },
        /// Appends the other string's text.
        /// \throws JOutOfMemoryException as the constructors do; the string is then unchanged
        virtual void append(const JString& other) { appendText(other.buffer_); })

    /// Returns the character at index. A negative index is not refused: it returns NUL.
    /// \throws JArrayIndexOutOfBoundsException "JString::getChar: index too large" if index is not
    ///         less than the length
    virtual char getChar(int32_t index) const { return charAt(index); }

    /// Returns true if a tokenizer read this text between double quotes.
    bool isQuoted() const { return reserved_ != 0; }
    /// Sets the mark that isQuoted returns.
    void setQuoted(bool quoted) { reserved_ = quoted ? 1 : 0; }

private:
    // The work of the virtual operations, defined in the library.
    void freeBuffer();
    bool hasText(const char* text) const;
    uint32_t countBytes() const;
    JString* part(uint32_t begin, uint32_t end) const;
    void appendBytes(const char* bytes, size_t count);
    void appendText(const char* text);
    char charAt(int32_t index) const;

    char* buffer_;
    uint32_t reserved_ = 0;
};
