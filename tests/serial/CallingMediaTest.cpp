// Media whose functions use the stream, or change the values, during an operation of the stream.
#include "support/Trees.h"
#include "support/ValueStreams.h"
#include "support/Values.h"
#include "values/KEL_IndexList_Impl.h"
#include "values/KEL_Selector_Impl.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <random>

using namespace kel::test;

namespace {

const std::string inUse = "The stream is in use.";

/// Calls the host at each write, after keeping the bytes.
class CallingSink : public JOutputStream {
public:
    std::function<void()> call = [] {};
    std::string bytes;

    void JWrite(int32_t byte) override {
        bytes.push_back(static_cast<char>(byte));
        call();
    }
    void JWrite(const uint8_t* buffer, int32_t offset, int32_t count) override {
        bytes.append(reinterpret_cast<const char*>(buffer) + offset,
                     static_cast<std::size_t>(count));
        call();
    }
    void JFlush() override { call(); }
    void JClose() override { call(); }
    int64_t JTell() override {
        call();
        return 0;
    }
    void JSeek(int64_t) override { call(); }
};

/// An output stream over a sink that calls the host.
template <class Stream> struct Calling {
    JPointer<CallingSink> sink{new CallingSink};
    Stream* stream = new Stream(JPointer<JOutputStream>::share(sink.get()));
};

using CallingText = Calling<KELTextOutputStream_Impl>;
using CallingBinary = Calling<KELBinaryOutputStream_Impl>;

constexpr int large = 5000;

/// Returns a struct with names and texts of all lengths on several levels. Its text takes many
/// writes.
HeldValue largeStruct() {
    auto value = structOf();
    for (int i = 0; i < large; ++i) {
        const std::string number = std::to_string(i);
        const auto inner = structOf(("name " + number).c_str(), intOf(i), "array",
                                    arrayOf(intOf(i), structOf("deep", stringOf(number))));
        asStruct(value).addVar(("long enough for a block " + number).c_str(), inner.get());
    }
    asStruct(value).addVar("long", stringOf(std::string(1'000'000, 's')).get());
    asStruct(value).addVar(std::string(100'000, 'n').c_str(), intOf(1).get());
    return value;
}

template <class Output> void removeAllDuringEachWrite() {
    Output output;
    auto root = structOf("inner", largeStruct());
    output.sink->call = [&] {
        if (root.get() != nullptr) {
            asStruct(at(root, "inner")).removeAllVars();
            asStruct(root).removeAllVars();
            root.clear(); // the host's reference was the last one
        }
    };
    KEL* value = root.get();
    output.stream->write(value);
    output.stream->destroy();
    EXPECT_EQ(root.get(), nullptr);
}

TEST(CallingSink, CanRemoveTheValuesThatAreWrittenAsText) {
    removeAllDuringEachWrite<CallingText>();
}

TEST(CallingSink, CanRemoveTheValuesThatAreWrittenAsRecords) {
    removeAllDuringEachWrite<CallingBinary>();
}

TEST(CallingSink, ThatChangesNothingGetsTheWholeText) {
    const auto value = largeStruct();
    const std::string whole = textOf(value);
    CallingText output;
    int calls = 0;
    output.sink->call = [&] { ++calls; };
    output.stream->write(value.get());
    EXPECT_EQ(output.sink->bytes, whole);
    EXPECT_GT(calls, 20);
    output.stream->destroy();
}

TEST(CallingSink, GetsRecordsAsTheyWereBeforeItsChanges) {
    const auto value = largeStruct();
    const std::string whole = binaryOf(value);
    CallingBinary output;
    output.sink->call = [&] { asStruct(value).removeAllVars(); };
    output.stream->write(value.get());
    EXPECT_EQ(output.sink->bytes, whole);
    output.stream->destroy();
}

/// Changes a struct in one of many ways.
void change(KEL_Struct_Impl& target, std::mt19937& random) {
    KELVarCursor at;
    const std::string name = "long enough for a block " + std::to_string(random() % large);
    switch (random() % 6) {
    case 0:
        if (target.findVar(at, name.c_str())) {
            target.removeVar(name.c_str());
        }
        break;
    case 1:
        target.putInt(name.c_str(), 7);
        break;
    case 2:
        target.putString(("another " + std::to_string(random())).c_str(), "text");
        break;
    case 3:
        if (target.findVar(at, name.c_str())) {
            target.renameVar(name.c_str(), ("renamed " + std::to_string(random())).c_str());
        }
        break;
    case 4:
        if (target.findVar(at, "long")) {
            target.setString("long", std::string(random() % 100000, 't').c_str());
        }
        break;
    default:
        for (int i = 0; i < 200 && target.nextVar(at); ++i) {
            target.removeVar(std::string(at.name).c_str());
        }
    }
}

TEST(CallingSink, CanChangeTheValuesInAnyWay) {
    for (uint32_t seed = 0; seed < 20; ++seed) {
        std::mt19937 random(seed);
        const auto value = largeStruct();
        CallingText output;
        output.sink->call = [&] { change(static_cast<KEL_Struct_Impl&>(*value), random); };
        output.stream->write(value.get());
        EXPECT_EQ(output.sink->bytes.substr(output.sink->bytes.size() - 2), "}\n");
        output.stream->destroy();
    }
}

TEST(CallingSink, CanShortenAnArrayOrTheArraysOfAList) {
    const auto items = arrayOf();
    const auto keys = arrayOf();
    for (int i = 0; i < 20000; ++i) {
        asArray(items).addInt(i);
        asArray(keys).addInt(i);
    }
    const auto arrayIn = [](const HeldValue& value) {
        return JPointer<KEL_Array_Impl>::share(static_cast<KEL_Array_Impl*>(value.get()));
    };
    const HeldValue values[] = {
        HeldValue(new KEL_IndexList_Impl(arrayIn(keys), arrayIn(items))),
        arrayOf(items),
        managerOf(items),
    };
    for (const HeldValue& value : values) {
        CallingText output;
        output.sink->call = [&] {
            asArray(items).removeAllVars();
            asArray(keys).removeAllVars();
        };
        output.stream->write(value.get());
        output.stream->destroy();
    }
}

TEST(CallingSink, CanWriteTheSameValuesToAnotherStreamAsRecords) {
    const auto value = largeStruct();
    CallingText output;
    std::string records;
    output.sink->call = [&] { records = binaryOf(value); };
    const std::string whole = textOf(value);
    output.stream->write(value.get());
    EXPECT_EQ(output.sink->bytes, whole);
    EXPECT_EQ(binaryOf(value), records);
    output.stream->destroy();
}

TEST(CallingSink, CanWriteTheSameValuesToAnotherStreamAsText) {
    const auto value = largeStruct();
    const std::string whole = textOf(value);
    CallingText output;
    std::string again;
    output.sink->call = [&] { again = textOf(value); };
    output.stream->write(value.get());
    EXPECT_EQ(output.sink->bytes, whole);
    EXPECT_EQ(again, whole);
    output.stream->destroy();
}

/// Returns an array with more text than the writer keeps before it calls the sink.
HeldValue longArray() {
    auto array = arrayOf();
    for (int i = 0; i < 40; ++i) {
        asArray(array).addString(std::string(1000, 's').c_str());
    }
    return array;
}

TEST(CallingSink, CanReleaseATreeWhoseRestIsRefused) {
    auto root = longArray();
    asArray(root).addVar(arrayOf(arrayOf(HeldValue(new KEL_Selector_Impl(nullptr)))).get());
    CallingText output;
    output.sink->call = [&] { root.clear(); };
    KEL* value = root.get();
    EXPECT_EQ(thrownMessage<KELIOException>([&] { output.stream->write(value); }),
              "General KEL exception.");
    EXPECT_EQ(root.get(), nullptr);
    output.stream->destroy();
}

TEST(CallingSink, CanReadARecordThatRefersToTheValue) {
    const auto source = longArray();
    const auto around = arrayOf(source);
    const std::string records = BinaryOutput().write(source).write(source).write(around).bytes();
    BinaryInput input(records);
    const auto value = input.read();
    std::vector<Held<KEL_Impl>> others;
    CallingText output;
    output.sink->call = [&] {
        if (others.size() < 2) {
            others.push_back(input.read());
        }
    };
    output.stream->write(value.get());
    output.stream->write(value.get());
    ASSERT_EQ(others.size(), 2U);
    EXPECT_EQ(others[0].get(), value.get());
    EXPECT_EQ(textOf(others[1]), textOf(around));
    output.stream->destroy();
}

TEST(CallingSink, CanWriteALoopAsRecordsAndTheTextIsStillRefused) {
    const auto loop = longArray();
    asArray(loop).addVar(loop.get());
    CallingText output;
    output.sink->call = [&] { binaryOf(loop); };
    EXPECT_EQ(thrownMessage<KELIOException>([&] { output.stream->write(loop.get()); }),
              "Cannot write a value that contains itself.");
    EXPECT_LT(output.sink->bytes.size(), 50000U);
    asArray(loop).removeAllVars();
    output.stream->destroy();
}

// ---- The stream itself -------------------------------------------------------------------------

template <class Output> void useDuringEachOperation() {
    Output output;
    auto* stream = output.stream;
    const auto value = intOf(5);
    int calls = 0;
    const auto refused = [&](const auto& action) {
        EXPECT_EQ(thrownMessage<KELIOException>(action), inUse);
    };
    output.sink->call = [&] {
        ++calls;
        refused([&] { stream->write(value.get()); });
        refused([&] { stream->JWrite8(1); });
        refused([&] { stream->JWrite16(1); });
        refused([&] { stream->JWrite32(1); });
        refused([&] { stream->JWrite64(uint64_t{1}); });
        refused([&] { stream->JWrite128(JHashCode()); });
        refused([&] { stream->JWriteString("text"); });
        refused([&] { stream->JWriteDouble(1); });
        refused([&] { stream->JWrite('x'); });
        refused([&] { stream->JFlush(); });
        refused([&] { stream->JClose(); });
        refused([&] { stream->JTell(); });
        refused([&] { stream->JSeek(0); });
    };
    stream->write(value.get());
    stream->JWriteString("text");
    stream->JWrite('x');
    stream->JFlush();
    stream->JTell();
    stream->JSeek(0);
    EXPECT_GE(calls, 6);
    stream->destroy();
}

TEST(CallingSink, CannotUseItsTextStreamDuringAnOperation) {
    useDuringEachOperation<CallingText>();
}

TEST(CallingSink, CannotUseItsBinaryStreamDuringAnOperation) {
    useDuringEachOperation<CallingBinary>();
}

template <class Output> void deleteDuringAWrite() {
    Output output;
    int calls = 0;
    output.sink->call = [&] {
        if (++calls == 1) {
            EXPECT_EQ(thrownMessage<KELIOException>([&] { output.stream->destroy(); }), inUse);
        }
    };
    output.stream->write(largeStruct().get()); // deleted at the end of this
    EXPECT_FALSE(output.sink->bytes.empty());
}

TEST(CallingSink, CanReleaseItsTextStreamDuringAWrite) {
    deleteDuringAWrite<CallingText>();
}

TEST(CallingSink, CanReleaseItsBinaryStreamDuringAWrite) {
    deleteDuringAWrite<CallingBinary>();
}

// ---- Reading -----------------------------------------------------------------------------------

/// Gives few bytes at a time, and calls the host before.
class CallingSource : public StringReader {
public:
    using StringReader::StringReader;
    std::function<void()> call = [] {};

    int32_t JRead() override {
        call();
        return StringReader::JRead();
    }
    int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count) override {
        call();
        return StringReader::JRead(buffer, offset, std::min(count, 1000));
    }
};

CallingSource* sourceOf(const std::string& bytes) {
    return new CallingSource(bytes.data(), static_cast<int64_t>(bytes.size()));
}

template <class Stream> void useWhileItReads(const std::string& bytes) {
    CallingSource* source = sourceOf(bytes);
    const JPointer<Stream> stream(new Stream(JPointer<JInputStream>(source)));
    int calls = 0;
    const auto refused = [&](const auto& action) {
        EXPECT_EQ(thrownMessage<KELIOException>(action), inUse);
    };
    source->call = [&] {
        ++calls;
        uint8_t byte = 0;
        refused([&] { stream->read(); });
        refused([&] { stream->JRead8(); });
        refused([&] { stream->JRead32(); });
        refused([&] { stream->JReadString(); });
        refused([&] { stream->JReadDouble(); });
        refused([&] { stream->JRead(); });
        refused([&] { stream->JRead(&byte, 0, 1); });
        refused([&] { stream->JSeek(0); });
        refused([&] { stream->JClose(); });
    };
    const HeldValue value(KEL_Impl::of(stream->read()));
    EXPECT_EQ(textOf(value), textOf(largeStruct()));
    EXPECT_GT(calls, 100);
}

TEST(CallingSource, CannotUseItsTextStreamWhileItReads) {
    useWhileItReads<KELStringInputStream_Impl>(textOf(largeStruct()));
}

TEST(CallingSource, CannotUseItsBinaryStreamWhileItReads) {
    useWhileItReads<KELBinaryInputStream_Impl>(binaryOf(largeStruct()));
}

template <class Stream> void releaseWhileItReads(const std::string& bytes) {
    CallingSource* source = sourceOf(bytes);
    auto* stream = new Stream(JPointer<JInputStream>(source));
    int calls = 0;
    source->call = [&] {
        if (++calls == 3) {
            EXPECT_EQ(thrownMessage<KELIOException>([&] { stream->destroy(); }), inUse);
        }
    };
    const HeldValue value(KEL_Impl::of(stream->read())); // deleted at the end of this
    EXPECT_EQ(textOf(value), textOf(largeStruct()));
}

TEST(CallingSource, CanReleaseItsTextStreamWhileItReads) {
    releaseWhileItReads<KELStringInputStream_Impl>(textOf(largeStruct()));
}

TEST(CallingSource, CanReleaseItsBinaryStreamWhileItReads) {
    releaseWhileItReads<KELBinaryInputStream_Impl>(binaryOf(largeStruct()));
}

} // namespace
