#include "serial/binary/KELBinaryInputStream_Impl.h"

#include "serial/binary/BinaryTreeReader.h"
#include "serial/binary/UnheldLoops.h"

KELBinaryInputStream_Impl::~KELBinaryInputStream_Impl() {
    if (holdsLoops_) {
        kel::takeApartUnheldLoops(known_);
    }
}

KEL_Impl* KELBinaryInputStream_Impl::readTree() {
    return kel::BinaryTreeReader(input(), known_, holdsLoops_).read();
}

int8_t KELBinaryInputStream_Impl::JRead8() {
    return use([&] { return data_.JRead8(); });
}

int16_t KELBinaryInputStream_Impl::JRead16() {
    return use([&] { return data_.JRead16(); });
}

int32_t KELBinaryInputStream_Impl::JRead32() {
    return use([&] { return data_.JRead32(); });
}

JLong64 KELBinaryInputStream_Impl::JRead64() {
    return use([&] { return data_.JRead64(); });
}

JHashCode KELBinaryInputStream_Impl::JRead128() {
    return use([&] { return data_.JRead128(); });
}

JString* KELBinaryInputStream_Impl::JReadString() {
    return use([&] { return data_.JReadString(); });
}

double KELBinaryInputStream_Impl::JReadDouble() {
    return use([&] { return data_.JReadDouble(); });
}
