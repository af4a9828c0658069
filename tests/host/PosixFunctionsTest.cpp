// Streams over a FILE that ends in functions of the host, which use the values and the stream.
#include "StreamSupport.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

using namespace host;

namespace {

/// A FILE whose bytes go to a string, or come from one. It calls the host each time.
class Functions {
public:
    std::function<void()> call = [] {};
    std::string bytes;

    Handle open(const char* mode) {
        Handle file(fopencookie(this, mode, {give, take, nullptr, nullptr}));
        std::setvbuf(file.get(), nullptr, _IONBF, 0);
        return file;
    }

private:
    static ssize_t take(void* cookie, const char* from, size_t count) {
        auto& mine = *static_cast<Functions*>(cookie);
        mine.bytes.append(from, count);
        mine.call();
        return static_cast<ssize_t>(count);
    }
    static ssize_t give(void* cookie, char* to, size_t count) {
        auto& mine = *static_cast<Functions*>(cookie);
        mine.call();
        const size_t given = std::min({count, mine.bytes.size() - mine.read_, size_t{1000}});
        std::memcpy(to, mine.bytes.data() + mine.read_, given);
        mine.read_ += given;
        return static_cast<ssize_t>(given);
    }

    size_t read_ = 0; // of the bytes
};

/// Returns a struct of structs. Its text takes many writes.
Held<KEL_Struct> largeStruct() {
    auto value = hold(CreateKELStruct());
    for (int i = 0; i < 5000; ++i) {
        const auto inner = hold(CreateKELStruct());
        inner->putInt("number", i);
        inner->putString("text", std::string(100, 't').c_str());
        value->addVar(("a name of more than fifteen bytes " + std::to_string(i)).c_str(),
                      inner.get());
    }
    return value;
}

TEST(HostFunctions, CanReleaseTheValuesThatAreWritten) {
    for (const bool asText : {true, false}) {
        Functions functions;
        const auto file = functions.open("wb");
        auto value = largeStruct();
        functions.call = [&] {
            if (value.get() != nullptr) {
                value->removeAllVars();
                value.clear();
            }
        };
        Held<KELOutputStream> stream(
            asText ? static_cast<KELOutputStream*>(CreateKELTextOutputStream(file.get()))
                   : CreateKELBinaryOutputStream(file.get()));
        stream->write(value.get());
        EXPECT_EQ(value.get(), nullptr);
        EXPECT_GT(functions.bytes.size(), 10000U);
    }
}

TEST(HostFunctions, CannotUseTheStreamThatWrites) {
    Functions functions;
    const auto file = functions.open("wb");
    const auto stream = hold(CreateKELTextOutputStream(file.get()));
    std::string message;
    functions.call = [&] { message = thrownMessage<KELIOException>([&] { stream->JWrite32(5); }); };
    stream->write(largeStruct().get());
    functions.call = [] {};
    EXPECT_EQ(message, "The stream is in use.");
    EXPECT_EQ(functions.bytes, textOf(largeStruct().get()));
}

TEST(HostFunctions, CannotUseTheStreamThatReadsButCanReleaseIt) {
    Functions functions;
    functions.bytes = textOf(largeStruct().get());
    const auto file = functions.open("rb");
    KELInputStream* stream = CreateKELTextInputStream(file.get());
    std::string message;
    std::string deleting;
    functions.call = [&] {
        if (message.empty()) {
            message = thrownMessage<KELIOException>([&] { stream->read(); });
            deleting = thrownMessage<KELIOException>([&] { DeleteKELInputStream(stream); });
        }
    };
    const auto value = hold(stream->read()); // deleted at the end of this
    EXPECT_EQ(message, "The stream is in use.");
    EXPECT_EQ(deleting, "The stream is in use.");
    EXPECT_EQ(textOf(value.get()), textOf(largeStruct().get()));
}

} // namespace
