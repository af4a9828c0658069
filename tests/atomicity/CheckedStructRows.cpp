// The operations of checked structs, and their differences from plain structs.
#include "atomicity/Documents.h"

namespace kel::test {

namespace {

using M = MetaKel;

MetaKelDescriptor* otherDescriptor(const Document& d) {
    return &d.as<MetaKelDescriptor>("otherDescriptor");
}
MetaKelVarDescriptor* rules(const Document& d) {
    return &d.as<MetaKelVarDescriptor>("rules");
}
KEL_Array* allowed(const Document& d) {
    return &d.as<KEL_Array>("allowed");
}

void addInterface(Table& table) {
    Rows<M> rows(table, "MetaKelInterface_V1", checkedDocument);
    rows("void clearVar(const char* name)", [](M& m) { m.clearVar("level"); });
    rows("void setDescriptor(MetaKelDescriptor* descriptor)",
         [](M& m, const Document& d) { m.setDescriptor(otherDescriptor(d)); });
    rows("void replaceDescriptor(MetaKelDescriptor* descriptor)",
         [](M& m, const Document& d) { m.replaceDescriptor(otherDescriptor(d)); });
    rows("MetaKelDescriptor* getDescriptor() const", [](M& m) { return m.getDescriptor(); });
    rows("void removeDescriptor()", [](M& m) { m.removeDescriptor(); });
    const char* createVar =
        "void createVar(const char* name, KEL* value, MetaKelVarDescriptor* descriptor)";
    rows(createVar, [](M& m, const Document& d) { m.createVar(longText, d["half"], rules(d)); });
    rows(
        createVar, [](M& m, const Document& d) { m.createVar(longText, d["new"], rules(d)); },
        "a value that is refused");
    rows(
        createVar, [](M& m, const Document& d) { m.createVar("level", d["half"], rules(d)); },
        "described anew");
    Rows<M> plain(table, "MetaKelInterface_V1", plainCheckedDocument, "no descriptor");
    plain("void setDescriptor(MetaKelDescriptor* descriptor)",
          [](M& m, const Document& d) { m.setDescriptor(otherDescriptor(d)); });
    plain(createVar, [](M& m, const Document& d) { m.createVar(longText, d["half"], rules(d)); });
}

void addOwn(Table& table, Document (*make)(), const char* situation) {
    Rows<M> rows(table, "MetaKel", make, situation);
    rows("void createVarWithType(const char* name, KEL* value)",
         [](M& m, const Document& d) { m.createVarWithType(longText, d["four"]); });
    rows("void createVarWithDefault(const char* name, KEL* value, KEL* defaultValue)",
         [](M& m, const Document& d) { m.createVarWithDefault(longText, d["four"], d["eleven"]); });
    rows(
        "void createVarWithDefault(const char* name, KEL* value, KEL* defaultValue)",
        [](M& m, const Document& d) { m.createVarWithDefault(longText, nullptr, d["eleven"]); },
        "no value");
    rows("void createVarWithEnum(const char* name, KEL* value, KEL_Array* allowed)",
         [](M& m, const Document& d) { m.createVarWithEnum(longText, d["half"], allowed(d)); });
    rows(
        "void createVarWithEnum(const char* name, KEL* value, KEL_Array* allowed)",
        [](M& m, const Document& d) { m.createVarWithEnum(longText, nullptr, allowed(d)); },
        "no value");
}

void addChecks(Table& table) {
    Rows<M> own(table, "MetaKel", checkedDocument);
    own(
        "KEL* getVar(const char* name, bool storeDefault)",
        [](M& m) { return m.getVar("missing", true); }, "the default is stored");
    own(
        "KEL* getVar(const char* name, bool storeDefault)",
        [](M& m) { return m.getVar("missing", false); }, "the default")
        .reads();
    Rows<M> rows(table, "KELInterface_Struct_V1", checkedDocument, "checked");
    rows(
        "KEL* getVar(const char* name)", [](M& m) { return owned(m.getVar("missing")); },
        "the default")
        .reads();
    rows("void addVar(const char* name, KEL* value)",
         [](M& m, const Document& d) { m.addVar("missing", d["four"]); });
    rows(
        "void addVar(const char* name, KEL* value)",
        [](M& m, const Document& d) { m.addVar("missing", d["eleven"]); }, "refused, so null");
    rows("void setVar(const char* name, KEL* value)",
         [](M& m, const Document& d) { m.setVar("level", d["four"]); });
    rows(
        "void setVar(const char* name, KEL* value)",
        [](M& m, const Document& d) { m.setVar("missing", d["four"]); },
        "a variable that is missing");
    rows("void setVarValue(const char* name, KEL* value)",
         [](M& m, const Document& d) { m.setVarValue("level", d["four"]); });
    rows(
        "void setVarValue(const char* name, KEL* value)",
        [](M& m, const Document& d) { m.setVarValue("pan", d["half"]); }, "a cleared variable");
    rows(
        "void setVarValue(const char* name, KEL* value)",
        [](M& m, const Document& d) { m.setVarValue("mode", d["fast"]); }, "an enumerated one");
    rows("int32_t addVars(KEL_Struct* other)",
         [](M& m, const Document& d) { return m.addVars(&d.as<KEL_Struct>("source")); });
    rows(
        "void removeVar(const char* name)", [](M& m) { m.removeVar("@desc"); }, "the descriptor");
    rows(
        "void setInt(const char* name, int32_t value)", [](M& m) { m.setInt("mode", int32_t{77}); },
        "into a String");
}

} // namespace

void addCheckedStructRows(Table& table) {
    addInterface(table);
    addOwn(table, checkedDocument, "described");
    addOwn(table, plainCheckedDocument, "no descriptor");
    addChecks(table);
}

} // namespace kel::test
