// Writes and reads whole values. A failed call can have written or consumed bytes, but it leaves
// the values unchanged.
#include "atomicity/Documents.h"
#include "serial/text/KELStringOutputStream_Impl.h"
#include "support/ValueStreams.h"

namespace kel::test {

namespace {

/// Makes a value that both formats can carry.
HeldValue plainValue() {
    const HeldValue shared = stringOf(longText);
    return structOf("a", intOf(1), "b", shared, "again", shared, "list",
                    arrayOf(doubleOf(2.5), booleanOf(true), arrayOf(shared)), "n", nullptr);
}

/// A sink that needs no memory, so that only the allocations of the writers fail.
class Nowhere final : public JOutputStream {
public:
    void JWrite(int32_t) override {}
    void JWrite(const uint8_t*, int32_t, int32_t) override {}
    void JFlush() override {}
    void JClose() override {}
    int64_t JTell() override { return -1; }
    void JSeek(int64_t) override {}
};

/// A stream to nowhere.
template <class T> struct Sunk {
    void write(KEL* value) { stream->write(value); }

    JPointer<T> stream{new T(JPointer<JOutputStream>(new Nowhere()))};
};

/// Two streams. A call after a failed one uses the second, because the first keeps its bytes.
template <class Stream> struct Outputs {
    Stream& next() { return std::exchange(isUsed, true) ? second : first; }

    Stream first;
    Stream second;
    bool isUsed = false;
};

/// Makes a value, and the streams that it is written to.
template <class Stream> Document outputDocument() {
    Document document;
    document.add("value", plainValue());
    document.addOther(std::make_shared<Outputs<Stream>>(), [] { return std::string("streams"); });
    return document;
}

/// Makes a stream over the bytes.
template <class Stream> Document inputDocument(const std::string& bytes) {
    Document document;
    const auto text = std::make_shared<std::string>(bytes);
    const auto stream = std::make_shared<Stream>(std::string_view(*text));
    document.addOther(std::shared_ptr<void>(stream.get(), [stream, text](void*) {}),
                      [] { return std::string("a stream"); });
    return document;
}

/// A string output stream as hosts make it.
struct StringStream {
    void write(KEL* value) { stream->write(value); }

    JPointer<KELStringOutputStream_Impl> stream{new KELStringOutputStream_Impl()};
};

/// Makes one string output stream that a value was written to.
Document writtenDocument() {
    Document document;
    const auto written = std::make_shared<StringStream>();
    written->write(plainValue().get());
    document.addOther(written, [] { return std::string("a stream"); });
    return document;
}

template <class Stream> Row& addWriting(Table& table, const char* situation) {
    Rows<KEL_Impl> rows(table, "KELInterface_OutputStream_V1", outputDocument<Stream>, situation);
    return rows(
               "void write(KEL* value)",
               [](KEL_Impl& v, const Document& d) { d.other<Outputs<Stream>>(0).next().write(&v); })
        .throwsKel()
        .reads();
}

void addStringOutputs(Table& table) {
    Rows<StringStream> text(table, "KELTextOutputStreamInterface_V1", writtenDocument);
    text("void setMemBlockComment(bool flag)", [](StringStream& s) {
        s.stream->setMemBlockComment(true);
    }).reads();
    Rows<StringStream> strings(table, "KELStringOutputStreamInterface_V1", writtenDocument);
    strings("const char* getString()", [](StringStream& s) {
        return s.stream->getString();
    }).reads();
    strings("uint32_t getStringSize() const",
            [](StringStream& s) { return s.stream->getStringSize(); });
}

void addReading(Table& table) {
    const char* read = "KEL* read()";
    Rows<TextInput> text(
        table, "KELInterface_InputStream_V1",
        [] { return inputDocument<TextInput>(textOf(plainValue())); }, "text");
    text(read, [](TextInput& s) { return owned(s.read().detach()); }).throwsKel().reads().isOnce();
    Rows<BinaryInput> binary(
        table, "KELInterface_InputStream_V1",
        [] { return inputDocument<BinaryInput>(binaryOf(plainValue())); }, "binary");
    binary(read, [](BinaryInput& s) { return owned(s.read().detach()); })
        .throwsKel()
        .reads()
        .isOnce();
    Rows<TextInput> kinds(
        table, "KELInterface_InputStream_V1",
        [] {
            std::string all;
            for (const KELKind kind :
                 {KELKind_guid, KELKind_Manager, KELKind_IndexList, KELKind_MetaKel,
                  KELKind_MetaKelDescriptor, KELKind_MetaKelVarDescriptor}) {
                all += textOf(sampleOf(kind)) + "\n";
            }
            return inputDocument<TextInput>("[\n" + all + "]");
        },
        "text of further kinds");
    kinds(read, [](TextInput& s) { return owned(s.read().detach()); }).throwsKel().reads().isOnce();
}

} // namespace

void addStreamRows(Table& table) {
    addWriting<Sunk<KELTextOutputStream_Impl>>(table, "text");
    addWriting<Sunk<KELBinaryOutputStream_Impl>>(table, "binary");
    addWriting<StringStream>(table, "string")
        .orFailureOfSink("StringWriter::JWrite(uchar*,int,int). Stream returned bad() flag.");
    addStringOutputs(table);
    addReading(table);
}

} // namespace kel::test
