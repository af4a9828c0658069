// The operations of structs, for every kind that offers them.
#include "atomicity/Documents.h"

namespace kel::test {

namespace {

using S = KEL_Struct;

void addReading(Rows<S>& rows) {
    rows("KEL* getVar(const char* name)", [](S& s) { return owned(s.getVar("a")); }).reads();
    rows("KEL* getVar(const char* name) const", [](S& s) { return std::as_const(s).getVar("a"); });
    rows("bool getBoolean(const char* name) const", [](S& s) { return s.getBoolean("a"); });
    rows("int32_t getInt(const char* name) const", [](S& s) { return s.getInt("a"); });
    rows("double getDouble(const char* name) const", [](S& s) { return s.getDouble("b"); });
    rows(
        "KEL_String* getString(const char* name) const",
        [](S& s) { return owned(s.getString("a")); }, "a new one")
        .answersNeutral();
    rows(
        "KEL_String* getString(const char* name) const",
        [](S& s) { return owned(s.getString("b")); }, "the variable itself");
    rows("JHashCode& getguid(const char* name, JHashCode& out) const", [](S& s) {
        JHashCode out;
        return JHashCode(s.getguid("a", out));
    });
    rows("bool containsVar(const char* name) const", [](S& s) { return s.containsVar("n"); });
    rows("StringEnumeration* getVarNames() const", [](S& s) { return owned(s.getVarNames()); });
    rows("int32_t getCount() const", [](S& s) { return s.getCount(); });
}

void addWalking(Rows<KELInterface_Struct_V2>& rows) {
    using W = KELInterface_Struct_V2;
    rows("bool nextVar(KELVarCursor& cursor) const", [](W& s) {
        KELVarCursor at;
        return s.nextVar(at) ? at.value : nullptr;
    });
    rows("bool nextVarAfter(KELVarCursor& cursor, const char* name) const", [](W& s) {
        KELVarCursor at;
        return s.nextVarAfter(at, "a") ? at.value : nullptr;
    });
    rows("bool findVar(KELVarCursor& cursor, const char* name) const", [](W& s) {
        KELVarCursor at;
        return s.findVar(at, "b") ? at.value : nullptr;
    });
    rows("void reserveVars(int32_t count)", [](W& s) { s.reserveVars(100); }).reads();
}

void addPutting(Rows<S>& rows) {
    for (const char* name : {longText, "b", "n"}) {
        const char* situation = name == longText ? "a new name"
                                : *name == 'b'   ? "in place of a value"
                                                 : "in place of null";
        rows(
            "void putString(const char* name, const char* text)",
            [name](S& s) { s.putString(name, longText); }, situation);
        rows(
            "void putguid(const char* name, const JHashCode& value)",
            [name](S& s) { s.putguid(name, JHashCode(9)); }, situation);
        rows(
            "void putDouble(const char* name, float value)",
            [name](S& s) { s.putDouble(name, 77.5F); }, situation);
        rows(
            "void putDouble(const char* name, double value)",
            [name](S& s) { s.putDouble(name, 77.5); }, situation);
        rows(
            "void putInt(const char* name, long value)", [name](S& s) { s.putInt(name, long{77}); },
            situation);
        rows(
            "void putInt(const char* name, unsigned long value)",
            [name](S& s) { s.putInt(name, 77UL); }, situation);
        rows(
            "void putInt(const char* name, int32_t value)",
            [name](S& s) { s.putInt(name, int32_t{77}); }, situation);
        rows(
            "void putBoolean(const char* name, bool value)",
            [name](S& s) { s.putBoolean(name, true); }, situation);
    }
}

void addAdding(Rows<S>& rows, KELKind kind) {
    rows(
        "void addVar(const char* name, KEL* value)",
        [](S& s, const Document& d) { s.addVar(longText, d["new"]); }, "a new name");
    if (kind != KELKind_MetaKel) { // MetaKel's addVar neither replaces nor stores null
        rows(
            "void addVar(const char* name, KEL* value)",
            [](S& s, const Document& d) { s.addVar("i", d["new"]); }, "in place of a shared value");
        rows(
            "void addVar(const char* name, KEL* value)",
            [](S& s, const Document&) { s.addVar(longText, nullptr); }, "null");
    }
    rows("int32_t addVars(KEL_Struct* other)",
         [](S& s, const Document& d) { return s.addVars(&d.as<S>("source")); });
    rows("void removeVar(const char* name)", [](S& s) { s.removeVar("b"); });
    rows(
        "void removeVar(const char* name)", [](S& s) { s.removeVar("i"); }, "a shared value");
    rows(
        "void removeVar(const char* name)", [](S& s) { s.removeVar("n"); }, "null");
    rows("void setVar(const char* name, KEL* value)",
         [](S& s, const Document& d) { s.setVar("i", d["new"]); });
    rows(
        "void setVar(const char* name, KEL* value)",
        [](S& s, const Document& d) { s.setVar("n", d["new"]); }, "in place of null");
    rows("void removeAllVars()", [](S& s) { s.removeAllVars(); });
    rows("void renameVar(const char* oldName, const char* newName)",
         [](S& s) { s.renameVar("b", longText); });
    rows(
        "void renameVar(const char* oldName, const char* newName)",
        [](S& s) { s.renameVar("n", longText); }, "null");
}

void addConverting(Rows<S>& rows) {
    for (const char* name : {"a", "b", "n"}) {
        const char* situation = *name == 'a'   ? "into an Int"
                                : *name == 'b' ? "into a String"
                                               : "into null";
        rows(
            "void setString(const char* name, const char* text)",
            [name](S& s) { s.setString(name, "7700000000000000000000000000000000000000"); },
            situation);
        rows(
            "void setguid(const char* name, const JHashCode& value)",
            [name](S& s) { s.setguid(name, JHashCode(9)); }, situation);
        rows(
            "void setDouble(const char* name, float value)",
            [name](S& s) { s.setDouble(name, 77.5F); }, situation);
        rows(
            "void setDouble(const char* name, double value)",
            [name](S& s) { s.setDouble(name, 77.5); }, situation);
        rows(
            "void setInt(const char* name, long value)", [name](S& s) { s.setInt(name, long{77}); },
            situation);
        rows(
            "void setInt(const char* name, unsigned long value)",
            [name](S& s) { s.setInt(name, 77UL); }, situation);
        rows(
            "void setInt(const char* name, int32_t value)",
            [name](S& s) { s.setInt(name, int32_t{77}); }, situation);
        rows(
            "void setBoolean(const char* name, bool value)",
            [name](S& s) { s.setBoolean(name, true); }, situation);
        rows(
            "void setVarValue(const char* name, KEL* value)",
            [name](S& s, const Document& d) { s.setVarValue(name, d["number"]); }, situation);
    }
    rows(
        "void setVarValue(const char* name, KEL* value)",
        [](S& s, const Document& d) { s.setVarValue("i", asArray(d["holder"]).getVar(1)); },
        "a container itself");
}

} // namespace

void addStructRows(Table& table) {
    for (const KELKind kind : structKinds) {
        const auto make = [kind] { return structDocument(kind); };
        const std::string situation = "kind " + std::to_string(kind);
        Rows<S> rows(table, "KELInterface_Struct_V1", make, situation);
        addReading(rows);
        addPutting(rows);
        addAdding(rows, kind);
        addConverting(rows);
        Rows<KELInterface_Struct_V2> walking(table, "KELInterface_Struct_V2", make, situation);
        addWalking(walking);
    }
}

} // namespace kel::test
