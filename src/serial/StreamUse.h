/// \file
/// StreamUse: one operation on a stream at a time.
#pragma once

#include "values/KELException_Impl.h"

namespace kel {

/// Marks a stream as in use while an operation runs, and keeps the stream alive. The medium of a
/// stream can be a host's function, which can call the stream again or delete it.
class StreamUse {
public:
    /// Begins an operation. inUse belongs to the stream.
    /// \throws KELIOException "The stream is in use." if another one has not ended
    StreamUse(JObject& stream, bool& inUse) : stream_(stream), inUse_(inUse) {
        if (inUse) {
            throw new KELIOException_Impl("The stream is in use.");
        }
        inUse = true;
        stream.addRef();
    }
    StreamUse(const StreamUse&) = delete;
    StreamUse& operator=(const StreamUse&) = delete;

    /// Ends the operation, and deletes the stream if it was released meanwhile.
    ~StreamUse() {
        inUse_ = false;
        stream_.release();
    }

private:
    JObject& stream_;
    bool& inUse_;
};

} // namespace kel
