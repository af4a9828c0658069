#include "values/StringEnumeration_Impl.h"

#include "runtime/Clamp.h"
#include "values/KELException_Impl.h"

#include <kel/JString.h>

bool StringEnumeration_Impl::hasMoreElements() const {
    return cursor_ < getCount();
}

const char* StringEnumeration_Impl::current() const {
    if (!blocks_.wasUsed()) {
        throw new KELNoSuchElementException_Impl("Enumeration is empty.");
    }
    return hasMoreElements() ? texts_[static_cast<std::size_t>(cursor_)] : nullptr;
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
    return kel::clampTo<int32_t>(texts_.size());
}

int32_t StringEnumeration_Impl::indexOf(const char* text) const {
    const int32_t count = text == nullptr ? 0 : getCount();
    for (int32_t i = 0; i < count; ++i) {
        if (std::strcmp(texts_[static_cast<std::size_t>(i)], text) == 0) {
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
        for (const char* text : own->texts_) {
            collect(text);
        }
    } else {
        other->reset();
        while (other->hasMoreElements()) {
            collect(other->nextElement());
        }
    }
    if (!added.texts_.empty()) {
        makeRoom(added.texts_.size(), bytes);
    }
    for (const char* text : added.texts_) {
        addUnique(text);
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
    texts_.push_back(blocks_.add(text));
}

void StringEnumeration_Impl::makeRoom(std::size_t count, std::size_t bytes) {
    const std::size_t room = texts_.capacity();
    if (count > room - texts_.size()) {
        texts_.reserve(std::max(texts_.size() + count, 2 * room));
    }
    blocks_.makeRoom(bytes); // last: it also records that the list was used
}

void StringEnumeration_Impl::remove(const char* text) {
    const int32_t index = indexOf(text);
    if (index != -1) {
        const auto place = texts_.begin() + index;
        blocks_.remove(*place);
        texts_.erase(place);
    }
}
