// The exported functions. Without memory, those that make something return null and change nothing.
#include "atomicity/Documents.h"
#include "support/TemporaryFile.h"

#include <kel/kel.h>

namespace kel::test {

namespace {

/// Makes values from which others are made.
Document partsDocument() {
    Document document;
    document.add("items", arrayOf(intOf(1), doubleOf(2.5), arrayOf(), stringOf(longText)))
        .add("keys", arrayOf(stringOf("a"), stringOf("b"), stringOf("c"), stringOf("d")))
        .add("struct", structOf("a", intOf(1), longText, intOf(2), "n", nullptr))
        .add("list", listOf(arrayOf(stringOf("k")), arrayOf(intOf(1))))
        .add("descriptor", structDescriptorOf("a", intRange(0, 1)));
    return document;
}

using D = const Document&;

/// Adds the functions that make streams. A call returns whether there is a stream, which it
/// deletes.
void addStreams(Rows<KEL_Array>& rows) {
    static const TemporaryFile file("1");
    static FILE* const handle = std::fopen(file.name(), "r+b");
    const auto input = [&rows](const char* function, KELInputStream* (*create)()) {
        rows(function,
             [create](KEL_Array&) {
                 KELInputStream* stream = create();
                 DeleteKELInputStream(stream);
                 return stream != nullptr;
             })
            .answersNeutral()
            .reads();
    };
    const auto output = [&rows](const char* function, KELOutputStream* (*create)()) {
        rows(function,
             [create](KEL_Array&) {
                 KELOutputStream* stream = create();
                 DeleteKELOutputStream(stream);
                 return stream != nullptr;
             })
            .answersNeutral()
            .reads();
    };
    using In = KELInputStream*;
    using Out = KELOutputStream*;
    input("CreateKELBinaryInputStream(FILE* file)",
          []() -> In { return CreateKELBinaryInputStream(handle); });
    input("CreateKELBinaryInputStream(const char* fileName)",
          []() -> In { return CreateKELBinaryInputStream(file.name()); });
    input("CreateKELTextInputStream(FILE* file)",
          []() -> In { return CreateKELTextInputStream(handle); });
    input("CreateKELTextInputStream(const char* fileName)",
          []() -> In { return CreateKELTextInputStream(file.name()); });
    input("CreateKELStringInputStream(const char* text, int32_t length)",
          []() -> In { return CreateKELStringInputStream("1", 1); });
    output("CreateKELBinaryOutputStream(FILE* file)",
           []() -> Out { return CreateKELBinaryOutputStream(handle); });
    output("CreateKELBinaryOutputStream(const char* fileName)",
           []() -> Out { return CreateKELBinaryOutputStream(file.name()); });
    output("CreateKELTextOutputStream(FILE* file)",
           []() -> Out { return CreateKELTextOutputStream(handle); });
    output("CreateKELTextOutputStream(const char* fileName, bool append)",
           []() -> Out { return CreateKELTextOutputStream(file.name(), true); });
    output("CreateKELStringOutputStream()", []() -> Out { return CreateKELStringOutputStream(); });
}

/// Adds the functions that delete. Null is ignored, so those that could not be made do no harm.
void addDeleting(Rows<KEL_Array>& rows) {
    rows("DeleteKEL(KEL* value)", [](KEL_Array& a) {
        a.addRef();
        DeleteKEL(&a);
    }).reads();
    rows("DeleteKELInputStream(KELInputStream* stream)", [](KEL_Array&) {
        DeleteKELInputStream(CreateKELStringInputStream("1", 1));
    }).reads();
    rows("DeleteKELOutputStream(KELOutputStream* stream)", [](KEL_Array&) {
        DeleteKELOutputStream(CreateKELStringOutputStream());
    }).reads();
    rows("DeleteKELException(KELException* exception)", [](KEL_Array& a) {
        try {
            a.getVar(-1);
        } catch (KELException* failure) {
            DeleteKELException(failure);
        }
    }).reads();
    rows("DeleteStringEnumeration(StringEnumeration* enumeration)", [](KEL_Array&, D d) {
        DeleteStringEnumeration(d.as<KEL_Struct>("struct").getVarNames());
    }).reads();
}

} // namespace

void addFactoryRows(Table& table) {
    Rows<KEL_Array> rows(table, "exported function", partsDocument);
    const auto add = [&rows](const char* function, auto create) -> Row& {
        return rows(function, [create](KEL_Array&, const Document& d) { return owned(create(d)); })
            .answersNeutral()
            .reads();
    };
    addStreams(rows);
    addDeleting(rows);
    add("CreateKELInt(int32_t value)", [](D) { return CreateKELInt(1); });
    add("CreateKELBoolean(bool value)", [](D) { return CreateKELBoolean(true); });
    add("CreateKELDouble(double value)", [](D) { return CreateKELDouble(1.5); });
    add("CreateKELString(const char* text)", [](D) { return CreateKELString(longText); });
    add("CreateKELGuid()", [](D) { return CreateKELGuid(); });
    add("CreateKELGuid(KELGuid value)", [](D) { return CreateKELGuid(KELGuid()); });
    add("CreateKELMemBlock(int32_t size, const void* bytes)", [](D) {
        return CreateKELMemBlock(3, "abc");
    }).answersNeutralOr(Face::Kel);
    add("CreateKELArray()", [](D) { return CreateKELArray(); });
    add("CreateKELStruct()", [](D) { return CreateKELStruct(); });
    add("CreateKELManager()", [](D) { return CreateKELManager(); });
    add("CreateKELIndexList()", [](D) { return CreateKELIndexList(); });
    add("CreateKELIndexList(KEL_Array* items)",
        [](D d) { return CreateKELIndexList(&d.as<KEL_Array>("items")); });
    add("CreateKELIndexList(KEL_Array* keys, KEL_Array* items)", [](D d) {
        return CreateKELIndexList(&d.as<KEL_Array>("keys"), &d.as<KEL_Array>("items"));
    });
    add("CreateKELIndexList(KEL_Struct* variables)",
        [](D d) { return CreateKELIndexList(&d.as<KEL_Struct>("struct")); });
    add("CreateKELSelector(KEL_IndexList* list)",
        [](D d) { return CreateKELSelector(&d.as<KEL_IndexList>("list")); });
    add("CreateKELMultiSelector(KEL_IndexList* list)",
        [](D d) { return CreateKELMultiSelector(&d.as<KEL_IndexList>("list")); });
    add("CreateMetaKel(MetaKelDescriptor* descriptor)",
        [](D d) { return CreateMetaKel(&d.as<MetaKelDescriptor>("descriptor")); });
    add("CreateMetaKelDescriptor()", [](D) { return CreateMetaKelDescriptor(); });
    add("CreateMetaKelVarDescriptor()", [](D) { return CreateMetaKelVarDescriptor(); });
}

} // namespace kel::test
