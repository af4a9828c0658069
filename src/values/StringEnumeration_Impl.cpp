#include "values/StringEnumeration_Impl.h"

#include "values/KELException_Impl.h"

#include <kel/JString.h>

bool StringEnumeration_Impl::hasMoreElements() const {
    return cursor_ < getCount();
}

const char* StringEnumeration_Impl::current() const {
    if (!blocks_.wasUsed()) {
        throw new KELNoSuchElementException_Impl("Enumeration is empty.");
    }
    return hasMoreElements() ? texts_[cursor_] : nullptr;
}

const char* StringEnumeration_Impl::nextElement() {
    const char* text = current();
    cursor_ += text != nullptr ? 1 : 0;
    return text;
}

JObject* StringEnumeration_Impl::nextElement() const {
    const char* text = current();
    if (text == nullptr) {
        return nullptr;
    }
    JString* string = kel::makeObject<JString>(text);
    ++cursor_;
    return string;
}

int32_t StringEnumeration_Impl::getCount() const {
    return texts_.size();
}

int32_t StringEnumeration_Impl::indexOf(const char* text) const {
    return text == nullptr ? -1 : texts_.indexOf(text);
}

bool StringEnumeration_Impl::contains(const char* text) const {
    return indexOf(text) != -1;
}

void StringEnumeration_Impl::addAll(StringEnumeration* other) {
    if (other == nullptr) {
        return;
    }
    // The new names are collected, and room for them is made, before the first is added. The cursor
    // of an enumeration of the library's own remains unchanged until then.
    StringEnumeration_Impl added;
    std::size_t bytes = 0;
    const auto collect = [&](const char* text) {
        if (text != nullptr && !contains(text) && !added.contains(text)) {
            const std::string_view name(text);
            added.addUnique(name);
            bytes += name.size() + 1;
        }
    };
    if (const auto* own = dynamic_cast<StringEnumeration_Impl*>(other)) {
        for (int32_t i = 0; i < own->getCount(); ++i) {
            collect(own->texts_[i]);
        }
    } else {
        other->reset();
        while (other->hasMoreElements()) {
            collect(other->nextElement());
        }
    }
    if (added.getCount() > 0) {
        makeRoom(added.getCount(), bytes);
    }
    for (int32_t i = 0; i < added.getCount(); ++i) {
        add(added.texts_[i]); // a host's enumeration may have added it meanwhile
    }
    other->reset();
}

void StringEnumeration_Impl::add(const char* text) {
    if (text != nullptr && !contains(text)) {
        addUnique(text);
    }
}

void StringEnumeration_Impl::addUnique(std::string_view text) {
    makeRoom(1, text.size() + 1);
    texts_.append(blocks_.add(text));
}

void StringEnumeration_Impl::makeRoom(int32_t count, std::size_t bytes) {
    texts_.makeRoom(count);
    blocks_.makeRoom(bytes); // last: it also records that the list was used
}

void StringEnumeration_Impl::remove(const char* text) {
    const int32_t index = indexOf(text);
    if (index != -1) {
        blocks_.remove(texts_.take(index));
    }
}
