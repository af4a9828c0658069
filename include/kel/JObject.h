/// \file
/// JObject: root of every counted object of the library.
#pragma once

#include <kel/JHashCode.h>

/// An object with a reference count and a 128-bit identity. It is always inherited as a virtual
/// base, so an object holds one count and one identity, however many paths lead here.
///
/// The count starts at 1 and belongs to whoever made the object; each holder adds one reference
/// and releases it. Counts are plain integers: one thread at a time uses an object.
///
/// Hosts meet JObjects as exceptions and as the strings of their messages. They never make one:
/// the constructors live inside the library.
class JObject {
public:
    /// Count 1 and a fresh identity.
    /// \throws JException by value, "Cannot create hash code.", when the platform has no GUID
    JObject();

    /// Count 1 and the given identity; nothing is drawn.
    JObject(uint32_t w0, uint32_t w1, uint32_t w2, uint32_t w3)
        : refCount_(1), hashCode_(w0, w1, w2, w3), identityGiven_(true) {}

    /// Count 1 and the given identity; nothing is drawn.
    explicit JObject(const JHashCode& hashCode)
        : refCount_(1), hashCode_(hashCode), identityGiven_(true) {}

    /// A copy is an object of its own: count 1 and a fresh identity.
    JObject(const JObject&) : JObject() {}

    /// Keeps this object's count and identity; there is nothing else to assign.
    JObject& operator=(const JObject&) { return *this; }

    virtual ~JObject() {}

    /// True when other is an object with the same identity; false for null.
    virtual bool equals(const JObject* other) const {
        if (other == nullptr) {
            return false;
        }
        JHashCode theirs;
        return hashCode_ == other->getHashCode(theirs);
    }

    /// Copies the identity into out and returns out.
    virtual JHashCode& getHashCode(JHashCode& out) const {
        out = hashCode_;
        return out;
    }

    /// The reference count. Values and value exceptions answer 1, whatever the count is.
    virtual int32_t getRefCount() const { return refCount_; }

    /// Adds one reference, without any check.
    void addRef() { ++refCount_; }

    /// Takes one reference back and deletes the object at the step from 1 to 0. An object at 0 or
    /// below stays as it is: releasing too often never deletes twice.
    /// \return the new count
    int32_t release() {
        if (refCount_ < 1) {
            return refCount_;
        }
        const int32_t count = --refCount_;
        if (count == 0) {
            delete this;
        }
        return count;
    }

protected:
    /// The real count, also where getRefCount is overridden.
    int32_t referenceCount() const { return refCount_; }

    /// The identity, without a virtual call.
    const JHashCode& identity() const { return hashCode_; }

    /// True when the identity was given to the constructor: only then can it equal that of an
    /// object made earlier.
    bool isIdentityGiven() const { return identityGiven_; }

private:
    int32_t refCount_;
    JHashCode hashCode_;
    bool identityGiven_;
};

/// True when both are null, false when one is, else whether the identities are equal.
inline bool equals(const JObject* a, const JObject* b) {
    return a == nullptr || b == nullptr ? a == b : a->equals(b);
}
