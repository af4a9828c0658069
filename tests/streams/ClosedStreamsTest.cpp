/// \file
/// A negative position is refused as such, also by a stream that is closed.
#include "streams/FileInputStream.h"
#include "streams/FileOutputStream.h"
#include "streams/StringReader.h"
#include "streams/StringWriter.h"
#include "support/TemporaryFile.h"
#include "support/Thrown.h"

#include <gtest/gtest.h>

namespace {

template <class Stream> std::string messageOfSeekingBeforeTheStart(Stream& stream) {
    stream.JClose();
    return kel::test::thrownMessage<JIOException>([&] { stream.JSeek(-1); });
}

TEST(ClosedStreams, RefuseANegativePositionLikeOpenOnes) {
    const TemporaryFile file("abc");
    FileInputStream input(file.name());
    EXPECT_EQ(messageOfSeekingBeforeTheStart(input),
              "FileInputStream::JSeek(). Cannot seek to negative position.");
    FileOutputStream output(file.name(), true);
    EXPECT_EQ(messageOfSeekingBeforeTheStart(output),
              "FileOutputStream::JSeek(). Cannot seek to negative position.");
    StringReader reader("abc", 3);
    EXPECT_EQ(messageOfSeekingBeforeTheStart(reader),
              "StringReader::JSeek(). Cannot seek to negative position.");
    StringWriter writer;
    EXPECT_EQ(messageOfSeekingBeforeTheStart(writer),
              "StringWriter::JSeek(). Cannot seek to negative position.");
}

} // namespace
