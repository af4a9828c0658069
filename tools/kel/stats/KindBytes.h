/// \file
/// KindBytes: how many values of each kind there are, and the bytes that they take.
#pragma once

#include "document/Format.h"

#include <array>
#include <cstdint>
#include <iterator>
#include <kel/KELKind.h>

namespace kel::tool {

/// The number of formats.
constexpr size_t formatCount = 3;

/// Numbers of bytes, one for each format.
struct FormatBytes {
    std::array<uint64_t, formatCount> bytes{};

    uint64_t& operator[](Format format) { return bytes[static_cast<size_t>(format)]; }
    uint64_t operator[](Format format) const { return bytes[static_cast<size_t>(format)]; }
    void add(const FormatBytes& other) {
        for (size_t i = 0; i < formatCount; ++i) {
            bytes[i] += other.bytes[i];
        }
    }
};

/// The values of a kind.
struct KindRow {
    uint64_t values = 0; ///< every value once, in however many places it is
    FormatBytes bytes;   ///< of their own, without their names and the values in them
};

/// Values and bytes by kind. The bytes of all rows together are those of the file.
struct KindBytes {
    std::array<KindRow, std::size(KELKinds)> kinds; ///< in the order of KELKinds
    KindRow nulls;
    FormatBytes names;   ///< with everything that separates them from their values
    FormatBytes further; ///< of values at further places, which binary writes as references

    KindRow& row(const KELKindFacts& facts) {
        return kinds[static_cast<size_t>(&facts - std::begin(KELKinds))];
    }

    const KindRow& row(const KELKindFacts& facts) const {
        return kinds[static_cast<size_t>(&facts - std::begin(KELKinds))];
    }

    /// Returns the number of values, without nulls.
    uint64_t valueCount() const {
        uint64_t count = 0;
        for (const KindRow& row : kinds) {
            count += row.values;
        }
        return count;
    }

    /// Returns the bytes of all rows.
    FormatBytes total() const {
        FormatBytes sum = nulls.bytes;
        for (const KindRow& row : kinds) {
            sum.add(row.bytes);
        }
        sum.add(names);
        sum.add(further);
        return sum;
    }
};

} // namespace kel::tool
