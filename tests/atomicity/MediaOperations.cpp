#include "atomicity/MediaOperations.h"

#include "support/Thrown.h"
#include "support/ValueStreams.h"
#include "support/Values.h"

#include <new>

namespace kel::test {

namespace {

std::string textOfGuid(const JHashCode& value) {
    char text[80];
    value.toGuidText(text);
    return text;
}

std::string describe(KEL* value) {
    if (value == nullptr) {
        return "null";
    }
    const std::string text =
        std::to_string(value->getType()) + " " + std::to_string(value->toInt());
    value->release();
    return text;
}

} // namespace

const std::vector<MediaOperation>& inputOperations() {
    using In = KELInputStream;
    static const std::vector<MediaOperation> operations{
        {"KEL* read()", [](In& in) { return describe(in.read()); }},
        {"int8_t JRead8()", [](In& in) { return std::to_string(in.JRead8()); }},
        {"int16_t JRead16()", [](In& in) { return std::to_string(in.JRead16()); }},
        {"int32_t JRead32()", [](In& in) { return std::to_string(in.JRead32()); }},
        {"uint64_t& JRead64(uint64_t& out)",
         [](In& in) {
             uint64_t out = 0;
             return std::to_string(in.JRead64(out));
         }},
        {"JHashCode& JRead128(JHashCode& out)",
         [](In& in) {
             JHashCode out;
             return textOfGuid(in.JRead128(out));
         }},
        {"JString* JReadString()",
         [](In& in) {
             const JPointer<JString> text(in.JReadString());
             return std::string(text->chars());
         }},
        {"double JReadDouble()", [](In& in) { return std::to_string(in.JReadDouble()); }},
        {"int32_t JRead()", [](In& in) { return std::to_string(in.JRead()); }},
        {"int32_t JRead(uint8_t* buffer, int32_t offset, int32_t count)",
         [](In& in) {
             uint8_t buffer[8] = {};
             int32_t taken = 0; // a failure after some bytes is thrown by the next read
             for (int32_t piece = -1; piece != 0 && taken < 8; taken += piece) {
                 piece = in.JRead(buffer, taken, 8 - taken);
             }
             return std::string(reinterpret_cast<const char*>(buffer),
                                static_cast<std::size_t>(taken));
         }},
        {"void JClose()",
         [](In& in) {
             in.JClose();
             return std::string("closed");
         }},
    };
    return operations;
}

const std::vector<MediaOperation>& outputOperations() {
    using Out = KELOutputStream;
    const auto write = [](const char* operation, void (*call)(Out&, KEL*)) {
        return MediaOperation{operation, nullptr, call};
    };
    static const std::vector<MediaOperation> operations{
        write("void write(KEL* value)", [](Out& out, KEL* value) { out.write(value); }),
        write("void JWrite8(int8_t value)", [](Out& out, KEL*) { out.JWrite8(1); }),
        write("void JWrite16(int16_t value)", [](Out& out, KEL*) { out.JWrite16(258); }),
        write("void JWrite32(int32_t value)", [](Out& out, KEL*) { out.JWrite32(66051); }),
        write("void JWrite64(uint64_t value)", [](Out& out, KEL*) { out.JWrite64(1); }),
        write("void JWrite128(const JHashCode& value)",
              [](Out& out, KEL*) { out.JWrite128(JHashCode(1, 2, 3, 4)); }),
        write("void JWriteString(const char* text)",
              [](Out& out, KEL*) { out.JWriteString("some text"); }),
        write("void JWriteDouble(double value)", [](Out& out, KEL*) { out.JWriteDouble(2.5); }),
        write("void JWrite(int32_t byte)", [](Out& out, KEL*) { out.JWrite(7); }),
        write("void JWrite(const uint8_t* buffer, int32_t offset, int32_t count)",
              [](Out& out, KEL*) {
                  const uint8_t bytes[] = {1, 2, 3};
                  out.JWrite(bytes, 1, 2);
              }),
        write("void JFlush()", [](Out& out, KEL*) { out.JFlush(); }),
        write("void JClose()", [](Out& out, KEL*) { out.JClose(); }),
    };
    return operations;
}

KEL* makeMediaValue() {
    const HeldValue shared = stringOf("a String that two places hold");
    const HeldValue value =
        structOf("a", shared, "b", arrayOf(intOf(1), shared, doubleOf(2.5)), "n", nullptr);
    value->addRef();
    return value.get();
}

std::string textFor(const MediaOperation& operation) {
    return std::string_view(operation.operation) == "JString* JReadString()" ? "word \"quoted\" 1"
                                                                             : "12 [ 1 2 3 ] word";
}

std::string recordFor(const MediaOperation& operation, KEL* value) {
    return std::string_view(operation.operation) == "KEL* read()"
               ? binaryOf(value)
               : std::string("some bytes and a NUL\0", 21);
}

std::string endingOf(const std::function<std::string()>& call) {
    try {
        return "returns " + call();
    } catch (const std::bad_alloc&) {
        return "std::bad_alloc";
    } catch (const JOutOfMemoryException&) {
        return "JOutOfMemoryException";
    } catch (KELOutOfMemoryException* failure) {
        failure->release();
        return "KELOutOfMemoryException";
    } catch (KELIOException* failure) {
        return "KELIOException " + messageAndRelease(failure);
    } catch (KELException* failure) {
        return "KELException " + messageAndRelease(failure);
    } catch (const JException& failure) {
        return "JException " + messageOf(failure);
    }
}

bool isOutOfMemory(const std::string& ending) {
    return ending == "std::bad_alloc" || ending == "JOutOfMemoryException" ||
           ending == "KELOutOfMemoryException";
}

} // namespace kel::test
