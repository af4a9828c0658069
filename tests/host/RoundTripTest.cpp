// Does the usual work of a host: builds values, saves them and loads them again.
#include "Host.h"

#include <cstdio>

namespace {

using host::Held;
using host::hold;

/// A file of the test's own, removed at the end.
class HostRoundTrip : public ::testing::Test {
protected:
    HostRoundTrip() {
        document->putInt("count", 5);
        document->putString("name", "abc");
        const auto list = hold(CreateKELArray());
        list->addInt(1);
        list->addDouble(2.5);
        document->addVar("list", list.get());
    }
    ~HostRoundTrip() override { std::remove(fileName.c_str()); }

    const std::string fileName = ::testing::TempDir() + "kel_host_" +
                                 ::testing::UnitTest::GetInstance()->current_test_info()->name() +
                                 ".kel";
    Held<KEL_Struct> document = hold(CreateKELStruct());
};

TEST_F(HostRoundTrip, ThroughATextFile) {
    Held<KELTextOutputStream> out(CreateKELTextOutputStream(fileName.c_str(), false));
    out->write(document.get());
    DeleteKELOutputStream(out.detach());
    const auto in = hold(CreateKELTextInputStream(fileName.c_str()));
    const auto loaded = hold(in->read());
    EXPECT_TRUE(loaded->equalsValue(document.get()));
}

TEST_F(HostRoundTrip, ThroughABinaryFile) {
    Held<KELBinaryOutputStream> out(CreateKELBinaryOutputStream(fileName.c_str()));
    out->write(document.get());
    DeleteKELOutputStream(out.detach());
    const auto in = hold(CreateKELBinaryInputStream(fileName.c_str()));
    const auto loaded = hold(in->read());
    EXPECT_TRUE(loaded->equalsValue(document.get()));
    EXPECT_TRUE(loaded->equals(document.get())); // the identity survives
}

TEST_F(HostRoundTrip, ThroughAString) {
    const auto out = hold(CreateKELStringOutputStream());
    out->write(document.get());
    EXPECT_STREQ(out->getString(),
                 "{\n\tcount = 5\n\tlist = [\n\t\t1\n\t\t2.500000\n\t]\n\tname = \"abc\"\n}\n");
    const auto in = hold(CreateKELStringInputStream(
        out->getString(), static_cast<int32_t>(out->getStringSize()) - 1));
    EXPECT_TRUE(hold(in->read())->equalsValue(document.get()));
}

TEST_F(HostRoundTrip, WhatWasReadOutlivesItsStream) {
    auto in = hold(CreateKELStringInputStream("[1 2]", 5));
    const auto loaded = hold(in->read());
    in.clear();
    EXPECT_EQ(dynamic_cast<KEL_Array&>(*loaded).getInt(1), 2);
}

} // namespace
