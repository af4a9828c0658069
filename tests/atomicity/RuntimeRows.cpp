// Strings, pointers, exceptions and lists of names: the objects that hosts hold besides values.
#include "atomicity/Documents.h"
#include "values/KELException_Impl.h"
#include "values/StringEnumeration_Impl.h"

namespace kel::test {

namespace {

/// Makes a document around one counted object. `describe` returns its contents.
template <class T, class Describe>
Document around(const JPointer<T>& object, const Describe& describe) {
    Document document;
    const std::shared_ptr<void> held(object.get(), [object](void*) {});
    document.addOther(held, [object, describe] {
        return describe(*object) + ", " + std::to_string(referencesOf(*object)) + " references";
    });
    return document;
}

Document stringDocument() {
    return around(JPointer<JString>(new JString("some text")),
                  [](JString& s) { return std::string(s.chars()); });
}

/// Makes a list of four names, one more than fits without growing, with the cursor at the second.
Document namesDocument() {
    const JPointer<StringEnumeration_Impl> names(new StringEnumeration_Impl());
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        names->add(name);
    }
    static_cast<StringEnumeration&>(*names).nextElement();
    return around(names, [](StringEnumeration_Impl& list) {
        std::string text;
        for (const char* name : {"a", "b", "c", "d", "e", "x", "y", longText}) {
            text += list.contains(name) ? name : "-";
        }
        return text + std::to_string(list.getCount()) + (list.hasMoreElements() ? " more" : " end");
    });
}

Document exceptionDocument() {
    return around(JPointer<KELException_Impl>(new KELException_Impl("what went wrong")),
                  [](KELException_Impl& failure) { return std::string(failure.getMessageText()); });
}

void addStrings(Table& table) {
    Rows<JString> rows(table, "JString", stringDocument);
    rows("bool equals(const char* text) const", [](JString& s) { return s.equals("some text"); });
    rows("uint32_t length() const", [](JString& s) { return s.length(); });
    rows("JString* substring(uint32_t begin, uint32_t end) const", [](JString& s) {
        return owned(s.substring(1, 3));
    }).answersNeutralOr(Face::Runtime);
    rows("JString* substring(uint32_t begin) const", [](JString& s) {
        return owned(s.substring(1));
    }).answersNeutralOr(Face::Runtime);
    rows("void append(char character)", [](JString& s) { s.append('!'); });
    rows("void append(const char* text)", [](JString& s) { s.append(" and more"); });
    rows("void append(const JString& other)", [](JString& s) { s.append(s); });
    rows("char getChar(int32_t index) const", [](JString& s) { return s.getChar(1); });
    Rows<JString> objects(table, "JObject", stringDocument);
    objects("bool equals(const JObject* other) const",
            [](JString& s) { return static_cast<JObject&>(s).equals(&s); });
    objects("JHashCode& getHashCode(JHashCode& out) const", [](JString& s) {
        JHashCode out;
        s.getHashCode(out);
    });
    objects("int32_t getRefCount() const", [](JString& s) { return s.getRefCount() > 0; });
}

void addPointers(Table& table) {
    Rows<JString> rows(table, "JPointer", stringDocument);
    using P = JPointer<JString>;
    rows("void clear()", [](JString& s) { P::share(&s).clear(); }).reads();
    rows("T* detach()", [](JString& s) { return owned(P::share(&s).detach()); }).reads();
    rows("bool isNull()", [](JString& s) { return P::share(&s).isNull(); }).reads();
    rows("bool isNull() const",
         [](JString& s) { return static_cast<const P&>(P::share(&s)).isNull(); });
    rows("bool isValid() const", [](JString& s) { return P::share(&s).isValid(); });
    rows("JPointer& operator=(const JPointer& other)", [](JString& s) {
        const P first = P::share(&s);
        P second;
        second = first;
    }).reads();
    rows("JPointer& operator=(T* target)", [](JString& s) {
        P pointer;
        pointer = P::share(&s).detach();
    }).reads();
    rows("T* get() const", [](JString& s) { return P::share(&s).get(); });
}

void addNames(Table& table) {
    using E = StringEnumeration_Impl;
    Rows<E> rows(table, "StringEnumerationInterface_V1", namesDocument);
    const auto as = [](E& e) -> StringEnumeration& { return e; };
    rows("bool hasMoreElements() const", [](E& e) { return e.hasMoreElements(); });
    rows("const char* nextElement()", [as](E& e) { return as(e).nextElement(); }).reads();
    rows("int32_t getCount() const", [](E& e) { return e.getCount(); });
    rows("void reset()", [](E& e) { e.reset(); }).reads();
    rows("bool contains(const char* text) const", [](E& e) { return e.contains("c"); });
    rows("void add(const char* text)", [](E& e) { e.add(longText); });
    rows("void remove(const char* text)", [](E& e) { e.remove("c"); });
    rows("void addRef()", [](E& e) {
        e.addRef();
        e.release();
    }).reads();
    rows("int32_t release()", [](E& e) {
        e.addRef();
        return e.release() > 0;
    }).reads();
    rows("JHashCode& getHashCode(JHashCode& out) const", [as](E& e) {
        JHashCode out;
        as(e).getHashCode(out);
    });
    rows("int32_t getRefCount() const", [as](E& e) { return as(e).getRefCount(); });

    static const auto makeMore = [] {
        const JPointer<E> more(new E());
        for (const char* name : {"x", "b", "y"}) {
            more->add(name);
        }
        return more;
    };
    Rows<E> merged(table, "StringEnumerationInterface_V1", [] {
        Document document = namesDocument();
        const JPointer<E> more = makeMore();
        document.addOther(std::shared_ptr<void>(more.get(), [more](void*) {}),
                          [more] { return std::string(more->hasMoreElements() ? "more" : "end"); });
        return document;
    });
    merged("void addAll(StringEnumeration* other)",
           [](E& e, const Document& d) { e.addAll(&d.other<E>(1)); });
}

void addExceptions(Table& table) {
    using E = KELException_Impl;
    Rows<E> rows(table, "KELInterface_Exception_V1", exceptionDocument);
    const auto as = [](E& e) -> KELException& { return e; };
    rows("const char* getMessage()", [as](E& e) { return as(e).getMessage(); }).reads();
    rows("const char* getMessageText() const", [](E& e) { return e.getMessageText(); });
    rows("void addRef()", [](E& e) {
        e.addRef();
        e.release();
    }).reads();
    rows("int32_t release()", [](E& e) {
        e.addRef();
        return e.release() > 0;
    }).reads();
    rows("int32_t getRefCount() const", [](E& e) { return e.getRefCount(); });
    Rows<E> runtime(table, "JException", exceptionDocument);
    runtime("JString* getMessage() const",
            [](E& e) { return owned(std::as_const(e).JException::getMessage()); });
    runtime("JString* getMessageString() const", [](E& e) { return owned(e.getMessageString()); });
}

} // namespace

void addRuntimeRows(Table& table) {
    addStrings(table);
    addPointers(table);
    addNames(table);
    addExceptions(table);
}

} // namespace kel::test
