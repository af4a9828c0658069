// Calls streams, name lists, exceptions and the runtime's classes by slot.
#include "Host.h"
#include "RawSlots.h"

#include <cstdio>

namespace {

using host::bySlot;
using host::hold;

host::Held<KELStringInputStream> readerOf(const std::string& text) {
    return hold(CreateKELStringInputStream(text.c_str(), static_cast<int32_t>(text.size())));
}

TEST(SlotsOfStreams, WriteText) {
    const auto stream = hold(CreateKELStringOutputStream());
    const auto number = hold(CreateKELInt(7));
    const auto raw = bySlot<KELInterface_OutputStream_V1>(*stream);
    const uint8_t bytes[] = {'x', 'y', 'z'};
    raw.call<void(int8_t)>("JWrite8", int8_t{-1});
    raw.call<void(int32_t)>("JWrite", ' ');
    raw.call<void(int16_t)>("JWrite16", int16_t{-2});
    raw.call<void(const uint8_t*, int32_t, int32_t)>("JWrite", bytes, 1, 2);
    raw.call<void(int32_t)>("JWrite32", 3);
    raw.call<void(const char*)>("JWriteString", ";");
    raw.call<void(double)>("JWriteDouble", 0.5);
    raw.call<void(const char*)>("JWriteString", ";");
    raw.call<void(uint64_t)>("JWrite64", uint64_t{5} << 32 | 6U);
    raw.call<void(const char*)>("JWriteString", ";");
    raw.call<void(const JHashCode&)>("JWrite128", JHashCode(1, 2, 3, 4));
    raw.call<void()>("JFlush");
    const auto text = bySlot<KELStringOutputStreamInterface_V1>(*stream);
    EXPECT_STREQ(text.call<const char*()>("getString"),
                 "-1 -2yz3;0.500000;0000000500000006;00000004000000030000000200000001");
    const uint32_t size = text.call<uint32_t() const>("getStringSize");
    raw.call<void(KEL*)>("write", number.get());
    EXPECT_GT(stream->getStringSize(), size);
    raw.call<void()>("JClose");
}

TEST(SlotsOfStreams, SwitchTheCommentOfMemoryBlocks) {
    FILE* const file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    const auto block = hold(CreateKELMemBlock(2, "ab"));
    auto stream = hold(CreateKELTextOutputStream(file));
    const auto size = [&] {
        stream->JFlush();
        return std::ftell(file);
    };
    stream->write(block.get());
    const long plain = size();
    bySlot<KELTextOutputStreamInterface_V1>(*stream).call<void(bool)>("setMemBlockComment", true);
    stream->write(block.get());
    EXPECT_GT(size(), 2 * plain);
    stream.clear();
    std::fclose(file);
}

TEST(SlotsOfStreams, ReadText) {
    const auto stream = readerOf("1 2 3 word 0.5 77 !bytes");
    const auto raw = bySlot<KELInterface_InputStream_V1>(*stream);
    EXPECT_EQ(raw.call<int8_t()>("JRead8"), 1);
    EXPECT_EQ(raw.call<int16_t()>("JRead16"), 2);
    EXPECT_EQ(raw.call<int32_t()>("JRead32"), 3);
    const JPointer<JString> word(raw.call<JString*()>("JReadString"));
    EXPECT_STREQ(word->chars(), "word");
    EXPECT_EQ(raw.call<double()>("JReadDouble"), 0.5);
    const auto value = hold(raw.call<KEL*()>("read"));
    EXPECT_EQ(value->toInt(), 77);
    raw.call<void()>("JClose");
}

TEST(SlotsOfStreams, ReadBytes) {
    FILE* const file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    std::fputs("abcdefghABCDEFGHIJKLMNOPxyz", file);
    std::rewind(file);
    auto stream = hold(CreateKELBinaryInputStream(file));
    const auto raw = bySlot<KELInterface_InputStream_V1>(*stream);
    uint64_t wide = 0;
    JHashCode widest;
    uint8_t buffer[4] = {};
    EXPECT_EQ(raw.call<uint64_t&(uint64_t&)>("JRead64", wide), 0x6867666564636261U);
    EXPECT_EQ(&raw.call<JHashCode&(JHashCode&)>("JRead128", widest), &widest);
    EXPECT_EQ(widest, JHashCode(0x44434241, 0x48474645, 0x4C4B4A49, 0x504F4E4D));
    EXPECT_EQ(raw.call<int32_t()>("JRead"), 'x');
    EXPECT_EQ((raw.call<int32_t(uint8_t*, int32_t, int32_t)>("JRead", buffer, 1, 2)), 2);
    EXPECT_EQ(buffer[2], 'z');
    stream.clear();
    std::fclose(file);
}

TEST(SlotsOfStreams, ThrowAcrossTheBoundary) {
    const auto stream = readerOf("}");
    const auto raw = bySlot<KELInterface_InputStream_V1>(*stream);
    EXPECT_EQ(host::thrownMessage<KELIOException>([&] { raw.call<KEL*()>("read"); }),
              "Error reading KEL - syntax error at line: 1");
}

TEST(SlotsOfNames, EnumerateThem) {
    const auto fields = hold(CreateKELStruct());
    fields->putInt("a", int32_t{1});
    const auto names = hold(fields->getVarNames());
    const auto others = hold(fields->getVarNames());
    const auto raw = bySlot<StringEnumerationInterface_V1>(*names);
    JHashCode identity;
    raw.call<void(const char*)>("add", "b");
    EXPECT_TRUE(raw.call<bool(const char*) const>("contains", "b"));
    EXPECT_TRUE(raw.call<bool() const>("hasMoreElements"));
    EXPECT_STREQ(raw.call<const char*()>("nextElement"), "a");
    EXPECT_STREQ(raw.call<const char*()>("nextElement"), "b");
    raw.call<void()>("reset");
    EXPECT_STREQ(names->nextElement(), "a");
    raw.call<void(const char*)>("remove", "a");
    EXPECT_EQ(raw.call<int32_t() const>("getCount"), 1);
    raw.call<void(StringEnumeration*)>("addAll", others.get());
    EXPECT_EQ(names->getCount(), 2);
    raw.call<void()>("addRef");
    EXPECT_EQ(raw.call<int32_t()>("release"), 1);
    EXPECT_EQ(raw.call<int32_t() const>("getRefCount"), 1);
    EXPECT_FALSE(raw.call<JHashCode&(JHashCode&) const>("getHashCode", identity).isZero());
}

TEST(SlotsOfExceptions, TellTheMessage) {
    const auto array = hold(CreateKELArray());
    try {
        array->getVar(0);
        FAIL();
    } catch (KELException* caught) {
        const auto failure = hold(caught);
        const auto raw = bySlot<KELInterface_Exception_V1>(*failure);
        EXPECT_STREQ(raw.call<const char*()>("getMessage"), "Array index out of bounds.");
        EXPECT_STREQ(raw.call<const char*() const>("getMessageText"), "Array index out of bounds.");
        raw.call<void()>("addRef");
        EXPECT_EQ(raw.call<int32_t()>("release"), 1);
        EXPECT_EQ(raw.call<int32_t() const>("getRefCount"), 1);
    }
}

/// Returns the message of a runtime exception, which is a string of the library.
JPointer<JString> stringOfTheLibrary() {
    try {
        CreateKELTextInputStream("");
    } catch (const JException& failure) {
        const auto raw = bySlot<JException>(failure);
        const JPointer<JString> second(raw.call<JString*() const>("getMessageString"));
        return JPointer<JString>(raw.call<JString*() const>("getMessage"));
    }
    return JPointer<JString>();
}

TEST(SlotsOfTheRuntime, OfAString) {
    const JPointer<JString> string = stringOfTheLibrary();
    ASSERT_TRUE(string.isValid());
    const auto raw = bySlot<JString>(*string);
    const std::string message = "FileInputStream. Cannot open file.";
    const auto size = static_cast<uint32_t>(message.size());
    EXPECT_TRUE(raw.call<bool(const char*) const>("equals", message.c_str()));
    EXPECT_EQ(raw.call<uint32_t() const>("length"), size);
    const JPointer<JString> part(raw.call<JString*(uint32_t, uint32_t) const>("substring", 4U, 9U));
    EXPECT_STREQ(part->chars(), "Input");
    const JPointer<JString> tail(raw.call<JString*(uint32_t) const>("substring", size - 5U));
    EXPECT_STREQ(tail->chars(), "file.");
    raw.call<void(char)>("append", '!');
    raw.call<void(const char*)>("append", "?");
    raw.call<void(const JString&)>("append", *part);
    EXPECT_EQ(string->chars(), message + "!?Input");
    EXPECT_EQ(raw.call<char(int32_t) const>("getChar", 0), 'F');
}

TEST(SlotsOfTheRuntime, OfAnObject) {
    const JPointer<JString> string = stringOfTheLibrary();
    ASSERT_TRUE(string.isValid());
    const auto raw = bySlot<JObject>(*string);
    JHashCode identity;
    EXPECT_TRUE(raw.call<bool(const JObject*) const>("equals", string.get()));
    EXPECT_FALSE(raw.call<JHashCode&(JHashCode&) const>("getHashCode", identity).isZero());
    EXPECT_EQ(raw.call<int32_t() const>("getRefCount"), 1);
}

TEST(SlotsOfTheRuntime, OfAPointer) {
    JObject* const object = new JObject(1, 2, 3, 4);
    JPointer<JObject> pointer(object);
    const JPointer<JObject> other(new JObject(5, 6, 7, 8));
    const auto raw = bySlot<JPointer<JObject>>(pointer);
    EXPECT_FALSE(raw.call<bool()>("isNull"));
    EXPECT_FALSE(raw.call<bool() const>("isNull"));
    EXPECT_TRUE(raw.call<bool() const>("isValid"));
    EXPECT_EQ(raw.call<JObject*()>("detach"), object);
    EXPECT_TRUE(pointer.isNull());
    raw.call<JPointer<JObject>&(JObject*)>("operator=", object);
    EXPECT_EQ(raw.call<JObject*() const>("get"), object);
    EXPECT_EQ(&raw.call<JPointer<JObject>&(const JPointer<JObject>&)>("operator=", other),
              &pointer);
    EXPECT_EQ(other->getRefCount(), 2);
    raw.call<void()>("clear");
    EXPECT_EQ(other->getRefCount(), 1);
}

} // namespace
