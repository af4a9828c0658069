/// \file
/// StringEnumeration_Impl: a list of names.
#pragma once

#include "runtime/JEnumeration.h"
#include "runtime/SearchedList.h"
#include "values/TextBlocks.h"

#include <cstring>
#include <kel/StringEnumeration.h>

/// Implements StringEnumeration; inside the library it also is an enumeration of JStrings.
class StringEnumeration_Impl final : public StringEnumeration,
                                     public JEnumeration,
                                     public kel::Stored {
public:
    // StringEnumerationInterface_V1
    bool hasMoreElements() const override;
    const char* nextElement() override;
    int32_t getCount() const override;
    void reset() override { cursor_ = 0; }
    bool contains(const char* text) const override;
    void addAll(StringEnumeration* other) override;
    void add(const char* text) override;
    void addRef() override { JObject::addRef(); }
    int32_t release() override { return JObject::release(); }
    JHashCode& getHashCode(JHashCode& out) const override { return out = identity(); }
    int32_t getRefCount() const override { return 1; }
    void remove(const char* text) override;

    // JEnumeration
    JObject* nextElement() const override;

    /// Appends a text that is known not to be in the list, without searching for it.
    void addUnique(std::string_view text);

    /// Makes room for this many texts that take this many bytes together, each with its null byte.
    /// Adding them then needs no memory.
    /// \throws JOutOfMemoryException "Out of memory!"
    void makeRoom(int32_t count, std::size_t bytes);

private:
    /// Compares texts byte by byte.
    struct TextKeys {
        static bool matches(const char* element, const char* wanted) {
            return std::strcmp(element, wanted) == 0;
        }
        static JHashCode keyOf(const char* text, const kel::IdentityKey& key) {
            return key.identityOf(text);
        }
    };

    /// Returns the index of text, or -1.
    int32_t indexOf(const char* text) const;

    /// Returns the text at the cursor; null past the last.
    const char* current() const;

    kel::SearchedList<const char, TextKeys> texts_; ///< in order
    kel::TextBlocks blocks_;                        ///< their characters
    mutable int32_t cursor_ = 0;
};
