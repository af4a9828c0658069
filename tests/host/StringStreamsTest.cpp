// Uses text streams over strings in memory as a host does.
#include "StreamSupport.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

TEST(StringStreams, HaveNoTextBeforeTheFirstWrite) {
    const auto stream = hold(CreateKELStringOutputStream());
    EXPECT_EQ(stream->getString(), nullptr);
    EXPECT_EQ(stream->getStringSize(), 1U);
    stream->write(nullptr);
    EXPECT_EQ(stream->getString(), nullptr);
}

TEST(StringStreams, GiveAllThatWasWrittenAndItsSizeWithTheNul) {
    const auto stream = hold(CreateKELStringOutputStream());
    stream->write(hold(CreateKELInt(5)).get());
    stream->write(hold(CreateKELString("abc")).get());
    EXPECT_STREQ(stream->getString(), "5\n\"abc\"\n");
    EXPECT_EQ(stream->getStringSize(), 9U);
}

TEST(StringStreams, TheTextStaysUntilItIsAskedForAfterAFurtherWrite) {
    const auto stream = hold(CreateKELStringOutputStream());
    stream->JWriteString("a");
    const char* text = stream->getString();
    EXPECT_EQ(stream->getString(), text);
    stream->JWriteString("b");
    EXPECT_STREQ(text, "a");
    EXPECT_STREQ(stream->getString(), "ab");
}

TEST(StringStreams, WritingAnEmptyStringIsAWrite) {
    const auto stream = hold(CreateKELStringOutputStream());
    stream->JWriteString(nullptr);
    EXPECT_EQ(stream->getString(), nullptr);
    stream->JWriteString("");
    EXPECT_STREQ(stream->getString(), "");
    EXPECT_EQ(stream->getStringSize(), 1U);
}

TEST(StringStreams, KeepTheirTextWhenClosed) {
    const auto stream = hold(CreateKELStringOutputStream());
    stream->JWriteString("a");
    stream->JFlush();
    stream->JClose();
    EXPECT_STREQ(stream->getString(), "a");
}

TEST(StringStreams, MayHoldNuls) {
    const auto stream = hold(CreateKELStringOutputStream());
    stream->JWrite(reinterpret_cast<const uint8_t*>("a\0b"), 0, 3);
    EXPECT_EQ(stream->getStringSize(), 4U);
    EXPECT_EQ(std::string(stream->getString(), 4), std::string("a\0b\0", 4));
}

TEST(StringStreams, ReadExactlyTheGivenLength) {
    const auto stream = hold(CreateKELStringInputStream("123456", 3));
    EXPECT_EQ(hold(stream->read())->toInt(), 123);
    EXPECT_EQ(thrownMessage<KELEOFException>([&] { stream->read(); }),
              "Error reading KEL - unexpected end of input at line: 1");
}

TEST(StringStreams, ReadACopyOfTheText) {
    std::string text = "1 2";
    const auto stream = hold(CreateKELStringInputStream(text.data(), 3));
    text = "x y";
    EXPECT_EQ(hold(stream->read())->toInt(), 1);
    EXPECT_EQ(hold(stream->read())->toInt(), 2);
}

TEST(StringStreams, AreEmptyForNoTextOrANegativeLength) {
    for (const auto& stream : {hold(CreateKELStringInputStream(nullptr, 5)).detach(),
                               hold(CreateKELStringInputStream("123", -1)).detach()}) {
        EXPECT_EQ(hold(stream)->JRead(), -1);
    }
}

TEST(StringStreams, ReadRawBytes) {
    const auto stream = hold(CreateKELStringInputStream("a\xFF", 2));
    EXPECT_EQ(stream->JRead(), 'a');
    EXPECT_EQ(stream->JRead(), 0xFF);
    EXPECT_EQ(stream->JRead(), -1);
}

TEST(StringStreams, DefinitionsAndReferencesLastForTheStream) {
    const std::string text = "#define ON true\n"
                             "3F2504E0-4F89-11D3-9A0C-0305E82C3301 = [ ON ]\n"
                             "{ a = ON b = REF 3F2504E0-4F89-11D3-9A0C-0305E82C3301 }\n";
    const auto stream =
        hold(CreateKELStringInputStream(text.data(), static_cast<int32_t>(text.size())));
    const auto first = hold(stream->read());
    const auto second = hold(stream->read());
    const auto& variables = static_cast<const KEL_Struct&>(dynamic_cast<KEL_Struct&>(*second));
    EXPECT_EQ(variables.getVar("b"), first.get());
    EXPECT_TRUE(variables.getVar("a")->toBoolean());
}

} // namespace
