/// \file
/// KELInputStream_Impl: the common part of the input streams of both formats.
#pragma once

#include "serial/StreamErrors.h"
#include "serial/StreamUse.h"
#include "streams/BufferedInputStream.h"
#include "streams/JDataInput.h"

#include <kel/KELInputStream.h>

class KEL_Impl;

/// Reads through a read-ahead window of a medium. A failure of the medium, a JIOException, is
/// thrown again as a KELIOException with its message. An operation that the medium calls while
/// another one runs throws KELIOException "The stream is in use.".
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

    /// Closes the medium and releases this stream, even if closing fails.
    /// \throws KELIOException with the medium's message
    void destroy();

protected:
    /// Returns the bytes that all operations read.
    virtual kel::BufferedInput& input() = 0;

    /// Reads the next root value, which the caller owns. Returns null for the word null in a text.
    virtual KEL_Impl* readTree() = 0;

    /// Runs an operation on the medium. All operations of hosts do so, except
    /// JTell.
    template <class Operation> decltype(auto) use(const Operation& operation) {
        const kel::StreamUse alone(*this, inUse_);
        return kel::withMediumErrors(operation);
    }

    /// Runs an operation that makes values or tokens.
    template <class Operation> decltype(auto) useWhole(const Operation& operation) {
        const kel::StreamUse alone(*this, inUse_);
        return kel::withStreamErrors(operation);
    }

private:
    bool inUse_ = false;
};
