// Uses text streams over files as a host does.
#include "StreamSupport.h"

#include <clocale>
#include <gtest/gtest.h>

using namespace host;

namespace {

/// Writes values to a file by name.
template <class... Values> void write(const File& file, bool append, const Values&... values) {
    const auto stream = hold(CreateKELTextOutputStream(file.name(), append));
    (stream->write(values.get()), ...);
}

TEST(TextStreams, WriteAndReadATree) {
    const File file;
    const auto settings = hold(CreateKELStruct());
    settings->putInt("volume", 7);
    settings->putString("name", "abc");
    write(file, false, settings);
    EXPECT_EQ(file.bytes(), "{\n\tname = \"abc\"\n\tvolume = 7\n}\n");

    const auto input = hold(CreateKELTextInputStream(file.name()));
    const auto back = hold(input->read());
    EXPECT_TRUE(back->equalsValue(settings.get()));
    EXPECT_EQ(dynamic_cast<KEL_Struct&>(*back).getInt("volume"), 7);
}

TEST(TextStreams, ReplaceAFileWithoutTheAppendFlag) {
    const File file("old and longer\n");
    write(file, false, hold(CreateKELInt(1)));
    EXPECT_EQ(file.bytes(), "1\n");
}

TEST(TextStreams, AddToAFileWithTheAppendFlag) {
    const File file;
    write(file, true, hold(CreateKELInt(1)));
    write(file, true, hold(CreateKELArray()), hold(CreateKELBoolean(true)));
    EXPECT_EQ(file.bytes(), "1\n[\n]\ntrue\n");
}

TEST(TextStreams, ReadOneRootAfterTheOther) {
    const File file("1\n[ 2 ]\n\"three\"\n");
    const auto input = hold(CreateKELTextInputStream(file.name()));
    EXPECT_EQ(hold(input->read())->toInt(), 1);
    EXPECT_EQ(hold(input->read())->getType(), KELKind_Array);
    EXPECT_STREQ(hold(input->read())->toString(), "three");
    EXPECT_EQ(thrownMessage<KELEOFException>([&] { input->read(); }),
              "Error reading KEL - unexpected end of input at line: 4");
}

TEST(TextStreams, ValuesOutliveTheStreamTheyCameFrom) {
    auto input = hold(CreateKELStringInputStream("[ 1 ]", 5));
    const auto value = hold(input->read());
    input.clear();
    EXPECT_EQ(textOf(value.get()), "[\n\t1\n]\n");
}

TEST(TextStreams, ReportASyntaxErrorWithItsLine) {
    const File file("{\n\ta = 1\n\tb = ?\n}\n");
    const auto input = hold(CreateKELTextInputStream(file.name()));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { input->read(); }),
              "Error reading KEL - syntax error at line: 3");
}

TEST(TextStreams, LetTheTokenizersFailureThroughByValue) {
    EXPECT_EQ(thrownMessage<TokenizerException>([] { fromText("\"open"); }),
              "Reached end of file with no closing quote.");
}

TEST(TextStreams, LetTheFailureToOpenThroughByValue) {
    const char* missing = "/nonexistent/file.kel";
    const char* none = nullptr;
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELTextInputStream(missing); }),
              "FileInputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELTextInputStream(none); }),
              "FileInputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELTextOutputStream(missing, false); }),
              "FileOutputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELTextOutputStream(none, true); }),
              "FileOutputStream. Cannot open file.");
}

TEST(TextStreams, RefuseANullHandle) {
    std::FILE* none = nullptr;
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELTextInputStream(none); }),
              "FileInputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELTextOutputStream(none); }),
              "FileOutputStream. Cannot open file.");
}

TEST(TextStreams, DeletingNullDoesNothing) {
    DeleteKELInputStream(nullptr);
    DeleteKELOutputStream(nullptr);
}

TEST(TextStreams, ANullValueWritesNothing) {
    const File file;
    write(file, false, Held<KEL>());
    EXPECT_EQ(file.bytes(), "");
}

TEST(TextStreams, ReportARefusedValueAndKeepWhatStandsBefore) {
    const File file;
    const auto loop = hold(CreateKELArray());
    loop->addInt(1);
    loop->addVar(loop.get());
    EXPECT_EQ(thrownMessage<KELIOException>([&] { write(file, false, loop); }),
              "Cannot write a value that contains itself.");
    EXPECT_EQ(file.bytes(), "[\n\t1\n\t");
    loop->removeAllVars();
}

