// Uses binary streams as a host does.
#include "StreamSupport.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

constexpr JHashCode counting(0x03020100, 0x07060504, 0x0B0A0908, 0x0F0E0D0C);

/// Returns a value of the kind with an identity of the test's choice.
Held<KEL> valueWith(int32_t kind, const JHashCode& identity) {
    const auto manager = hold(CreateKELManager());
    return hold(manager->createKel(kind, identity));
}

template <class... Values> void write(const File& file, const Values&... values) {
    const auto stream = hold(CreateKELBinaryOutputStream(file.name()));
    (stream->write(values.get()), ...);
}

const KEL_Struct& asStruct(const Held<KEL>& value) {
    return dynamic_cast<KEL_Struct&>(*value);
}
KEL_Array& asArray(const Held<KEL>& value) {
    return dynamic_cast<KEL_Array&>(*value);
}

const std::string
    intRecord("KEL\0"                                                            // magic
              "\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F" // identity
              "\x01\x00\x00\x00"                                                 // kind
              "\x01\x00"                                                         // version
              "\x04\x00\x00\x00\x00\x00\x00\x00"                                 // length
              "\x05\x00\x00\x00",                                                // payload
              38);

TEST(BinaryStreams, WriteTheRecordByteByByte) {
    const File file;
    const auto value = valueWith(KELKind_Int, counting);
    dynamic_cast<KEL_Int&>(*value).setValue(5);
    write(file, value);
    EXPECT_EQ(file.bytes(), intRecord);
}

TEST(BinaryStreams, ReadWithItsIdentity) {
    const File file(intRecord);
    const auto input = hold(CreateKELBinaryInputStream(file.name()));
    const auto value = hold(input->read());
    JHashCode identity;
    EXPECT_EQ(value->toInt(), 5);
    EXPECT_EQ(value->getHashCode(identity), counting);
}

TEST(BinaryStreams, KeepEveryKindTheyCarry) {
    const File file;
    const auto value = hold(CreateKELStruct());
    value->putInt("int", -5);
    value->putBoolean("boolean", true);
    value->putDouble("double", 0.1);
    value->putString("string", "a \"b\"");
    value->addVar("block", hold(CreateKELMemBlock(3, "\0\xFF\1")).get());
    value->addVar("array", hold(CreateKELArray()).get());
    value->addVar("struct", hold(CreateKELStruct()).get());
    value->addVar("none", nullptr);
    write(file, value);
    const auto input = hold(CreateKELBinaryInputStream(file.name()));
    const auto back = hold(input->read());
    EXPECT_TRUE(back->equalsValue(value.get()));
    EXPECT_EQ(asStruct(back).getVar("none"), nullptr);
}

TEST(BinaryStreams, KeepSharing) {
    const File file;
    const auto shared = hold(CreateKELInt(7));
    const auto first = hold(CreateKELArray());
    const auto second = hold(CreateKELArray());
    const auto both = hold(CreateKELArray());
    first->addVar(shared.get());
    second->addVar(shared.get());
    both->addVar(first.get());
    both->addVar(second.get());
    write(file, both);
    const auto input = hold(CreateKELBinaryInputStream(file.name()));
    const auto back = hold(input->read());
    EXPECT_EQ(dynamic_cast<KEL_Array&>(*asArray(back).getVar(0)).getVar(0),
              dynamic_cast<KEL_Array&>(*asArray(back).getVar(1)).getVar(0));
}

TEST(BinaryStreams, KeepAValueThatContainsItself) {
    const File file;
    const auto loop = hold(CreateKELArray());
    loop->addVar(loop.get());
    write(file, loop);
    loop->removeAllVars();
    const auto input = hold(CreateKELBinaryInputStream(file.name()));
    const auto back = hold(input->read());
    EXPECT_EQ(asArray(back).getVar(0), back.get());
    asArray(back).removeAllVars();
}

TEST(BinaryStreams, ReferToWhatWasWrittenToTheStreamBefore) {
    const File file;
    const auto value = hold(CreateKELString("text"));
    write(file, value, value);
    EXPECT_EQ(file.bytes().size(), 34 + 4 + 24U);
    const auto input = hold(CreateKELBinaryInputStream(file.name()));
    const auto first = hold(input->read());
    const auto second = hold(input->read());
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(thrownMessage<JEOFException>([&] { input->read(); }),
              "BinaryDataInput::JReadString(). EOF reached.");
}

TEST(BinaryStreams, ReplaceTheFile) {
    const File file(std::string(1000, 'x'));
    write(file, hold(CreateKELInt(1)));
    EXPECT_EQ(file.bytes().size(), 38U);
}

