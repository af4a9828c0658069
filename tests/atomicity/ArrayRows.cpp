// The operations of arrays.
#include "atomicity/Documents.h"

namespace kel::test {

namespace {

using A = KEL_Array;

void addReading(Rows<A>& rows) {
    rows("KEL* getVar(int32_t index)", [](A& a) { return a.getVar(0); }).reads();
    rows("KEL* getVar(int32_t index) const", [](A& a) { return std::as_const(a).getVar(0); });
    rows("bool getBoolean(int32_t index) const", [](A& a) { return a.getBoolean(0); });
    rows("int32_t getInt(int32_t index) const", [](A& a) { return a.getInt(4); });
    rows("double getDouble(int32_t index) const", [](A& a) { return a.getDouble(1); });
    rows(
        "KEL_String* getString(int32_t index) const", [](A& a) { return owned(a.getString(0)); },
        "a new one")
        .answersNeutral();
    rows(
        "KEL_String* getString(int32_t index) const", [](A& a) { return owned(a.getString(1)); },
        "the element itself");
    rows("JHashCode& getguid(int32_t index, JHashCode& out) const", [](A& a) {
        JHashCode out;
        return JHashCode(a.getguid(0, out));
    });
    rows("bool containsVar(const KEL* value) const",
         [](A& a, const Document& d) { return a.containsVar(d["inner"]); });
    rows("int32_t indexOfVar(const KEL* value) const",
         [](A& a, const Document& d) { return a.indexOfVar(d["inner"]); });
    rows("int32_t getCount() const", [](A& a) { return a.getCount(); });
}

/// Adds setters that convert a value into the type of an element: an Int, a String and a shared
/// Double.
void addConverting(Rows<A>& rows) {
    rows("void setString(int32_t index, const char* text)", [](A& a) { a.setString(0, "77"); });
    rows(
        "void setString(int32_t index, const char* text)", [](A& a) { a.setString(1, longText); },
        "into a String");
    rows("void setguid(int32_t index, const JHashCode& value)",
         [](A& a) { a.setguid(0, JHashCode(9)); });
    rows(
        "void setguid(int32_t index, const JHashCode& value)",
        [](A& a) { a.setguid(1, JHashCode(9)); }, "into a String");
    rows("void setDouble(int32_t index, float value)", [](A& a) { a.setDouble(1, 77.5F); });
    rows("void setDouble(int32_t index, double value)", [](A& a) { a.setDouble(1, 77.5); });
    rows("void setInt(int32_t index, long value)", [](A& a) { a.setInt(1, long{77}); });
    rows("void setInt(int32_t index, unsigned long value)", [](A& a) { a.setInt(1, 77UL); });
    rows("void setInt(int32_t index, int32_t value)", [](A& a) { a.setInt(1, int32_t{77}); });
    rows(
        "void setInt(int32_t index, int32_t value)", [](A& a) { a.setInt(4, int32_t{77}); },
        "into a Double");
    rows("void setBoolean(int32_t index, bool value)", [](A& a) { a.setBoolean(1, true); });
    rows("void setVarValue(int32_t index, const KEL* value)",
         [](A& a, const Document& d) { a.setVarValue(1, d["number"]); });
    rows(
        "void setVarValue(int32_t index, const KEL* value)",
        [](A& a, const Document& d) { a.setVarValue(2, d["source"]); }, "a container");
}

void addAdding(Rows<A>& rows) {
    rows("int32_t addString(const char* text)", [](A& a) { return a.addString(longText); });
    rows("int32_t addguid(const JHashCode& value)", [](A& a) { return a.addguid(JHashCode(9)); });
    rows("int32_t addDouble(float value)", [](A& a) { return a.addDouble(77.5F); });
    rows("int32_t addDouble(double value)", [](A& a) { return a.addDouble(77.5); });
    rows("int32_t addInt(long value)", [](A& a) { return a.addInt(long{77}); });
    rows("int32_t addInt(unsigned long value)", [](A& a) { return a.addInt(77UL); });
    rows("int32_t addInt(int32_t value)", [](A& a) { return a.addInt(int32_t{77}); });
    rows("int32_t addBoolean(bool value)", [](A& a) { return a.addBoolean(true); });
    rows("int32_t addVar(KEL* value)", [](A& a, const Document& d) { return a.addVar(d["new"]); });
    rows(
        "int32_t addVar(KEL* value)", [](A& a, const Document& d) { return a.addVar(d["inner"]); },
        "an element again");
    rows("int32_t addVars(KEL_Array* other)",
         [](A& a, const Document& d) { return a.addVars(&d.as<A>("source")); });
    rows("void insertVar(KEL* value, int32_t index)",
         [](A& a, const Document& d) { a.insertVar(d["new"], 1); });
}

void addReplacing(Rows<A>& rows) {
    rows("void setVar(KEL* value, int32_t index)",
         [](A& a, const Document& d) { a.setVar(d["new"], 2); });
    rows("void swapVars(int32_t a, int32_t b)", [](A& a) { a.swapVars(0, 3); });
    rows("void removeVar(int32_t index)", [](A& a) { a.removeVar(1); });
    rows(
        "void removeVar(int32_t index)", [](A& a) { a.removeVar(2); }, "a shared element");
    rows("void removeAllVars()", [](A& a) { a.removeAllVars(); });
}

} // namespace

void addArrayRows(Table& table) {
    Rows<A> rows(table, "KELInterface_Array_V1", arrayDocument);
    addReading(rows);
    addConverting(rows);
    addAdding(rows);
    addReplacing(rows);
}

} // namespace kel::test