TEST(TextStreams, ShowAMemoryBlocksBytesWhenAsked) {
    const File file;
    const auto block = hold(CreateKELMemBlock(3, "ab"));
    {
        const auto stream = hold(CreateKELTextOutputStream(file.name(), false));
        stream->write(block.get());
        stream->setMemBlockComment(true);
        stream->write(block.get());
    }
    const std::string bytes = file.bytes();
    const std::string line = bytes.substr(0, bytes.find('\n'));
    EXPECT_EQ(line.substr(0, 12), "void[3] : 0x");
    EXPECT_EQ(line.size(), 20U);
    EXPECT_EQ(bytes, line + "\n" + line + " // \"ab\"\n");
}

TEST(TextStreams, WriteSingleNumbersAsText) {
    const File file;
    {
        const auto stream = hold(CreateKELTextOutputStream(file.name(), false));
        stream->JWrite8(-1);
        stream->JWrite('|');
        stream->JWrite16(2);
        stream->JWrite(reinterpret_cast<const uint8_t*>("x|y"), 1, 1);
        stream->JWrite32(3);
        stream->JWriteString("|");
        stream->JWrite64(0x100000002);
        stream->JWriteString("|");
        stream->JWrite128(JHashCode(1, 2, 3, 4));
        stream->JWriteString("|");
        stream->JWriteDouble(0.5);
    }
    EXPECT_EQ(file.bytes(), "-1|2|3|0000000100000002|00000004000000030000000200000001|0.500000");
}

TEST(TextStreams, ReadSingleNumbersAndWords) {
    const auto stream = hold(CreateKELStringInputStream("1 2 3 0.5 word 6", 16));
    uint64_t wide = 0;
    JHashCode wider;
    EXPECT_EQ(stream->JRead8(), 1);
    EXPECT_EQ(stream->JRead16(), 2);
    EXPECT_EQ(stream->JRead32(), 3);
    EXPECT_EQ(stream->JReadDouble(), 0.5);
    const JPointer<JString> word(stream->JReadString());
    EXPECT_STREQ(word->chars(), "word");
    EXPECT_EQ(thrownMessage<KELException>([&] { stream->JRead64(wide); }), "Not implemented.");
    EXPECT_EQ(thrownMessage<KELException>([&] { stream->JRead128(wider); }), "Not implemented.");
    EXPECT_EQ(stream->JRead(), ' ');
}

TEST(TextStreams, RefuseToWriteOnceTheyAreClosed) {
    const File file;
    const auto stream = hold(CreateKELTextOutputStream(file.name(), false));
    const auto value = hold(CreateKELInt(1));
    stream->write(value.get());
    stream->JClose();
    EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->write(value.get()); }),
              "FileOutputStream::JWrite(uchar*,int,int). Stream returned error:32");
    stream->JFlush();
    stream->JClose();
    EXPECT_EQ(file.bytes(), "1\n");
}

TEST(TextStreams, AreAtTheEndOnceTheyAreClosed) {
    const File file("1 2");
    const auto stream = hold(CreateKELTextInputStream(file.name()));
    hold(stream->read());
    stream->JClose();
    EXPECT_EQ(stream->JRead(), -1);
}

TEST(TextStreams, WriteThroughWhenFlushed) {
    const File file;
    const auto stream = hold(CreateKELTextOutputStream(file.name(), false));
    stream->write(hold(CreateKELInt(1)).get());
    stream->JFlush();
    EXPECT_EQ(file.bytes(), "1\n");
}

TEST(TextStreams, OfferTheirInterfacesAcrossTheLibrarysBoundary) {
    const File file("1");
    const auto output = hold(CreateKELStringOutputStream());
    const auto input = hold(CreateKELTextInputStream(file.name()));
    KELOutputStream* asOutput = output.get();
    KELInputStream* asInput = input.get();
    EXPECT_NE(dynamic_cast<KELStringOutputStreamInterface_V1*>(asOutput), nullptr);
    EXPECT_EQ(dynamic_cast<KELTextOutputStream*>(asOutput), nullptr);
    EXPECT_NE(dynamic_cast<KELTextInputStream*>(asInput), nullptr);
    EXPECT_EQ(dynamic_cast<KELBinaryInputStream*>(asInput), nullptr);
}

TEST(TextStreams, DoNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr &&
        std::setlocale(LC_ALL, "German_Germany.1252") == nullptr) {
        ASSERT_EQ(std::getenv("KEL_REQUIRE_LOCALE"), nullptr) << "de_DE.UTF-8 is not installed";
        GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    }
    const std::string text = "[\n\t1234567.250000\n\t-0.500000\n\t1234567\n]\n";
    EXPECT_EQ(textOf(fromText(text).get()), text);
    EXPECT_EQ(fromText("2.75")->toDouble(), 2.75);
    std::setlocale(LC_ALL, before.c_str());
}

} // namespace
