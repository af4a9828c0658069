// The five scalar kinds and memory blocks.
#include "atomicity/Documents.h"
#include "streams/StringReader.h"

namespace kel::test {

namespace {

/// Adds the setters that every scalar has. Self is the scalar's class in the declarations.
template <class T> void addSetters(Rows<T>& rows, const std::string& self) {
    rows((self + "* setBoolean(bool value)").c_str(), [](T& v) { return v.setBoolean(true); });
    rows((self + "* setInt(int32_t value)").c_str(), [](T& v) { return v.setInt(77); });
    rows((self + "* setDouble(double value)").c_str(), [](T& v) { return v.setDouble(77.5); });
    rows((self + "* setString(const char* text)").c_str(),
         [](T& v) { return v.setString(longText); });
    rows((self + "* setguid(const JHashCode& value)").c_str(),
         [](T& v) { return v.setguid(JHashCode(9, 8, 7, 6)); });
}

/// Makes a block whose three bytes are still unread in its source.
Document waitingBlockDocument() {
    Document document;
    const JPointer<StringReader> source(new StringReader("abc", 3));
    HeldValue block(new KEL_MemBlock_Impl(source.get(), 3));
    block->addRef();
    const HeldValue shared(block.get());
    document.add("block", std::move(block)).add("holder", arrayOf(shared));
    return document;
}

} // namespace

void addScalarRows(Table& table) {
    Rows<KEL_Int> ints(table, "KELInterface_Int_V1", [] { return kindDocument(KELKind_Int); });
    ints("int32_t getValue() const", [](KEL_Int& v) { return v.getValue(); });
    ints("void setValue(int32_t value)", [](KEL_Int& v) { v.setValue(77); });
    addSetters(ints, "KEL_Int");

    Rows<KEL_Boolean> booleans(table, "KELInterface_Boolean_V1",
                               [] { return kindDocument(KELKind_Boolean); });
    booleans("bool getValue() const", [](KEL_Boolean& v) { return v.getValue(); });
    booleans("void setValue(bool value)", [](KEL_Boolean& v) { v.setValue(false); });
    addSetters(booleans, "KEL_Boolean");

    Rows<KEL_Double> doubles(table, "KELInterface_Double_V1",
                             [] { return kindDocument(KELKind_Double); });
    doubles("double getValue() const", [](KEL_Double& v) { return v.getValue(); });
    doubles("void setValue(double value)", [](KEL_Double& v) { v.setValue(77.5); });
    addSetters(doubles, "KEL_Double");

    Rows<KEL_guid> guids(table, "KELInterface_guid_V1", [] { return kindDocument(KELKind_guid); });
    guids("JHashCode& getValue(JHashCode& out) const", [](KEL_guid& v) {
        JHashCode out;
        return JHashCode(v.getValue(out));
    });
    guids("void setValue(const JHashCode& value)", [](KEL_guid& v) { v.setValue(JHashCode(9)); });
    addSetters(guids, "KEL_guid");

    Rows<KEL_String> strings(table, "KELInterface_String_V1",
                             [] { return kindDocument(KELKind_String); });
    strings("const char* getValue() const", [](KEL_String& v) { return v.getValue(); });
    strings("void setValue(const char* text)", [](KEL_String& v) { v.setValue(longText); });
    strings(
        "void setValue(const char* text)", [](KEL_String& v) { v.setValue(v.getValue()); },
        "its own text");
    addSetters(strings, "KEL_String");
    strings("char getChar(int32_t index) const", [](KEL_String& v) { return v.getChar(1); });

    Rows<KEL_MemBlock> blocks(table, "KELInterface_MemBlock_V1",
                              [] { return kindDocument(KELKind_MemBlock); });
    const auto read = [](KEL_MemBlock& v) {
        char bytes[3];
        v.read(0, bytes, 3);
    };
    const auto write = [](KEL_MemBlock& v) { v.write(1, "Z", 1); };
    blocks("void read(int32_t offset, void* destination, int32_t count)", read).reads();
    blocks("void write(int32_t offset, const void* source, int32_t count)", write);
    blocks("int32_t getSize() const", [](KEL_MemBlock& v) { return v.getSize(); });

    Rows<KEL_MemBlock> waiting(table, "KELInterface_MemBlock_V1", waitingBlockDocument,
                               "not loaded");
    waiting("void read(int32_t offset, void* destination, int32_t count)", read).throwsKel();
}

} // namespace kel::test
