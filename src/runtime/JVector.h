/// \file
/// JVector: growable vector of counted objects.
#pragma once

#include "platform/Memory.h"
#include "runtime/JEnumeration.h"
#include "runtime/Storage.h"

#include <kel/JException.h>

#include <algorithm>
#include <cstring>

/// An ordered list of counted references to Ts (a class derived from JObject). Storing an element
/// adds one reference, and removing it releases one. Null is never stored; operations that store
/// ignore it. Searches compare identities. Index errors throw JArrayIndexOutOfBoundsException, and
/// a failed operation leaves the vector unchanged.
///
/// capacity() reports small fixed increments. The storage itself grows by half, so that appending a
/// million elements one by one takes linear time.
template <class T = JObject> class JVector : public virtual JObject, public kel::Stored {
public:
    /// Makes room for capacity elements. With an increment of 0 the room doubles when it runs out.
    /// \throws JOutOfMemoryException "JVector constructor failed."
    JVector(int32_t capacity, int32_t capacityIncrement)
        : elements_(allocateElements(capacity, "JVector constructor failed.")), capacity_(capacity),
          capacityIncrement_(capacityIncrement), allocated_(capacity) {}

    /// Shares the other vector's elements and has the same capacity and increment.
    /// \throws JOutOfMemoryException "JVector constructor failed."
    JVector(const JVector& other)
        : JObject(), elements_(allocateElements(std::max(other.capacity_, other.size_),
                                                "JVector constructor failed.")),
          capacity_(other.capacity_), size_(other.size_),
          capacityIncrement_(other.capacityIncrement_),
          allocated_(std::max(other.capacity_, other.size_)) {
        for (int32_t i = 0; i < size_; ++i) {
            elements_[i] = other.elements_[i];
            retain(elements_[i]);
        }
    }

    JVector& operator=(const JVector&) = delete;

    ~JVector() override {
        JVector::removeAllElements();
        kel::platform::deallocate(elements_);
    }

    /// Reduces the capacity to the number of elements.
    virtual void trimToSize() {
        if (capacity_ > size_) {
            setSize(size_);
        }
    }

    /// Grows by whole increments until there is room for minimum elements.
    /// \throws JOutOfMemoryException "JVector::setSize() failed."
    virtual void ensureCapacity(int32_t minimum) {
        if (minimum <= capacity_) {
            return;
        }
        int64_t grown = capacity_;
        while (grown < minimum) {
            // A vector trimmed to nothing cannot double; it takes the requested minimum.
            grown += capacityIncrement_ != 0 ? capacityIncrement_ : grown;
            grown = grown == 0 ? minimum : grown;
        }
        setSize(static_cast<int32_t>(std::min<int64_t>(grown, INT32_MAX)));
    }

    /// Sets the capacity, not the number of elements, to count. Elements are never touched, even
    /// when there are more than count.
    /// \throws JOutOfMemoryException "JVector::setSize() failed."
    virtual void setSize(int32_t count) {
        if (count < 0) {
            throw JOutOfMemoryException("JVector::setSize() failed.");
        }
        if (count < capacity_ || count > allocated_) {
            reallocate(count);
        }
        capacity_ = count;
    }

    /// Returns the number of elements that there is room for.
    virtual int32_t capacity() const { return capacity_; }

    /// Returns the number of elements.
    virtual int32_t size() const { return size_; }

    /// Returns whether there are no elements.
    virtual bool isEmpty() const { return size_ == 0; }

    /// Returns a new walk over this vector, which it keeps alive; the caller owns the walk.
    virtual JEnumeration* elements() { return new JVectorEnumerator(this); }

    /// Returns whether an element has object's identity.
    virtual bool contains(const JObject* object) const { return indexOf(object, 0) != -1; }

    /// Returns the first index from start on whose element has object's identity; -1 for none or
    /// null.
    virtual int32_t indexOf(const JObject* object, int32_t start) const {
        if (object == nullptr) {
            return -1;
        }
        for (int32_t i = std::max(start, 0); i < size_; ++i) {
            if (object->equals(elements_[i])) {
                return i;
            }
        }
        return -1;
    }

    /// Returns the first index whose element has object's identity; -1 for none or null.
    virtual int32_t indexOf(const JObject* object) const { return indexOf(object, 0); }

    /// Returns the last index up to start whose element has object's identity; -1 for none or null.
    /// If start is past the elements, the search begins at the last one.
    virtual int32_t lastIndexOf(const JObject* object, int32_t start) const {
        if (object == nullptr) {
            return -1;
        }
        for (int32_t i = std::min(start, size_ - 1); i >= 0; --i) {
            if (object->equals(elements_[i])) {
                return i;
            }
        }
        return -1;
    }

    /// Returns the last index whose element has object's identity; -1 for none or null.
    virtual int32_t lastIndexOf(const JObject* object) const { return lastIndexOf(object, size_); }

    /// Returns the element at index with one reference for the caller.
    /// \throws JArrayIndexOutOfBoundsException "JVector::elementAtRef: index is invalid"
    virtual T* elementAt(int32_t index) const {
        T* element = elementAtRef(index);
        retain(element);
        return element;
    }

    /// Returns the element at index, borrowed.
    /// \throws JArrayIndexOutOfBoundsException "JVector::elementAtRef: index is invalid"
    virtual T* elementAtRef(int32_t index) const {
        check(index, size_, "JVector::elementAtRef: index is invalid");
        return elements_[index];
    }

    /// Returns elementAt(0).
    virtual T* firstElement() const { return elementAt(0); }

    /// Returns elementAt(size() - 1).
    virtual T* lastElement() const { return elementAt(size_ - 1); }

    /// Replaces the element at index; null changes nothing.
    /// \throws JArrayIndexOutOfBoundsException "JVector::setElementAt: index is invalid"
    virtual void setElementAt(T* object, int32_t index) {
        check(index, size_, "JVector::setElementAt: index is invalid");
        if (object == nullptr) {
            return;
        }
        retain(object); // before the release: it can be the same object
        T* old = elements_[index];
        elements_[index] = object;
        drop(old);
    }

    /// Removes the element at index and closes the gap.
    /// \throws JArrayIndexOutOfBoundsException "JVector::removeElementAt: index is invalid"
    virtual void removeElementAt(int32_t index) {
        check(index, size_, "JVector::removeElementAt: index is invalid");
        T* old = elements_[index];
        const auto behind = static_cast<size_t>(size_ - 1 - index);
        std::memmove(elements_ + index, elements_ + index + 1, behind * sizeof(T*));
        elements_[--size_] = nullptr;
        drop(old);
    }

    /// Inserts at index, which is from 0 to size(); null changes nothing.
    /// \throws JArrayIndexOutOfBoundsException "JVector::insertElementAt: index is invalid"
    /// \throws JOutOfMemoryException "JVector::setSize() failed."
    virtual void insertElementAt(T* object, int32_t index) {
        check(index, int64_t{size_} + 1, "JVector::insertElementAt: index is invalid");
        if (object == nullptr) {
            return;
        }
        makeRoom(1);
        const auto behind = static_cast<size_t>(size_ - index);
        std::memmove(elements_ + index + 1, elements_ + index, behind * sizeof(T*));
        retain(object);
        elements_[index] = object;
        ++size_;
    }

    /// Appends object. Null changes nothing.
    /// \throws JOutOfMemoryException "JVector::setSize() failed."
    virtual void addElement(T* object) {
        if (object == nullptr) {
            return;
        }
        makeRoom(1);
        retain(object);
        elements_[size_++] = object;
    }

    /// Removes the first element with object's identity. \return false when there is none
    virtual bool removeElement(const JObject* object) {
        const int32_t index = indexOf(object);
        if (index == -1) {
            return false;
        }
        removeElementAt(index);
        return true;
    }

    /// Removes every element, the last one first, and keeps the room. Elements can safely be added
    /// or removed while others are released; the vector is empty afterwards.
    virtual void removeAllElements() {
        while (size_ > 0) {
            T* last = elements_[--size_];
            elements_[size_] = nullptr;
            drop(last);
        }
    }

    /// Returns the elements as an array of size() pointers, borrowed until the vector changes.
    /// Walks use it to avoid a checked call at each step.
    T* const* data() const { return elements_; }

    /// Does the same as addElement for an object, never null, whose one reference the vector takes
    /// over.
    void adoptElement(T* object) {
        makeRoom(1);
        elements_[size_++] = object;
    }

    /// Makes room for this many more elements; storing them then needs no memory.
    /// \throws JOutOfMemoryException "JVector::setSize() failed."
    void makeRoom(int32_t more) {
        if (more <= capacity_ - size_) {
            return;
        }
        if (more > INT32_MAX - size_) {
            throw JOutOfMemoryException("JVector::setSize() failed.");
        }
        ensureCapacity(size_ + more);
    }

    /// A walk that shares its vector and begins at the first element. Without a vector it is empty.
    class JVectorEnumerator : public JEnumeration {
    public:
        /// Makes a walk over vector, which it shares, or over nothing for null.
        explicit JVectorEnumerator(JVector* vector) : vector_(JPointer<JVector>::share(vector)) {}

        bool hasMoreElements() const override {
            return vector_.isValid() && cursor_ < vector_->size();
        }

        /// Returns the next element with one reference for the caller.
        /// \throws JNoSuchElementException "Enumeration is empty." as a pointer, without a vector
        /// \throws JArrayIndexOutOfBoundsException "JVector::elementAtRef: index is invalid" past
        ///         the last element; the cursor does not move then
        JObject* nextElement() const override {
            if (vector_.isNull()) {
                throw new JNoSuchElementException("Enumeration is empty.");
            }
            T* next = vector_->elementAt(cursor_);
            ++cursor_;
            return next;
        }

    private:
        JPointer<JVector> vector_;
        mutable int32_t cursor_ = 0;
    };

private:
    static T** tryAllocate(int32_t count) {
        return static_cast<T**>(
            kel::platform::allocateZeroed(static_cast<size_t>(count), sizeof(T*)));
    }

    static T** allocateElements(int32_t count, const char* failure) {
        T** storage = count < 0 ? nullptr : tryAllocate(count);
        if (storage == nullptr) {
            throw JOutOfMemoryException(failure);
        }
        return storage;
    }

    /// Moves to storage for at least count elements and at least the present ones. Storage that
    /// grows does so at least by half if memory allows.
    void reallocate(int32_t count) {
        int32_t room = std::max(count, size_);
        T** moved = nullptr;
        if (room > allocated_) {
            const auto ahead = static_cast<int32_t>(
                std::min<int64_t>(allocated_ + int64_t{allocated_} / 2, INT32_MAX));
            if (ahead > room) {
                moved = tryAllocate(ahead);
                room = moved != nullptr ? ahead : room;
            }
        }
        if (moved == nullptr) {
            moved = allocateElements(room, "JVector::setSize() failed.");
        }
        if (size_ > 0) {
            std::memcpy(moved, elements_, static_cast<size_t>(size_) * sizeof(T*));
        }
        kel::platform::deallocate(elements_);
        elements_ = moved;
        allocated_ = room;
    }

    static void check(int32_t index, int64_t limit, const char* failure) {
        if (index < 0 || index >= limit) {
            throw JArrayIndexOutOfBoundsException(failure);
        }
    }

    static void retain(T* object) { static_cast<JObject*>(object)->addRef(); }
    static void drop(T* object) { static_cast<JObject*>(object)->release(); }

    T** elements_;
    int32_t capacity_;
    int32_t size_ = 0;
    int32_t capacityIncrement_;
    int32_t allocated_; // slots of storage, at least as many as capacity_ and size_
};
