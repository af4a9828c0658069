/// \file
/// KELStringOutputStream_Impl: text to a string in memory.
#pragma once

#include "serial/text/KELASCIIOutputStream_Impl.h"
#include "streams/StringWriter.h"

/// Implements KELStringOutputStream.
class KELStringOutputStream_Impl final : public KELStringOutputStream,
                                         public KELASCIIOutputStream_Impl {
public:
    KELStringOutputStream_Impl()
        : KELStringOutputStream_Impl(JPointer<StringWriter>(new StringWriter())) {}

    const char* getString() override { return writer_->getString(); }
    uint32_t getStringSize() const override { return writer_->getStringSize(); }

private:
    explicit KELStringOutputStream_Impl(const JPointer<StringWriter>& writer)
        : KELASCIIOutputStream_Impl(JPointer<JOutputStream>::share(writer.get())), writer_(writer) {
    }

    JPointer<StringWriter> writer_; // the sink, under its own type
};
