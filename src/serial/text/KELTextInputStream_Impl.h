/// \file
/// KELTextInputStream_Impl: text from a file.
#pragma once

#include "serial/text/KELASCIIInputStream_Impl.h"

/// Implements KELTextInputStream.
class KELTextInputStream_Impl final : public KELTextInputStream, public KELASCIIInputStream_Impl {
public:
    using KELASCIIInputStream_Impl::KELASCIIInputStream_Impl;
};
