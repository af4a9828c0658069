// The operations of variable descriptors.
#include "atomicity/Documents.h"

namespace kel::test {

namespace {

using V = MetaKelVarDescriptor;
const char* const descriptorInterface = "MetaKelVarDescriptorInterface_V1";

void addRange(Rows<V>& rows) {
    rows("bool isRanged() const", [](V& v) { return v.isRanged(); });
    rows("bool isEnumerated() const", [](V& v) { return v.isEnumerated(); });
    rows("bool isValid(const KEL* value) const",
         [](V& v, const Document& d) { return v.isValid(d["half"]); });
    rows("void setRange(KEL* min, KEL* max)",
         [](V& v, const Document& d) { v.setRange(d["low"], d["high"]); });
    rows(
        "void setRange(KEL* min, KEL* max)", [](V& v) { v.setRange(v.getMax(), v.getMin()); },
        "the bounds exchanged");
    rows("void setRange(double min, double max)", [](V& v) { v.setRange(-2.0, 2.0); });
    rows("void setRange(int32_t min, int32_t max)",
         [](V& v) { v.setRange(int32_t{-2}, int32_t{2}); });
    rows("KEL* getMin() const", [](V& v) { return v.getMin(); });
    rows("KEL* getMax() const", [](V& v) { return v.getMax(); });
    rows("bool inRange(double value) const", [](V& v) { return v.inRange(0.5); });
    rows("bool inRange(int32_t value) const", [](V& v) { return v.inRange(int32_t{1}); });
    rows("bool inRange(const KEL* value) const",
         [](V& v, const Document& d) { return v.inRange(d["half"]); });
    rows("void enumerationFromRange(KEL* extra)",
         [](V& v, const Document& d) { v.enumerationFromRange(d["half"]); });
    rows(
        "void enumerationFromRange(KEL* extra)", [](V& v) { v.enumerationFromRange(nullptr); },
        "no extra value");
}

void addEnumeration(Rows<V>& rows) {
    rows(
        "bool isValid(const KEL* value) const",
        [](V& v, const Document& d) { return v.isValid(d["half"]); }, "enumerated");
    rows("KEL_Array* getEnum() const", [](V& v) { return v.getEnum(); });
    rows("bool inEnum(bool value) const", [](V& v) { return v.inEnum(true); });
    rows("bool inEnum(const char* text) const", [](V& v) { return v.inEnum("two"); });
    rows("bool inEnum(double value) const", [](V& v) { return v.inEnum(1.5); });
    rows("bool inEnum(int32_t value) const", [](V& v) { return v.inEnum(int32_t{1}); });
    rows("bool inEnum(const KEL* value) const",
         [](V& v, const Document& d) { return v.inEnum(d["half"]); });
    rows("void addEnumValue(bool value)", [](V& v) { v.addEnumValue(true); });
    rows("void addEnumValue(const char* text)", [](V& v) { v.addEnumValue(longText); });
    rows("void addEnumValue(double value)", [](V& v) { v.addEnumValue(77.5); });
    rows("void addEnumValue(int32_t value)", [](V& v) { v.addEnumValue(int32_t{77}); });
    rows("void addEnumValue(KEL* value)",
         [](V& v, const Document& d) { v.addEnumValue(d["new"]); });
    rows("void removeEnumValue(const char* text)", [](V& v) { v.removeEnumValue("two"); });
    rows(
        "void removeEnumValue(double value)", [](V& v) { v.removeEnumValue(0.5); },
        "two that are equal");
    rows("void removeEnumValue(int32_t value)", [](V& v) { v.removeEnumValue(int32_t{1}); });
    rows(
        "void removeEnumValue(const KEL* value)",
        [](V& v, const Document& d) { v.removeEnumValue(d["half"]); }, "two that are equal");
    rows("void rangeFromEnumeration()", [](V& v) { v.rangeFromEnumeration(); });
}

/// Makes an enumerated Double without any allowed value.
Document emptyEnumerationDocument() {
    Document document;
    return std::move(document.add("descriptor", enumOf(KELKind_Double, arrayOf())));
}

/// Makes a descriptor of one of several arrays, because comparing them needs memory. Two that are
/// not adjacent are equal to "equal".
Document containerEnumerationDocument() {
    Document document;
    document
        .add("descriptor", enumOf(KELKind_Array,
                                  arrayOf(arrayOf(intOf(0)), arrayOf(intOf(1)), arrayOf(intOf(0)))))
        .add("equal", arrayOf(intOf(0)));
    return document;
}

void addContainerEnumeration(Rows<V>& rows) {
    rows("bool isValid(const KEL* value) const",
         [](V& v, const Document& d) { return v.isValid(d["equal"]); });
    rows("bool inEnum(const KEL* value) const",
         [](V& v, const Document& d) { return v.inEnum(d["equal"]); });
    rows("void removeEnumValue(const KEL* value)",
         [](V& v, const Document& d) { v.removeEnumValue(d["equal"]); });
}

void addTextEnumeration(Rows<V>& rows) {
    rows("void removeEnumValue(bool value)", [](V& v) { v.removeEnumValue(true); });
    rows("void addEnumerationList(KEL* value)", [](V& v, const Document& d) {
        v.addEnumerationList(d["new"]);
    }).reads();
    rows("void removeEnumerationList()", [](V& v) { v.removeEnumerationList(); });
}

void addDefault(Rows<V>& rows) {
    rows("bool hasDefault() const", [](V& v) { return v.hasDefault(); });
    rows("KEL* getDefault() const", [](V& v) { return v.getDefault(); });
    rows("void setDefault(bool value)", [](V& v) { v.setDefault(true); });
    rows("void setDefault(const char* text)", [](V& v) { v.setDefault(longText); });
    rows("void setDefault(double value)", [](V& v) { v.setDefault(77.5); });
    rows("void setDefault(int32_t value)", [](V& v) { v.setDefault(int32_t{77}); });
    rows("void setDefault(KEL* value)", [](V& v, const Document& d) { v.setDefault(d["new"]); });
    rows("void removeDefault()", [](V& v) { v.removeDefault(); });
}

void addAdornments(Rows<V>& rows) {
    rows("bool hasPreadorn() const", [](V& v) { return v.hasPreadorn(); });
    rows("const char* getPreadorn() const", [](V& v) { return v.getPreadorn(); });
    rows("void setPreadorn(const char* text)", [](V& v) { v.setPreadorn(longText); });
    rows("void setPreadorn(KEL* value)", [](V& v, const Document& d) { v.setPreadorn(d["new"]); });
    rows(
        "void setPreadorn(KEL* value)", [](V& v, const Document& d) { v.setPreadorn(d["number"]); },
        "a number");
    rows("void removePreadorn()", [](V& v) { v.removePreadorn(); });
    rows("bool hasPostadorn() const", [](V& v) { return v.hasPostadorn(); });
    rows("const char* getPostadorn() const", [](V& v) { return v.getPostadorn(); });
    rows("void setPostadorn(const char* text)", [](V& v) { v.setPostadorn(longText); });
    rows("void setPostadorn(KEL* value)",
         [](V& v, const Document& d) { v.setPostadorn(d["new"]); });
    rows(
        "void setPostadorn(KEL* value)",
        [](V& v, const Document& d) { v.setPostadorn(d["number"]); }, "a number");
    rows("void removePostadorn()", [](V& v) { v.removePostadorn(); });
}

/// Adds statements of a property, whether or not it was stated before.
void addStating(Rows<V>& rows) {
    rows("bool hasWrapped() const", [](V& v) { return v.hasWrapped(); });
    rows("bool getWrapped() const", [](V& v) { return v.getWrapped(); });
    rows("void setWrapped(bool value)", [](V& v) { v.setWrapped(false); });
    rows("void setWrapped(const KEL* value)",
         [](V& v, const Document& d) { v.setWrapped(d["truth"]); });
    rows("bool hasInterpolated() const", [](V& v) { return v.hasInterpolated(); });
    rows("bool getInterpolated() const", [](V& v) { return v.getInterpolated(); });
    rows("void setInterpolated(bool value)", [](V& v) { v.setInterpolated(false); });
    rows("void setInterpolated(const KEL* value)",
         [](V& v, const Document& d) { v.setInterpolated(d["truth"]); });
    rows("bool hasStepsize() const", [](V& v) { return v.hasStepsize(); });
    rows("double getStepsize() const", [](V& v) { return v.getStepsize(); });
    rows("void setStepsize(double value)", [](V& v) { v.setStepsize(0.25); });
    rows("void setStepsize(int32_t value)", [](V& v) { v.setStepsize(int32_t{2}); });
    rows(
        "void setStepsize(const KEL* value)",
        [](V& v, const Document& d) { v.setStepsize(d["half"]); }, "the step");
    rows("int32_t getVariableType() const", [](V& v) { return v.getVariableType(); });
    rows("void setType(int32_t kind)", [](V& v) { v.setType(KELKind_String); });
    rows("KEL_Struct* getStruct() const", [](V& v) { return v.getStruct(); });
}

void addRemovingStatements(Rows<V>& rows) {
    rows("void removeWrapped()", [](V& v) { v.removeWrapped(); });
    rows("void removeInterpolated()", [](V& v) { v.removeInterpolated(); });
    rows("void removeStepsize()", [](V& v) { v.removeStepsize(); });
}

} // namespace

void addDescriptorRows(Table& table) {
    Rows<V> ranged(table, descriptorInterface, rangedDocument);
    addRange(ranged);
    addDefault(ranged);
    addAdornments(ranged);
    addStating(ranged);
    addRemovingStatements(ranged);
    Rows<V> bare(table, descriptorInterface, bareDescriptorDocument, "nothing else stated");
    addStating(bare);
    Rows<V> enumerated(table, descriptorInterface, enumeratedDocument);
    addEnumeration(enumerated);
    Rows<V> empty(table, descriptorInterface, emptyEnumerationDocument, "no allowed value");
    empty("void rangeFromEnumeration()", [](V& v) { v.rangeFromEnumeration(); });
    Rows<V> containers(table, descriptorInterface, containerEnumerationDocument, "containers");
    addContainerEnumeration(containers);
    Rows<V> texts(table, descriptorInterface, textEnumerationDocument);
    addTextEnumeration(texts);
}

} // namespace kel::test
