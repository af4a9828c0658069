// The operations of index lists.
#include "atomicity/Documents.h"

namespace kel::test {

namespace {

using L = KEL_IndexList;

void addLooking(Rows<L>& rows) {
    rows("KEL* getItem(const KEL* key)", [](L& l, const Document& d) {
        return l.getItem(keyAt(d, 2));
    }).reads();
    rows("KEL* getItem(const KEL* key) const",
         [](L& l, const Document& d) { return std::as_const(l).getItem(keyAt(d, 2)); });
    rows("KEL* getKey(const KEL* item)", [](L& l, const Document& d) {
        return l.getKey(itemAt(d, 2));
    }).reads();
    rows("KEL* getKey(const KEL* item) const",
         [](L& l, const Document& d) { return std::as_const(l).getKey(itemAt(d, 2)); });
    rows("bool containsKey(const KEL* key) const",
         [](L& l, const Document& d) { return l.containsKey(keyAt(d, 2)); });
    rows("bool containsItem(const KEL* item) const",
         [](L& l, const Document& d) { return l.containsItem(itemAt(d, 2)); });
    rows("int32_t indexOfKey(const KEL* key) const",
         [](L& l, const Document& d) { return l.indexOfKey(keyAt(d, 2)); });
    rows("int32_t indexOfItem(const KEL* item) const",
         [](L& l, const Document& d) { return l.indexOfItem(itemAt(d, 2)); });
    rows("KEL* getItemOfKeyValue(const KEL* keyValue)", [](L& l, const Document& d) {
        return l.getItemOfKeyValue(d["equal"]);
    }).reads();
    rows("KEL* getItemOfKeyValue(const KEL* keyValue) const",
         [](L& l, const Document& d) { return std::as_const(l).getItemOfKeyValue(d["equal"]); });
    rows("bool containsKeyValue(const KEL* keyValue) const",
         [](L& l, const Document& d) { return l.containsKeyValue(d["equal"]); });
    rows("int32_t indexOfKeyValue(const KEL* keyValue) const",
         [](L& l, const Document& d) { return l.indexOfKeyValue(d["equal"]); });
    rows("KEL* getItemOfKeyText(const char* text) const",
         [](L& l) { return l.getItemOfKeyText("m"); });
    rows("int32_t getCount() const", [](L& l) { return l.getCount(); });
    rows("KEL_Array* getKeys()", [](L& l) { return l.getKeys(); }).reads();
    rows("const KEL_Array* getKeys() const", [](L& l) { return std::as_const(l).getKeys(); });
    rows("KEL_Array* getItems()", [](L& l) { return l.getItems(); }).reads();
    rows("const KEL_Array* getItems() const", [](L& l) { return std::as_const(l).getItems(); });
    rows("KEL* getKeyAt(int32_t index) const", [](L& l) { return l.getKeyAt(1); });
    rows("KEL* getItemAt(int32_t index) const", [](L& l) { return l.getItemAt(1); });
}

void addRemoving(Rows<L>& rows) {
    rows("void removeKey(const KEL* key)",
         [](L& l, const Document& d) { l.removeKey(keyAt(d, 2)); });
    rows("void removeItem(const KEL* item)",
         [](L& l, const Document& d) { l.removeItem(itemAt(d, 2)); });
    rows("void removeKeyValue(const KEL* keyValue)",
         [](L& l, const Document& d) { l.removeKeyValue(d["equal"]); });
    rows("void removePair(int32_t index)", [](L& l) { l.removePair(1); });
    rows("void removeAllPairs()", [](L& l) { l.removeAllPairs(); });
    rows("void swapPairs(int32_t a, int32_t b)", [](L& l) { l.swapPairs(0, 3); });
}

void addReplacing(Rows<L>& rows) {
    rows("void setItemOfKey(const KEL* key, KEL* newItem)",
         [](L& l, const Document& d) { l.setItemOfKey(keyAt(d, 2), d["new"]); });
    rows("void setKeyOfItem(const KEL* item, KEL* newKey)",
         [](L& l, const Document& d) { l.setKeyOfItem(itemAt(d, 2), d["new"]); });
    rows("void setItemOfKeyValue(const KEL* keyValue, KEL* newItem)",
         [](L& l, const Document& d) { l.setItemOfKeyValue(d["equal"], d["new"]); });
    rows("void setItemAt(int32_t index, KEL* newItem)",
         [](L& l, const Document& d) { l.setItemAt(1, d["new"]); });
}

void addAddingKeys(Rows<L>& rows) {
    rows("int32_t addKeyString(const char* text, KEL* item)",
         [](L& l, const Document& d) { return l.addKeyString(longText, d["new"]); });
    rows("int32_t addKeyguid(const JHashCode& value, KEL* item)",
         [](L& l, const Document& d) { return l.addKeyguid(JHashCode(9), d["new"]); });
    rows("int32_t addKeyDouble(float value, KEL* item)",
         [](L& l, const Document& d) { return l.addKeyDouble(77.5F, d["new"]); });
    rows("int32_t addKeyDouble(double value, KEL* item)",
         [](L& l, const Document& d) { return l.addKeyDouble(77.5, d["new"]); });
    rows("int32_t addKeyInt(long value, KEL* item)",
         [](L& l, const Document& d) { return l.addKeyInt(long{77}, d["new"]); });
    rows("int32_t addKeyInt(unsigned long value, KEL* item)",
         [](L& l, const Document& d) { return l.addKeyInt(77UL, d["new"]); });
    rows("int32_t addKeyInt(int32_t value, KEL* item)",
         [](L& l, const Document& d) { return l.addKeyInt(int32_t{77}, d["new"]); });
    rows("int32_t addKeyBoolean(bool value, KEL* item)",
         [](L& l, const Document& d) { return l.addKeyBoolean(true, d["new"]); });
}

void addAddingItems(Rows<L>& rows) {
    rows("int32_t addItemString(KEL* key, const char* text)",
         [](L& l, const Document& d) { return l.addItemString(d["new"], longText); });
    rows("int32_t addItemguid(KEL* key, const JHashCode& value)",
         [](L& l, const Document& d) { return l.addItemguid(d["new"], JHashCode(9)); });
    rows("int32_t addItemDouble(KEL* key, float value)",
         [](L& l, const Document& d) { return l.addItemDouble(d["new"], 77.5F); });
    rows("int32_t addItemDouble(KEL* key, double value)",
         [](L& l, const Document& d) { return l.addItemDouble(d["new"], 77.5); });
    rows("int32_t addItemInt(KEL* key, long value)",
         [](L& l, const Document& d) { return l.addItemInt(d["new"], long{77}); });
    rows("int32_t addItemInt(KEL* key, unsigned long value)",
         [](L& l, const Document& d) { return l.addItemInt(d["new"], 77UL); });
    rows("int32_t addItemInt(KEL* key, int32_t value)",
         [](L& l, const Document& d) { return l.addItemInt(d["new"], int32_t{77}); });
    rows("int32_t addItemBoolean(KEL* key, bool value)",
         [](L& l, const Document& d) { return l.addItemBoolean(d["new"], true); });
}

void addAddingNamed(Rows<L>& rows) {
    rows("int32_t addNamedString(const char* key, const char* text)",
         [](L& l) { return l.addNamedString(longText, longText); });
    rows("int32_t addNamedguid(const char* key, const JHashCode& value)",
         [](L& l) { return l.addNamedguid(longText, JHashCode(9)); });
    rows("int32_t addNamedDouble(const char* key, float value)",
         [](L& l) { return l.addNamedDouble(longText, 77.5F); });
    rows("int32_t addNamedDouble(const char* key, double value)",
         [](L& l) { return l.addNamedDouble(longText, 77.5); });
    rows("int32_t addNamedInt(const char* key, long value)",
         [](L& l) { return l.addNamedInt(longText, long{77}); });
    rows("int32_t addNamedInt(const char* key, unsigned long value)",
         [](L& l) { return l.addNamedInt(longText, 77UL); });
    rows("int32_t addNamedInt(const char* key, int32_t value)",
         [](L& l) { return l.addNamedInt(longText, int32_t{77}); });
    rows("int32_t addNamedBoolean(const char* key, bool value)",
         [](L& l) { return l.addNamedBoolean(longText, true); });
    rows("int32_t addPair(KEL* key, KEL* item)",
         [](L& l, const Document& d) { return l.addPair(d["new"], d["number"]); });
    rows("void insertPair(KEL* key, KEL* item, int32_t index)",
         [](L& l, const Document& d) { l.insertPair(d["new"], d["number"], 1); });
    rows("int32_t addPairs(KEL_IndexList* other)",
         [](L& l, const Document& d) { return l.addPairs(&d.as<L>("source")); });
}

/// Adds setters on the list whose three String keys "k" are equal to `equal`. Each sets all three
/// texts.
void addSettingKeys(Rows<L>& texts) {
    texts("void setKeyString(const KEL* keyValue, const char* text)",
          [](L& l, const Document& d) { l.setKeyString(d["equal"], longText); });
    texts("void setKeyValue(const KEL* keyValue, const KEL* newValue)",
          [](L& l, const Document& d) { l.setKeyValue(d["equal"], d["new"]); });
    texts(
        "void setKeyValue(const KEL* keyValue, const KEL* newValue)",
        [](L& l, const Document& d) { l.setKeyValue(d["equal"], keyAt(d, 1)); },
        "the value of another key");
}

/// Makes a list of pairs whose keys at 0, 2 and 4 are equal to "equal".
Document keysDocument(const HeldValue& first, const HeldValue& second, const HeldValue& third,
                      HeldValue equal) {
    Document document;
    const HeldValue list = listOf(arrayOf(first, stringOf("k"), second, stringOf("m"), third),
                                  arrayOf(intOf(1), intOf(2), intOf(3), intOf(4), intOf(5)));
    list->addRef();
    document.add("list", HeldValue(list.get())).add("holder", arrayOf(first));
    document.add("equal", std::move(equal));
    return document;
}

void addSettingTypedKeys(Table& table) {
    const char* owner = "KELInterface_IndexList_V1";
    Rows<L> guids(table, owner, [] {
        return keysDocument(guidOf(codeOf(1)), guidOf(codeOf(1)), guidOf(codeOf(1)),
                            guidOf(codeOf(1)));
    });
    guids("void setKeyguid(const KEL* keyValue, const JHashCode& value)",
          [](L& l, const Document& d) { l.setKeyguid(d["equal"], JHashCode(9)); });
    Rows<L> doubles(table, owner, [] {
        return keysDocument(doubleOf(1.5), doubleOf(1.5), doubleOf(1.5), doubleOf(1.5));
    });
    doubles("void setKeyDouble(const KEL* keyValue, float value)",
            [](L& l, const Document& d) { l.setKeyDouble(d["equal"], 77.5F); });
    doubles("void setKeyDouble(const KEL* keyValue, double value)",
            [](L& l, const Document& d) { l.setKeyDouble(d["equal"], 77.5); });
    Rows<L> ints(table, owner, [] { return keysDocument(intOf(1), intOf(1), intOf(1), intOf(1)); });
    ints("void setKeyInt(const KEL* keyValue, long value)",
         [](L& l, const Document& d) { l.setKeyInt(d["equal"], long{77}); });
    ints("void setKeyInt(const KEL* keyValue, unsigned long value)",
         [](L& l, const Document& d) { l.setKeyInt(d["equal"], 77UL); });
    ints("void setKeyInt(const KEL* keyValue, int32_t value)",
         [](L& l, const Document& d) { l.setKeyInt(d["equal"], int32_t{77}); });
    Rows<L> booleans(table, owner, [] {
        return keysDocument(booleanOf(true), booleanOf(true), booleanOf(true), booleanOf(true));
    });
    booleans("void setKeyBoolean(const KEL* keyValue, bool value)",
             [](L& l, const Document& d) { l.setKeyBoolean(d["equal"], false); });
    Rows<L> containers(
        table, owner,
        [] {
            return keysDocument(arrayOf(intOf(1)), arrayOf(intOf(1)), arrayOf(intOf(1)),
                                arrayOf(intOf(1)));
        },
        "containers as keys");
    containers("void setKeyValue(const KEL* keyValue, const KEL* newValue)",
               [](L& l, const Document& d) { l.setKeyValue(d["equal"], d["holder"]); });
}

} // namespace

void addIndexListRows(Table& table) {
    Rows<L> rows(table, "KELInterface_IndexList_V1", indexListDocument);
    addLooking(rows);
    addRemoving(rows);
    addReplacing(rows);
    addAddingKeys(rows);
    addAddingItems(rows);
    addAddingNamed(rows);
    Rows<L> texts(table, "KELInterface_IndexList_V1", textKeysDocument, "String keys");
    addSettingKeys(texts);
    addRemoving(texts);
    addSettingTypedKeys(table);
    Rows<L> byText(table, "KEL_IndexList", textKeysDocument);
    byText("bool containsKeyText(const char* text) const",
           [](L& l) { return l.containsKeyText("m"); });
    byText("void setItemOfKeyText(const char* text, KEL* newItem)",
           [](L& l, const Document& d) { l.setItemOfKeyText("k", d["new"]); });
    byText("void removeKeyText(const char* text)", [](L& l) { l.removeKeyText("k"); });
}

} // namespace kel::test
