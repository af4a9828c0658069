/// \file
/// KELStringInputStream_Impl: text from a string in memory.
#pragma once

#include "serial/text/KELASCIIInputStream_Impl.h"

/// Implements KELStringInputStream.
class KELStringInputStream_Impl final : public KELStringInputStream,
                                        public KELASCIIInputStream_Impl {
public:
    using KELASCIIInputStream_Impl::KELASCIIInputStream_Impl;
};
