// Uses file names beyond ASCII: bytes on Linux, UTF-8 on Windows, the same text for both.
#include "StreamSupport.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

class FileNames : public testing::TestWithParam<const char*> {
protected:
    /// Returns the name after a prefix that no other test program uses.
    static std::filesystem::path unique() {
        const std::string utf8 = File::uniqueName() + GetParam();
        return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
    }

    const File file = File::named(unique());
};

TEST_P(FileNames, CarryText) {
    hold(CreateKELTextOutputStream(file.name(), false))->write(hold(CreateKELInt(5)).get());
    hold(CreateKELTextOutputStream(file.name(), true))->write(hold(CreateKELInt(6)).get());
    EXPECT_EQ(file.bytes(), "5\n6\n");
    EXPECT_EQ(hold(hold(CreateKELTextInputStream(file.name()))->read())->toInt(), 5);
}

TEST_P(FileNames, CarryBinary) {
    hold(CreateKELBinaryOutputStream(file.name()))->write(hold(CreateKELInt(5)).get());
    EXPECT_EQ(file.bytes().size(), 38U);
    EXPECT_EQ(hold(hold(CreateKELBinaryInputStream(file.name()))->read())->toInt(), 5);
}

TEST_P(FileNames, ThatLeadNowhereAreReported) {
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELTextInputStream(file.name()); }),
              "FileInputStream. Cannot open file.");
}

INSTANTIATE_TEST_SUITE_P(Names, FileNames,
                         testing::Values("plain", "caf\u00E9",
                                         "\u00DCbung \u00E4\u00F6\u00FC\u00DF", "\u8A2D\u5B9A",
                                         "\uC124\uC815", "\u0434\u0430", "\U0001F333 tree"),
                         [](const auto& name) { return "Number" + std::to_string(name.index); });

} // namespace
