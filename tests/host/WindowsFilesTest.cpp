// Uses streams over media that Windows handles differently: folders, names that are not valid
// UTF-8, and devices.
#include "StreamSupport.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

TEST(FailingMedia, AFolderCannotBeOpened) {
    EXPECT_EQ(thrownMessage<JIOException>([] { CreateKELTextInputStream("."); }),
              "FileInputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JIOException>([] { CreateKELBinaryOutputStream("."); }),
              "FileOutputStream. Cannot open file.");
}

TEST(FailingMedia, ANameThatIsNoUtf8CannotBeOpened) {
    EXPECT_EQ(thrownMessage<JIOException>([] { CreateKELTextOutputStream("a\xFF", false); }),
              "FileOutputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JIOException>([] { CreateKELBinaryInputStream("caf\xE9"); }),
              "FileInputStream. Cannot open file.");
}

TEST(Devices, TakeValues) {
    KELOutputStream* stream = CreateKELTextOutputStream("NUL", false);
    stream->write(hold(CreateKELInt(5)).get());
    EXPECT_NO_THROW(DeleteKELOutputStream(stream));
}

} // namespace
