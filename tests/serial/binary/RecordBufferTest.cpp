// The buffer between the binary writer and its sink.
#include "serial/binary/RecordBuffer.h"

#include "support/FailingSink.h"

#include <gtest/gtest.h>

using kel::RecordBuffer;

namespace {

TEST(RecordBuffer, PlacesStayWhereTheyAre) {
    RecordBuffer buffer;
    uint8_t* place = buffer.reserve(1);
    buffer.commit(1);
    const std::string text(1000000, 'x');
    buffer.append(text.data(), text.size());
    *place = '<';
    FailingSink sink;
    buffer.writeTo(sink);
    EXPECT_EQ(sink.bytes, "<" + text);
    EXPECT_EQ(buffer.total(), 1000001U);
}

TEST(RecordBuffer, AnEmptyOneWritesNothing) {
    RecordBuffer buffer;
    buffer.append("", 0);
    FailingSink sink;
    buffer.writeTo(sink);
    EXPECT_EQ(sink.bytes, "");
    EXPECT_EQ(buffer.total(), 0U);
}

} // namespace
