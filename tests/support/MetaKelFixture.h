/// \file
/// MetaKelFixture: a checked struct under a descriptor, and values to try on it.
#pragma once

#include "support/Kinds.h"
#include "support/Thrown.h"
#include "support/Watcher.h"

#include <gtest/gtest.h>
#include <string>

namespace kel::test {

/// A watched struct under a descriptor: level is an Int from 0 to 10; pan is a Double from -1 to 1
/// with the default 0; mode is one of "slow" and "fast".
class MetaKelFixture : public ::testing::Test {
protected:
    MetaKelFixture() {
        asStruct(pan).addVar("default", zero.get());
        meta.setDescriptor(&asStructDescriptor(descriptor));
        watch(held.get(), watcher);
    }

    /// Returns the variable's value, borrowed.
    KEL* valueOf(const char* name) const {
        return static_cast<const KEL_Struct&>(meta).getVar(name);
    }
    int32_t level() const { return valueOf("level")->toInt(); }

    HeldValue zero = doubleOf(0.0), pan = doubleRange(-1.0, 1.0);
    HeldValue mode = enumOf(KELKind_String, arrayOf(stringOf("slow"), stringOf("fast")));
    HeldValue descriptor = structDescriptorOf("level", intRange(0, 10), "pan", pan, "mode", mode);
    HeldValue held = metaOf();
    MetaKel& meta = asMeta(held);
    HeldValue three = intOf(3), eleven = intOf(11), seven = intOf(7);
    HeldValue plainHeld = metaOf();
    MetaKel& plain = asMeta(plainHeld); // without a descriptor
    Watcher watcher;
};

} // namespace kel::test
