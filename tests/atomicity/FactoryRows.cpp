// The exported functions that make values. Without memory they return null and change nothing.
#include "atomicity/Documents.h"

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

} // namespace

void addFactoryRows(Table& table) {
    Rows<KEL_Array> rows(table, "exported function", partsDocument);
    const auto add = [&rows](const char* function, auto create) -> Row& {
        return rows(function, [create](KEL_Array&, const Document& d) { return owned(create(d)); })
            .answersNeutral()
            .reads();
    };
    using D = const Document&;
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
