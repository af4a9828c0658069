/// \file
/// The refusals of the binary reader that several tests expect.
#pragma once

#include "support/Thrown.h"
#include "support/ValueStreams.h"

#include <string>

namespace kel::test {

inline constexpr const char* badHeader = "Error reading KEL header.";
inline constexpr const char* badCode = "Error in KEL hash code.";

/// Returns the message with which reading the records fails.
inline std::string refusal(const std::string& records) {
    return thrownMessage<KELIOException>([&] { readBinary(records); });
}

} // namespace kel::test
