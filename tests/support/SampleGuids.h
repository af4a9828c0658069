/// \file
/// Hash codes that tests of several files write and read.
#pragma once

#include <kel/JHashCode.h>
#include <string>

namespace kel::test {

/// A hash code, and its text.
inline constexpr JHashCode sampleCode(0x3F2504E0, 0x11D34F89, 0x05030C9A, 0x01332CE8);
inline const std::string sampleGuid = "3F2504E0-4F89-11D3-9A0C-0305E82C3301";

/// To the tokenizer the first is a number, the second is a word, and the third has only digits.
inline const std::string decimalGuid = "12345678-4F89-11D3-9A0C-0305E82C3301";
inline const std::string letterGuid = "ABCDEFAB-CDEF-ABCD-EFAB-CDEFABCDEFAB";
inline const std::string digitGuid = "12345678-1234-1234-1234-123456789012";

inline const std::string otherGuid = "00000000-0000-0000-0000-0000000000FF";

} // namespace kel::test
