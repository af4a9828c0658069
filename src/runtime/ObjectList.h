/// \file
/// ObjectList: a list of counted objects.
#pragma once

#include "runtime/SearchedList.h"

#include <kel/JObject.h>

namespace kel {

/// Compares objects by their identities. The list gives access to these without virtual calls.
struct ObjectKeys : private JObject {
    /// Returns whether an element has the identity of the other object. Draws no identity.
    template <class T> static bool matches(const T* element, const JObject* wanted) {
        return (wanted->*&ObjectKeys::hasIdentityOf)(*element);
    }
    template <class T> static bool matches(const T* element, const JHashCode& wanted) {
        return identityOf(*element) == wanted;
    }

    static JHashCode keyOf(const JObject* object, const IdentityKey&) {
        return identityOf(*object);
    }
    static JHashCode keyOf(const JHashCode& identity, const IdentityKey&) { return identity; }

private:
    static const JHashCode& identityOf(const JObject& object) {
        return (object.*&ObjectKeys::identity)();
    }
};

/// An ordered list of counted objects, none of them null. Indices are not checked: callers know
/// them to be valid. Searching compares identities. A failed operation leaves the list unchanged.
template <class T> class ObjectList : public Stored {
public:
    ObjectList() = default;
    ObjectList(const ObjectList&) = delete;
    ObjectList& operator=(const ObjectList&) = delete;
    ~ObjectList() { giveBack(); }

    int32_t size() const { return elements_.size(); }

    /// Returns the element at index, borrowed.
    T* operator[](int32_t index) const { return elements_[index]; }

    /// Returns the first index whose element has the identity of object; -1 if none, and for null.
    int32_t indexOf(const T* object) const {
        return object == nullptr ? -1 : elements_.indexOf(static_cast<const JObject*>(object));
    }

    /// Returns the first index whose element has the identity; -1 if none.
    int32_t indexOf(const JHashCode& identity) const { return elements_.indexOf(identity); }

    /// Makes room for this many more elements; storing them then cannot fail.
    /// \throws JOutOfMemoryException "Out of memory!"
    void makeRoom(int32_t more) { elements_.makeRoom(more); }

    /// Appends an element and takes over the caller's reference.
    /// \throws JOutOfMemoryException "Out of memory!"; the reference is then still the caller's
    void adopt(T* object) { elements_.append(object); }

    /// Appends an element, shared with the caller.
    /// \throws JOutOfMemoryException "Out of memory!"
    void append(T* object) {
        elements_.append(object);
        hold(object);
    }

    /// Inserts an element, shared with the caller, at an index from 0 to size().
    /// \throws JOutOfMemoryException "Out of memory!"
    void insert(T* object, int32_t index) {
        elements_.insert(object, index);
        hold(object);
    }

    /// Replaces an element by one that is shared with the caller, and then releases the old one.
    void set(T* object, int32_t index) {
        hold(object); // before the release: it can be the same object
        drop(elements_.exchange(object, index));
    }

    /// Exchanges two elements.
    void swap(int32_t a, int32_t b) { elements_.swap(a, b); }

    /// Closes the gap, and then releases the removed element.
    void remove(int32_t index) { drop(elements_.take(index)); }

    /// Closes the gaps at some places in one pass, and then releases the removed elements.
    /// \param places from the least one to the greatest one, each once
    /// \param count of the places
    void removeEach(const int32_t* places, int32_t count) {
        elements_.takeEach(places, count, [](T* object) { drop(object); });
    }

    /// Removes every element, the last one first, and keeps the room. Elements that are added or
    /// removed while others are released do no harm: afterwards the list is empty.
    void clear() {
        elements_.takeAll([](T* object) { drop(object); });
    }

    /// Removes every element and the room.
    void giveBack() {
        if (elements_.hasBlock()) {
            clear();
            elements_.freeBlock();
        }
    }

    /// Exchanges all elements with another list.
    void swap(ObjectList& other) noexcept { elements_.swap(other.elements_); }

private:
    // These two count without a virtual call.
    static void hold(T* object) { static_cast<JObject*>(object)->addRef(); }
    static void drop(T* object) { static_cast<JObject*>(object)->release(); }

    SearchedList<T, ObjectKeys> elements_;
};

} // namespace kel
