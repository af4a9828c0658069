/// \file
/// KELTextOutputStream_Impl: text to a file.
#pragma once

#include "serial/text/KELASCIIOutputStream_Impl.h"

/// Implements KELTextOutputStream.
class KELTextOutputStream_Impl final : public KELTextOutputStream,
                                       public KELASCIIOutputStream_Impl {
public:
    using KELASCIIOutputStream_Impl::KELASCIIOutputStream_Impl;
    void setMemBlockComment(bool flag) override {
        KELASCIIOutputStream_Impl::setMemBlockComment(flag);
    }
};
