#include "values/StringEnumeration_Impl.h"

#include "values/KELException_Impl.h"

bool StringEnumeration_Impl::hasMoreElements() const {
    return cursor_ < getCount();
}

JString* StringEnumeration_Impl::next() const {
    if (strings_.isNull()) {
        throw new KELNoSuchElementException_Impl("Enumeration is empty.");
    }
    return hasMoreElements() ? strings_->elementAtRef(cursor_++) : nullptr;
}

const char* StringEnumeration_Impl::nextElement() {
    const JString* string = next();
    return string == nullptr ? nullptr : string->chars();
}

JObject* StringEnumeration_Impl::nextElement() const {
    JString* string = next();
    if (string != nullptr) {
        string->addRef();
    }
    return string;
}

int32_t StringEnumeration_Impl::getCount() const {
    return strings_.isNull() ? 0 : strings_->size();
}

int32_t StringEnumeration_Impl::indexOf(const char* text) const {
    const int32_t count = text == nullptr ? 0 : getCount();
    for (int32_t i = 0; i < count; ++i) {
        if (strings_->elementAtRef(i)->equals(text)) {
            return i;
        }
    }
    return -1;
}

bool StringEnumeration_Impl::contains(const char* text) const {
    return indexOf(text) != -1;
}

void StringEnumeration_Impl::addAll(StringEnumeration* other) {
    if (other == nullptr) {
        return;
    }
    // The new names are collected, and room is made for them, before the first is added. Until then
    // the cursor of an enumeration of the library's own does not move.
    const JPointer<StringEnumeration_Impl> added(new StringEnumeration_Impl());
    const auto collect = [&](const char* text) {
        if (!contains(text)) {
            added->add(text);
        }
    };
    if (const auto* own = dynamic_cast<StringEnumeration_Impl*>(other)) {
        for (int32_t i = 0; i < own->getCount(); ++i) {
            collect(own->strings_->elementAtRef(i)->chars());
        }
    } else {
        other->reset();
        while (other->hasMoreElements()) {
            collect(other->nextElement());
        }
    }
    const int32_t count = added->getCount();
    if (count > 0) {
        makeRoom(count);
    }
    for (int32_t i = 0; i < count; ++i) {
        strings_->addElement(added->strings_->elementAtRef(i));
    }
    other->reset();
}

void StringEnumeration_Impl::add(const char* text) {
    if (text != nullptr && !contains(text)) {
        addUnique(text);
    }
}

void StringEnumeration_Impl::addUnique(const char* text) {
    const JPointer<JString> copy(kel::makeObject<JString>(text));
    makeRoom(1);
    strings_->addElement(copy.get());
}

void StringEnumeration_Impl::makeRoom(int32_t count) {
    if (strings_.isNull()) {
        JPointer<JVector<JString>> made(new JVector<JString>(5, 5));
        made->makeRoom(count);
        strings_ = made;
    } else {
        strings_->makeRoom(count);
    }
}

void StringEnumeration_Impl::remove(const char* text) {
    const int32_t index = indexOf(text);
    if (index != -1) {
        strings_->removeElementAt(index);
    }
}
