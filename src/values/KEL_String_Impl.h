/// \file
/// KEL_String_Impl: a String value.
#pragma once

#include "runtime/SmallText.h"
#include "values/KEL_Impl.h"

#include <kel/KEL_String.h>

/// Implements KEL_String over a text.
class KEL_String_Impl final : public KEL_Impl, public KEL_String {
public:
    /// Copies text; null gives the empty text.
    /// \throws JOutOfMemoryException as JString's constructors do
    explicit KEL_String_Impl(const char* text) : JObject(IdentityLater()), value_(textOf(text)) {}

    /// Makes the same value with a given identity.
    KEL_String_Impl(const JHashCode& identity, const char* text)
        : JObject(identity), value_(textOf(text)) {}

    /// Copies text, which contains no NUL.
    explicit KEL_String_Impl(std::string_view text)
        : JObject(IdentityLater()), value_(textOf(text)) {}

    /// Makes the same value with a given identity.
    KEL_String_Impl(const JHashCode& identity, std::string_view text)
        : JObject(identity), value_(textOf(text)) {}

    /// Returns a new String with this text, or null for null. Operations that store ignore a null
    /// value, and so they ignore a null text.
    static KEL_String_Impl* makeOrNull(const char* text) {
        return text == nullptr ? nullptr : new KEL_String_Impl(text);
    }

    int32_t getType() const override { return KELKind_String; }

    // KELInterface_String_V1
    const char* getValue() const override { return value_.chars(); }
    void setValue(const char* text) override;
    KEL_String* setBoolean(bool value) override;
    KEL_String* setInt(int32_t value) override;
    KEL_String* setDouble(double value) override;
    KEL_String* setString(const char* text) override;
    KEL_String* setguid(const JHashCode& value) override;
    char getChar(int32_t index) const override;

    /// Returns the text, borrowed until the value changes.
    std::string_view view() const { return value_.view(); }

    // KELInterface_Casting_V1
    bool toBoolean() const override { return *getValue() != '\0'; }
    int32_t toInt() const override;
    double toDouble() const override;
    const char* toString() const override { return getValue(); }
    JHashCode& toGuid(JHashCode& out) const override;

    // KEL_Impl
    bool giveContentsBack() noexcept override {
        value_.clear();
        return true;
    }
    KEL_Impl* copyWithoutChildren() const override { return new KEL_String_Impl(getValue()); }
    bool equalsWithoutChildren(const KEL_Impl& other) const override;
    void swapContents(KEL_Impl& prepared) noexcept override;
    void takeContents(const KEL_Impl& source) override;
    bool takeConverted(const KEL_Impl& source) override;

private:
    /// \throws JOutOfMemoryException "Out of memory!" for a text that no length field can hold
    static std::string_view textOf(std::string_view text) {
        // not reached: so long a text takes 4 GB
        if (text.size() > UINT32_MAX) {
            kel::throwOutOfMemory();
        }
        return text;
    }
    static std::string_view textOf(const char* text) {
        return textOf(text == nullptr ? std::string_view() : std::string_view(text));
    }

    /// Replaces the text, or leaves it and throws.
    void replace(const char* text) { kel::SmallText(textOf(text)).swap(value_); }

    kel::SmallText value_;
};
