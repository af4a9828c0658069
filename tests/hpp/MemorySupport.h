/// \file
/// Whether the memory of this process can be measured.
#pragma once

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KEL_TEST_KEEPS_MEMORY
#endif
#endif

namespace memory_test {

/// False with a sanitizer that keeps freed memory. It reports leaks itself.
#if defined(__SANITIZE_ADDRESS__) || defined(KEL_TEST_KEEPS_MEMORY)
constexpr bool is_measured = false;
#else
constexpr bool is_measured = true;
#endif

} // namespace memory_test
