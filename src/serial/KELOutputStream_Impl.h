/// \file
/// KELOutputStream_Impl: the common part of the output streams of both formats.
#pragma once

#include "serial/StreamErrors.h"
#include "serial/StreamUse.h"
#include "streams/JDataOutput.h"

#include <kel/JPointer.h>
#include <kel/KELOutputStream.h>

/// Writes to a sink of bytes. Every failure of the sink, a JIOException, is thrown again as a
/// KELIOException with its message. An operation that the sink calls while another one runs throws
/// KELIOException "The stream is in use.".
class KELOutputStream_Impl : public virtual KELOutputStream, public virtual JDataOutput {
public:
    /// Shares the sink, which is not null.
    explicit KELOutputStream_Impl(const JPointer<JOutputStream>& sink) : sink_(sink) {}

    KELOutputStream_Impl(const KELOutputStream_Impl&) = delete;
    KELOutputStream_Impl& operator=(const KELOutputStream_Impl&) = delete;

    // KELInterface_OutputStream_V1 and JOutputStream
    void write(KEL* value) final;
    void JWrite(int32_t byte) override;
    void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) override;
    void JFlush() override;
    void JClose() override;
    void JWrite64(uint64_t value) override { JWrite64(JLong64::of(value)); }
    using JDataOutput::JWrite64;

    // JOutputStream
    int64_t JTell() override;
    void JSeek(int64_t position) override;

    // JDataOutput
    int32_t getByteOrder() const override { return byteOrder_; }
    void setByteOrder(int32_t order) override { byteOrder_ = order; }

    /// Closes the sink and releases this stream, even if closing fails.
    /// \throws KELIOException with the sink's message
    void destroy();

protected:
    /// Writes null or a value, whose class can be the library's or a host's own.
    virtual void writeTree(KEL* value) = 0;

    JOutputStream& sink() const { return *sink_; }

    /// Runs an operation on the sink. All operations of hosts do so.
    template <class Operation> decltype(auto) use(const Operation& operation) {
        const kel::StreamUse alone(*this, inUse_);
        return kel::withMediumErrors(operation);
    }

private:
    JPointer<JOutputStream> sink_;
    int32_t byteOrder_ = 1;
    bool inUse_ = false;
};
