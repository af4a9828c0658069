// The operations that every value has, for every kind.
#include "atomicity/Documents.h"
#include "support/Watcher.h"

#include <kel/kel.h>

namespace kel::test {

namespace {

/// Observers that do nothing, for the operations that add and remove observers.
class Silent : public KEL_Observer {
public:
    virtual ~Silent() = default;
    void update(KEL*) override {}
};
class SilentRuntime : public JObserver {
public:
    void update(JObservable*) override {}
};

Silent& silent() {
    static Silent observer;
    return observer;
}
SilentRuntime& silentRuntime() {
    static const JPointer<SilentRuntime> observer(new SilentRuntime());
    return *observer;
}

Document observedDocument(KELKind kind) {
    Document document = kindDocument(kind);
    document.subject<KEL_Impl>().addObserver(&silent());
    document.subject<KEL_Impl>().addObserver(&silentRuntime());
    return document;
}

void addCounting(Table& table, KELKind kind, const std::string& name) {
    Rows<KEL_Impl> rows(
        table, "KELInterface_RefCount_V1", [kind] { return kindDocument(kind); }, name);
    rows("void addRef()", [](KEL_Impl& v, const Document& d) {
        v.addRef();
        d.owe(&v);
    });
    rows("int32_t release()", [](KEL_Impl& v) {
        v.addRef();
        return v.release();
    }).reads();
    rows("JHashCode& getHashCode(JHashCode& out) const", [](KEL_Impl& v) {
        JHashCode out;
        v.getHashCode(out);
    });
    rows("int32_t getType() const", [](KEL_Impl& v) { return std::as_const(v).getType(); });
    rows("int32_t getRefCount() const", [](KEL_Impl& v) { return v.getRefCount(); });
}

void addCasting(Table& table, KELKind kind, const std::string& name) {
    Rows<KEL_Impl> rows(
        table, "KELInterface_Casting_V1", [kind] { return kindDocument(kind); }, name);
    rows("bool toBoolean() const", [](KEL_Impl& v) { return v.toBoolean(); });
    rows("int32_t toInt() const", [](KEL_Impl& v) { return v.toInt(); });
    rows("int8_t toSignedChar() const", [](KEL_Impl& v) { return v.toSignedChar(); });
    rows("uint8_t toUnsignedChar() const", [](KEL_Impl& v) { return v.toUnsignedChar(); });
    rows("int16_t toShort() const", [](KEL_Impl& v) { return v.toShort(); });
    rows("uint16_t toUnsignedShort() const", [](KEL_Impl& v) { return v.toUnsignedShort(); });
    rows("uint32_t toUnsignedInt() const", [](KEL_Impl& v) { return v.toUnsignedInt(); });
    rows("long toLong() const", [](KEL_Impl& v) { return v.toLong(); });
    rows("unsigned long toUnsignedLong() const", [](KEL_Impl& v) { return v.toUnsignedLong(); });
    rows("int64_t toInt64() const", [](KEL_Impl& v) { return v.toInt64(); });
    rows("uint64_t toUnsignedInt64() const", [](KEL_Impl& v) { return v.toUnsignedInt64(); });
    rows("double toDouble() const", [](KEL_Impl& v) { return v.toDouble(); });
    rows("float toFloat() const", [](KEL_Impl& v) { return v.toFloat(); });
    rows("long double toLongDouble() const", [](KEL_Impl& v) { return v.toLongDouble(); });
    rows("const char* toString() const", [](KEL_Impl& v) { return v.toString(); }).answersNeutral();
    rows("JHashCode& toGuid(JHashCode& out) const", [](KEL_Impl& v) {
        JHashCode out;
        return JHashCode(v.toGuid(out));
    });
    Rows<KEL_Impl> formatted(
        table, "KELInterface_Casting_V1",
        [kind] {
            Document document = kindDocument(kind);
            document.subject<KEL_Impl>().toString();
            return document;
        },
        name);
    formatted("void freeString()", [](KEL_Impl& v) { v.freeString(); }).reads();
}

void addValue(Table& table, KELKind kind, const std::string& name) {
    Rows<KEL_Impl> rows(
        table, "KELInterface_V1", [kind] { return kindDocument(kind); }, name);
    rows("KEL* copy() const", [](KEL_Impl& v) { return owned(v.copy()); });
    rows("void assign(const KEL* value)",
         [](KEL_Impl& v, const Document& d) { v.assign(d["other"]); });
    rows(
        "void assign(const KEL* value)", [](KEL_Impl& v) { v.assign(&v); }, "itself");
    rows("bool equals(const KEL* other) const",
         [](KEL_Impl& v, const Document& d) { return v.equals(static_cast<KEL*>(d["equal"])); });
    rows("bool equals(const KEL* a, const KEL* b) const", [](KEL_Impl& v, const Document& d) {
        return v.equals(static_cast<KEL*>(d["equal"]), d["other"]);
    });
    rows("void assignConverted(const KEL* value, bool notify)",
         [](KEL_Impl& v, const Document& d) { v.assignConverted(d["other"], true); });
    rows(
        "void assignConverted(const KEL* value, bool notify)",
        [](KEL_Impl& v, const Document& d) { v.assignConverted(d["other"], false); }, "quietly");
    if (isScalar(kind)) {
        rows(
            "void assignConverted(const KEL* value, bool notify)",
            [](KEL_Impl& v, const Document& d) { v.assignConverted(d["number"], true); },
            "from an Int");
        rows(
            "void assignConverted(const KEL* value, bool notify)",
            [](KEL_Impl& v, const Document& d) { v.assignConverted(d["new"], true); },
            "from a String");
    }
    rows("bool equalsValue(const KEL* other) const",
         [](KEL_Impl& v, const Document& d) { return v.equalsValue(d["equal"]); });
    rows("int32_t getVersion() const", [](KEL_Impl& v) { return v.getVersion(); });
}

void addObserving(Table& table, KELKind kind, const std::string& name) {
    const char* owner = "KELInterface_Observable_V1";
    Rows<KEL_Impl> rows(
        table, owner, [kind] { return kindDocument(kind); }, name);
    rows("void addObserver(JObserver* observer)",
         [](KEL_Impl& v) { v.addObserver(&silentRuntime()); });
    rows("void addObserver(KEL_Observer* observer)", [](KEL_Impl& v) { v.addObserver(&silent()); });
    Rows<KEL_Impl> observed(
        table, owner, [kind] { return observedDocument(kind); }, name);
    observed("void removeObserver(KEL_Observer* observer)",
             [](KEL_Impl& v) { v.removeObserver(&silent()); });
    observed("void removeObserver(JObserver* observer)",
             [](KEL_Impl& v) { v.removeObserver(&silentRuntime()); });
}

} // namespace

void addEveryKindRows(Table& table) {
    for (const KELKind kind : everyKind) {
        const std::string name = "kind " + std::to_string(kind);
        addCounting(table, kind, name);
        addCasting(table, kind, name);
        addValue(table, kind, name);
        addObserving(table, kind, name);
    }
}

} // namespace kel::test
