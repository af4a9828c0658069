/// \file
/// Use of a standard stream with any exception mask and with a buffer that can throw anything.
#pragma once

#include <kel/JException.h>

#include <cstdint>
#include <ios>
#include <streambuf>

namespace kel {

/// Runs action on a standard stream, whose state afterwards shows whether it succeeded. Nothing is
/// thrown, although a stream can be set to throw on bad or fail, and its buffer can throw anything.
/// If the action throws and the state does not show that already, the stream becomes bad.
template <class Action> void leavingItToTheState(std::ios& stream, Action action) {
    try {
        action();
    } catch (...) {
        if (stream.good()) {
            try {
                stream.setstate(std::ios::badbit);
            } catch (const std::ios::failure&) {
                // The bit is set before this is thrown.
            }
        }
    }
}

/// Throws unless the stream is good.
/// \throws JIOException badMessage or failMessage
inline void checkState(const std::ios& stream, const char* badMessage, const char* failMessage) {
    if (stream.bad()) {
        throw JIOException(badMessage);
    }
    if (!stream.good()) {
        throw JIOException(failMessage);
    }
}

/// Returns the position of a standard stream in the given direction, -1 without a buffer or
/// positions. It comes from the buffer, because the stream's own operation would change the state
/// at the end.
/// \throws JIOException badMessage when the buffer throws
inline int64_t positionOf(const std::ios& stream, std::ios::openmode direction,
                          const char* badMessage) {
    try {
        return stream.rdbuf() == nullptr
                   ? -1
                   : int64_t{stream.rdbuf()->pubseekoff(0, std::ios::cur, direction)};
    } catch (...) {
        throw JIOException(badMessage);
    }
}

} // namespace kel
