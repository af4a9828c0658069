#include "serial/KELBinaryInputStream_Impl.h"

#include "serial/BinaryTreeReader.h"
#include "serial/StreamErrors.h"

using kel::withMediumErrors;

KEL_Impl* KELBinaryInputStream_Impl::readTree() {
    return kel::BinaryTreeReader(input(), data_, known_).read();
}

int8_t KELBinaryInputStream_Impl::JRead8() {
    return withMediumErrors([&] { return data_.JRead8(); });
}

int16_t KELBinaryInputStream_Impl::JRead16() {
    return withMediumErrors([&] { return data_.JRead16(); });
}

int32_t KELBinaryInputStream_Impl::JRead32() {
    return withMediumErrors([&] { return data_.JRead32(); });
}

JLong64 KELBinaryInputStream_Impl::JRead64() {
    return withMediumErrors([&] { return data_.JRead64(); });
}

JHashCode KELBinaryInputStream_Impl::JRead128() {
    return withMediumErrors([&] { return data_.JRead128(); });
}

JString* KELBinaryInputStream_Impl::JReadString() {
    return withMediumErrors([&] { return data_.JReadString(); });
}

double KELBinaryInputStream_Impl::JReadDouble() {
    return withMediumErrors([&] { return data_.JReadDouble(); });
}
