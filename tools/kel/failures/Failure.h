/// \file
/// Failure: the reason why the tool stops, and the exit status for it.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

namespace kel::tool {

/// The cause of a failure, which decides the exit status.
enum class Trouble {
    refused,    ///< nothing was written, or check found an error
    usage,      ///< the command line makes no sense
    unreadable, ///< an input could not be opened or read
    malformed,  ///< an input was read but is not what it should be
    unwritten   ///< an output could not be written
};

/// Returns the exit status of the process for a trouble: 1 to 4.
constexpr int exitStatus(Trouble trouble) {
    switch (trouble) {
    case Trouble::refused:
        return 1;
    case Trouble::usage:
        return 2;
    case Trouble::unreadable:
    case Trouble::malformed:
        return 3;
    case Trouble::unwritten:
        break;
    }
    return 4;
}

/// What is wrong in an input, in parts for programs.
struct Mistake {
    size_t offset = 0;     ///< in bytes from the beginning of the input
    uint64_t line = 0;     ///< from 1; 0 for binary
    uint64_t column = 0;   ///< in characters from 1; 0 for binary
    std::string path = {}; ///< to the value in binary; can be empty
    std::string reason = {};
    std::string hint = {}; ///< empty if nothing can be said
};

/// Thrown by value when the tool cannot continue.
struct Failure {
    Trouble trouble;
    /// The text to print after "kel: ".
    std::string message;
    /// The same in parts, if it is about a place in an input, otherwise null.
    std::shared_ptr<const Mistake> mistake = nullptr;
};

/// Returns the system's reason why the last operation on a file failed.
inline std::string systemReason() {
    return errno != 0 ? std::strerror(errno) : "unknown reason";
}

} // namespace kel::tool
