// The operations of selectors of either kind.
#include "atomicity/Documents.h"

namespace kel::test {

namespace {

KEL_IndexList* otherList(const Document& d) {
    return &d.as<KEL_IndexList>("otherList");
}

void addOne(Table& table) {
    using S = KEL_Selector;
    Rows<S> rows(table, "KELInterface_Selector_V1",
                 [] { return selectorDocument(KELKind_Selector); });
    rows("bool selectKey(KEL* key)",
         [](S& s, const Document& d) { return s.selectKey(keyAt(d, 2)); });
    rows(
        "bool selectKey(KEL* key)", [](S& s) { return s.selectKey(nullptr); }, "null");
    rows("bool selectItem(KEL* item)",
         [](S& s, const Document& d) { return s.selectItem(itemAt(d, 2)); });
    rows("bool clearSelection()", [](S& s) { return s.clearSelection(); });
    rows("bool deselect()", [](S& s) { return s.deselect(); });
    rows("KEL* getSelectedKey()", [](S& s) { return s.getSelectedKey(); }).reads();
    rows("KEL* getSelectedKey() const", [](S& s) { return std::as_const(s).getSelectedKey(); });
    rows("KEL* getSelectedItem() const", [](S& s) { return s.getSelectedItem(); });
    rows("KEL* getSelectedItemByKeyValue() const",
         [](S& s) { return s.getSelectedItemByKeyValue(); });
    rows("bool isSelectedKey(const KEL* key) const",
         [](S& s, const Document& d) { return s.isSelectedKey(keyAt(d, 1)); });
    rows("bool isSelectedItem(const KEL* item) const",
         [](S& s, const Document& d) { return s.isSelectedItem(itemAt(d, 1)); });
    rows("KEL_IndexList* getList() const", [](S& s) { return s.getList(); });
    rows("void setList(KEL_IndexList* list)",
         [](S& s, const Document& d) { s.setList(otherList(d)); });
}

void addMany(Table& table) {
    using S = KEL_MultiSelector;
    Rows<S> rows(table, "KELInterface_MultiSelector_V1",
                 [] { return selectorDocument(KELKind_MultiSelector); });
    rows("bool selectKey(KEL* key)",
         [](S& s, const Document& d) { return s.selectKey(keyAt(d, 5)); });
    rows("bool selectItem(KEL* item)",
         [](S& s, const Document& d) { return s.selectItem(itemAt(d, 5)); });
    rows("bool deselectKey(KEL* key)",
         [](S& s, const Document& d) { return s.deselectKey(keyAt(d, 1)); });
    rows("bool deselectItem(KEL* item)",
         [](S& s, const Document& d) { return s.deselectItem(itemAt(d, 1)); });
    rows("void clearSelection()", [](S& s) { s.clearSelection(); });
    rows("void deselectAll()", [](S& s) { s.deselectAll(); });
    rows("KEL_Array* getSelectedKeys() const", [](S& s) { return s.getSelectedKeys(); });
    rows("KEL_Array* getSelectedItems() const", [](S& s) { return owned(s.getSelectedItems()); });
    rows("bool isKeySelected(const KEL* key) const",
         [](S& s, const Document& d) { return s.isKeySelected(keyAt(d, 1)); });
    rows("bool isItemSelected(const KEL* item) const",
         [](S& s, const Document& d) { return s.isItemSelected(itemAt(d, 1)); });
    rows("KEL_IndexList* getList() const", [](S& s) { return s.getList(); });
    rows("void setList(KEL_IndexList* list)",
         [](S& s, const Document& d) { s.setList(otherList(d)); });
}

} // namespace

void addSelectorRows(Table& table) {
    addOne(table);
    addMany(table);
}

} // namespace kel::test
