/// \file
/// endChild: ends a forked process.
#pragma once

#include <unistd.h>

/// Writes the counts of the code that this process has reached. Only a build that counts has it.
extern "C" [[gnu::weak]] int __llvm_profile_write_file(); // NOLINT(bugprone-reserved-identifier)

namespace kel::test {

/// Ends a forked process at once, without what belongs to the end of the whole program.
[[noreturn]] inline void endChild(int status) {
    if (&__llvm_profile_write_file != nullptr) {
        __llvm_profile_write_file();
    }
    _exit(status);
}

} // namespace kel::test
