/// \file
/// A value that the library did not make.
#pragma once

#include <kel/kel.h>

namespace host {

/// A host's own implementation of Base, a public class of values. The library's containers hold
/// only values of its own.
template <class Base, KELKind Kind> class Foreign : public Base {
public:
    virtual ~Foreign() = default;

    void addRef() override { ++references; }
    int32_t release() override { return --references; }
    JHashCode& getHashCode(JHashCode& out) const override { return out = JHashCode(1, 2, 3, 4); }
    int32_t getType() const override { return Kind; }
    int32_t getRefCount() const override { return 1; }

    bool toBoolean() const override { return true; }
    int32_t toInt() const override { return 1; }
    int8_t toSignedChar() const override { return 1; }
    uint8_t toUnsignedChar() const override { return 1; }
    int16_t toShort() const override { return 1; }
    uint16_t toUnsignedShort() const override { return 1; }
    uint32_t toUnsignedInt() const override { return 1; }
    long toLong() const override { return 1; }
    unsigned long toUnsignedLong() const override { return 1; }
    int64_t toInt64() const override { return 1; }
    uint64_t toUnsignedInt64() const override { return 1; }
    double toDouble() const override { return 1.0; }
    float toFloat() const override { return 1.0F; }
    long double toLongDouble() const override { return 1.0L; }
    const char* toString() const override { return "1"; }
    JHashCode& toGuid(JHashCode& out) const override { return out = JHashCode(1); }
    void freeString() override {}

    KEL* copy() const override { return nullptr; }
    void assign(const KEL*) override {}
    bool equals(const KEL* other) const override { return other == this; }
    bool equals(const KEL* a, const KEL* b) const override { return a == b; }
    void assignConverted(const KEL*, bool) override {}
    bool equalsValue(const KEL* other) const override { return other == this; }
    int32_t getVersion() const override { return 1; }

    int32_t references = 1; ///< the test owns the value, whatever the count is
};

/// A host's own value with the kind of an Int.
using ForeignValue = Foreign<KEL, KELKind_Int>;

} // namespace host
