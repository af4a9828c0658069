#include "atomicity/Documents.h"

namespace kel::test {

namespace {

HeldValue share(const HeldValue& value) {
    value->addRef();
    return HeldValue(value.get());
}

/// Adds the values that many calls store.
void addNewValues(Document& document) {
    document.add("new", stringOf(longText)).add("number", intOf(77));
}

void addListValues(Document& document, const HeldValue& keys, const HeldValue& items,
                   HeldValue equalKey) {
    const HeldValue list = listOf(keys, items);
    const HeldValue source =
        listOf(arrayOf(at(keys, 0), intOf(101), intOf(102)), arrayOf(intOf(1), intOf(2), intOf(3)));
    document.add("list", share(list))
        .add("keys", share(keys))
        .add("items", share(items))
        .add("twin", listOf(keys, items))
        .add("source", share(source))
        .add("equal", std::move(equalKey))
        .add("unknown", stringOf("unknown"));
    addNewValues(document);
}

} // namespace

Document kindDocument(KELKind kind) {
    Document document;
    const HeldValue subject = sampleOf(kind);
    document.add("subject", share(subject))
        .add("holder", arrayOf(subject, subject))
        .add("other", sampleOf(kind, 2))
        .add("equal", equalTo(subject));
    addNewValues(document);
    return document;
}

Document arrayDocument() {
    Document document;
    const HeldValue number = intOf(1);
    const HeldValue inner = arrayOf(intOf(5));
    const HeldValue array = arrayOf(number, stringOf("two"), inner, inner, doubleOf(2.5));
    document.add("array", share(array))
        .add("holder", arrayOf(array, inner, number))
        .add("source", arrayOf(number, stringOf("new"), intOf(8)))
        .add("inner", share(inner));
    addNewValues(document);
    return document;
}

Document structDocument(KELKind kind) {
    Document document;
    const HeldValue number = intOf(1);
    const HeldValue text = stringOf("two");
    const HeldValue inner = arrayOf(intOf(5));
    HeldValue subject(kel::createValue(kind, nullptr));
    auto& variables = asStruct(subject);
    auto* forwarder = dynamic_cast<StructHolder*>(subject.get());
    detail::addVariables(forwarder == nullptr ? variables : forwarder->inner(), "a", number, "b",
                         text, "i", inner, "again", inner, "n", nullptr);
    document.add("struct", share(subject))
        .add("holder", arrayOf(subject, inner, number))
        .add("source", structOf("a", intOf(2), "x", intOf(3), "y", text, longText, intOf(4)));
    addNewValues(document);
    return document;
}

Document managerDocument() {
    Document document;
    const HeldValue number = intWith(codeOf(1), 1);
    const HeldValue text = stringWith(codeOf(2), "two");
    const HeldValue inner = arrayWith(codeOf(3), number);
    HeldValue manager = managerOf(number, text, inner);
    for (int32_t i = 3; i < 10; ++i) { // now it is full
        asManager(manager).addKel(intOf(i).get());
    }
    document.add("manager", share(manager))
        .add("holder", arrayOf(manager, text))
        .add("same", stringWith(codeOf(2), "another two"));
    addNewValues(document);
    return document;
}

Document indexListDocument() {
    Document document;
    const HeldValue keys = arrayOf(arrayOf(intOf(0)), stringOf("k"), arrayOf(intOf(0)),
                                   stringOf("m"), arrayOf(intOf(0)));
    const HeldValue items = arrayOf(intOf(1), stringOf("two"), intOf(3), stringOf("4"), intOf(5));
    addListValues(document, keys, items, arrayOf(intOf(0)));
    return document;
}

Document textKeysDocument() {
    Document document;
    const HeldValue keys =
        arrayOf(stringOf("k"), stringOf("m"), stringOf("k"), stringOf("n"), stringOf("k"));
    const HeldValue items = arrayOf(intOf(1), stringOf("two"), intOf(3), stringOf("4"), intOf(5));
    addListValues(document, keys, items, stringOf("k"));
    return document;
}

Document selectorDocument(KELKind kind) {
    Document document;
    const HeldValue keys = arrayOf(stringOf("a"), stringOf("b"), stringOf("c"), stringOf("d"),
                                   stringOf("e"), stringOf("f"));
    const HeldValue items = arrayOf(intOf(1), intOf(2), intOf(3), intOf(4), intOf(5), intOf(6));
    const HeldValue list = listOf(keys, items);
    HeldValue subject(kel::createValue(kind, nullptr));
    if (auto* selector = dynamic_cast<KEL_Selector*>(subject.get())) {
        selector->setList(&asList(list));
        selector->selectKey(at(keys, 1));
    } else if (auto* multi = dynamic_cast<KEL_MultiSelector*>(subject.get())) {
        multi->setList(&asList(list));
        for (int32_t i = 0; i < 5; ++i) {
            multi->selectKey(at(keys, i));
        }
    }
    document.add("selector", share(subject))
        .add("holder", arrayOf(subject))
        .add("list", share(list))
        .add("keys", share(keys))
        .add("items", share(items))
        .add("otherList", listOf(arrayOf(stringOf("z")), arrayOf(intOf(26))));
    return document;
}

namespace {

Document checkedDocumentOf(HeldValue subject, const HeldValue& descriptor) {
    Document document;
    document.add("checked", share(subject))
        .add("holder", arrayOf(subject, at(subject, "level")))
        .add("descriptor", share(descriptor))
        .add("otherDescriptor", structDescriptorOf("level", intRange(0, 20)))
        .add("rules", doubleRange(0.0, 1.0))
        .add("four", intOf(4))
        .add("eleven", intOf(11))
        .add("half", doubleOf(0.5))
        .add("fast", stringOf("fast"))
        .add("allowed", arrayOf(doubleOf(0.5), doubleOf(1.5)))
        .add("source", structOf("level", intOf(2), "x", intOf(3), "y", stringOf(longText)));
    addNewValues(document);
    return document;
}

} // namespace

Document checkedDocument() {
    const HeldValue pan = doubleRange(-1.0, 1.0);
    asStruct(pan).addVar("default", doubleOf(0.0).get());
    const HeldValue missing = intRange(0, 5);
    asStruct(missing).addVar("default", intOf(3).get());
    const HeldValue mode = enumOf(KELKind_String, arrayOf(stringOf("slow"), stringOf("fast")));
    const HeldValue descriptor =
        structDescriptorOf("level", intRange(0, 10), "mode", mode, "pan", pan, "missing", missing);
    return checkedDocumentOf(metaOf("@desc", descriptor, "level", intOf(3), "mode",
                                    stringOf("slow"), "pan", nullptr, "free", intOf(1)),
                             descriptor);
}

Document plainCheckedDocument() {
    return checkedDocumentOf(metaOf("level", intOf(3), "free", intOf(1)), structDescriptorOf());
}

namespace {

Document descriptorDocumentOf(const HeldValue& subject) {
    Document document;
    document.add("descriptor", share(subject))
        .add("holder", structDescriptorOf("x", subject))
        .add("low", doubleOf(-2.0))
        .add("high", doubleOf(2.0))
        .add("half", doubleOf(0.5))
        .add("truth", booleanOf(false));
    addNewValues(document);
    return document;
}

} // namespace

Document rangedDocument() {
    const HeldValue subject = doubleRange(-1.0, 1.0);
    detail::addVariables(asStruct(subject), "default", doubleOf(0.25), "preadorn", stringOf("<"),
                         "postadorn", stringOf(">"), "wrapped", booleanOf(true), "interpolated",
                         booleanOf(true), "stepsize", doubleOf(0.5));
    return descriptorDocumentOf(subject);
}

Document enumeratedDocument() {
    return descriptorDocumentOf(
        enumOf(KELKind_Double,
               arrayOf(doubleOf(0.5), doubleOf(1.5), doubleOf(0.5), intOf(1), stringOf("two"))));
}

Document textEnumerationDocument() {
    return descriptorDocumentOf(
        enumOf(KELKind_String, arrayOf(stringOf("slow"), booleanOf(true), stringOf("fast"),
                                       intOf(1), stringOf("slow"))));
}

Document bareDescriptorDocument() {
    return descriptorDocumentOf(descriptorOf("type", intOf(KELKind_Int)));
}

} // namespace kel::test