TEST(BinaryStreams, RefuseNull) {
    const File file;
    EXPECT_EQ(thrownMessage<KELNullPointerException>([&] { write(file, Held<KEL>()); }),
              "General KEL exception.");
    EXPECT_EQ(file.bytes(), "");
}

TEST(BinaryStreams, RefuseAGuidAndLeaveAPartialRecord) {
    const File file;
    const auto array = hold(CreateKELArray());
    array->addInt(1);
    array->addguid(JHashCode(1));
    EXPECT_EQ(thrownMessage<KELIOException>([&] { write(file, array); }), "General KEL exception.");
    EXPECT_EQ(file.bytes().size(), 34 + 38 + 26U);
}

TEST(BinaryStreams, RefuseEveryKindWithoutABinaryForm) {
    for (const int32_t kind :
         {KELKind_guid, KELKind_Manager, KELKind_Selector, KELKind_MultiSelector, KELKind_IndexList,
          KELKind_MetaKel, KELKind_MetaKelDescriptor, KELKind_MetaKelVarDescriptor}) {
        const File file;
        EXPECT_EQ(thrownMessage<KELIOException>([&] { write(file, valueWith(kind, counting)); }),
                  "General KEL exception.")
            << kind;
    }
}

TEST(BinaryStreams, AfterARefusalTheNextWriteIsWhole) {
    const File file;
    const auto array = hold(CreateKELArray());
    array->addguid(JHashCode(1));
    {
        const auto stream = hold(CreateKELBinaryOutputStream(file.name()));
        EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->write(array.get()); }),
                  "General KEL exception.");
        array->removeAllVars();
        stream->write(array.get());
    }
    EXPECT_EQ(file.bytes().size(), 34 + 26 + 34U);
}

TEST(BinaryStreams, RefuseForeignAndDamagedFiles) {
    const File text("{\n}\n");
    std::string fiveBytes = intRecord + "x";
    fiveBytes[26] = 5; // the length of an Int
    const File wrongLength(fiveBytes);
    const File unknown(std::string("KEL\0", 4).append(16, '\1').append("\xFF\xFF\xFF\x7F"));
    const auto refusal = [](const File& file) {
        const auto input = hold(CreateKELBinaryInputStream(file.name()));
        return thrownMessage<KELIOException>([&] { input->read(); });
    };
    EXPECT_EQ(refusal(text), "Error reading KEL header.");
    EXPECT_EQ(refusal(wrongLength), "Error reading KEL header.");
    EXPECT_EQ(refusal(unknown), "Error in KEL hash code.");
}

TEST(BinaryStreams, LetTheEndInsideARecordThroughByValue) {
    const File file(std::string(intRecord, 0, 36));
    const auto input = hold(CreateKELBinaryInputStream(file.name()));
    EXPECT_EQ(thrownMessage<JEOFException>([&] { input->read(); }),
              "BinaryDataInput::JRead32(). EOF reached.");
}

TEST(BinaryStreams, LetTheFailureToOpenThroughByValue) {
    const char* missing = "/nonexistent/file.kelb";
    std::FILE* none = nullptr;
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELBinaryInputStream(missing); }),
              "FileInputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELBinaryOutputStream(missing); }),
              "FileOutputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELBinaryInputStream(none); }),
              "FileInputStream. Cannot open file.");
    EXPECT_EQ(thrownMessage<JIOException>([&] { CreateKELBinaryOutputStream(none); }),
              "FileOutputStream. Cannot open file.");
}

TEST(BinaryStreams, WriteAndReadSingleNumbersLittleEndian) {
    const File file;
    {
        const auto stream = hold(CreateKELBinaryOutputStream(file.name()));
        stream->JWrite8(1);
        stream->JWrite16(0x0203);
        stream->JWrite32(0x04050607);
        stream->JWrite64(0x08090A0B0C0D0E0F);
        stream->JWrite128(counting);
        stream->JWriteDouble(1.5);
        stream->JWriteString("ab");
    }
    EXPECT_EQ(file.bytes().substr(0, 7), "\1\3\2\7\6\5\4");
    const auto input = hold(CreateKELBinaryInputStream(file.name()));
    uint64_t wide = 0;
    JHashCode wider;
    EXPECT_EQ(input->JRead8(), 1);
    EXPECT_EQ(input->JRead16(), 0x0203);
    EXPECT_EQ(input->JRead32(), 0x04050607);
    EXPECT_EQ(input->JRead64(wide), 0x08090A0B0C0D0E0FU);
    EXPECT_EQ(input->JRead128(wider), counting);
    EXPECT_EQ(input->JReadDouble(), 1.5);
    const JPointer<JString> text(input->JReadString());
    EXPECT_STREQ(text->chars(), "ab");
}

} // namespace
