/// \file
/// The JSON text of numbers, and the length of that of strings.
#pragma once

#include <cstdint>
#include <string_view>

namespace kel::tool {

/// The JSON text of a double: the shortest one that reads back exactly, with a point or an
/// exponent. Integers of up to 15 digits have no exponent, which is easier to read. A double that
/// is not finite becomes null.
class JsonDouble {
public:
    explicit JsonDouble(double value);

    /// Returns the text, which belongs to this object.
    std::string_view text() const { return {characters_, size_}; }

private:
    char characters_[32];
    size_t size_;
};

/// Returns the number of bytes of a JSON string with its quotes.
uint64_t sizeOfJsonString(std::string_view text);

} // namespace kel::tool
