/// \file
/// KELInputStream_Impl: what the input streams of both formats share.
#pragma once

#include "streams/BufferedInputStream.h"
#include "streams/JDataInput.h"

#include <kel/KELInputStream.h>

class KEL_Impl;

/// Over a read-ahead window of a medium. A failure of the medium, a JIOException, is thrown again
/// as a KELIOException with its message.
class KELInputStream_Impl : public virtual KELInputStream, public virtual JDataInput {
public:
    KELInputStream_Impl() = default;
    KELInputStream_Impl(const KELInputStream_Impl&) = delete;
    KELInputStream_Impl& operator=(const KELInputStream_Impl&) = delete;

    // KELInterface_InputStream_V1 and JInputStream
    KEL* read() final;
    int32_t JRead() override;
    int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count) override;
    void JClose() override;

    // JInputStream
    int64_t JTell() override;
    void JSeek(int64_t position) override;

    /// Closes the medium and releases this stream, also if closing fails.
    /// \throws KELIOException with the medium's message
    void destroy();

protected:
    /// The bytes that all operations read.
    virtual kel::BufferedInput& input() = 0;

    /// Reads the next root value; the caller owns it. Null for the word null in a text.
    virtual KEL_Impl* readTree() = 0;
};
