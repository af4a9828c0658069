/// \file
/// The most bytes that a string writer counts.
#include "streams/StringWriter.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

TEST(StringWriterLimit, AWriteWhoseCountNeedsMoreThan32BitsFails) {
    const std::vector<uint8_t> bytes(std::size_t{1} << 26);
    const auto size = static_cast<int32_t>(bytes.size());
    StringWriter output;
    for (int i = 1; i < 64; ++i) {
        output.JWrite(bytes.data(), 0, size);
        output.JSeek(0); // bytes that are written again count again
    }
    EXPECT_EQ(kel::test::thrownMessage<JIOException>([&] { output.JWrite(bytes.data(), 0, size); }),
              "StringWriter::JWrite(uchar*,int,int). Stream returned fail() flag.");
    EXPECT_EQ(output.JTell(), -1);
}

} // namespace
