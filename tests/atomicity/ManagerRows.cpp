// The operations of managers.
#include "atomicity/Documents.h"

namespace kel::test {

void addManagerRows(Table& table) {
    using Manager = KEL_Manager;
    Rows<Manager> rows(table, "KELInterface_Manager_V1", managerDocument);
    rows("bool containsKel(JHashCode hashCode) const",
         [](Manager& m) { return m.containsKel(codeOf(2)); });
    rows("void addKel(KEL* value)", [](Manager& m, const Document& d) { m.addKel(d["new"]); });
    rows(
        "void addKel(KEL* value)", [](Manager& m, const Document& d) { m.addKel(d["same"]); },
        "in place of one of its identity");
    rows("KEL* getKelBase(JHashCode hashCode) const",
         [](Manager& m) { return m.getKelBase(codeOf(2)); });
    rows("KEL* getKel(JHashCode hashCode) const", [](Manager& m) { return m.getKel(codeOf(2)); });
    rows("void removeKel(JHashCode hashCode)", [](Manager& m) { m.removeKel(codeOf(2)); });
    rows("void removeAllKels()", [](Manager& m) { m.removeAllKels(); });
    rows("int32_t size() const", [](Manager& m) { return m.size(); });
    for (const KELKind kind : everyKind) {
        const std::string name = "kind " + std::to_string(kind);
        rows(
            "KEL* createKel(int32_t kind)", [kind](Manager& m) { return owned(m.createKel(kind)); },
            name.c_str())
            .reads();
        rows(
            "KEL* createKel(int32_t kind, JHashCode hashCode)",
            [kind](Manager& m) { return owned(m.createKel(kind, codeOf(9))); }, name.c_str())
            .reads();
    }
    Rows<Manager> own(table, "KEL_Manager", managerDocument);
    own("KEL* getKelAt(int32_t index) const", [](Manager& m) { return m.getKelAt(1); });
}

} // namespace kel::test
