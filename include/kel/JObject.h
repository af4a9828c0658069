/// \file
/// JObject: the root of every counted object of the library.
#pragma once

#include <kel/JHashCode.h>

/// An object with a reference count and a 128-bit identity. It is always inherited as a virtual
/// base, so an object has one count and one identity even if several paths lead to this class.
///
/// The count starts at 1 and belongs to the creator of the object. Each further holder adds one
/// reference and releases it. Counts are plain integers, so only one thread at a time may use an
/// object.
///
/// Hosts see JObjects as exceptions and as the strings of their messages. Hosts never create one:
/// the constructors are inside the library.
///
/// \par Failures
/// Never fails.
class JObject {
public:
    /// Sets the count to 1 and draws a fresh identity.
    /// \throws JException by value, "Cannot create hash code.", if the platform has no GUID
    JObject();

    /// Sets the count to 1 and takes the given identity. No identity is drawn.
    JObject(uint32_t w0, uint32_t w1, uint32_t w2, uint32_t w3)
        : refCount_(1), hashCode_(w0, w1, w2, w3), identityGiven_(true) {}

    /// Sets the count to 1 and takes the given identity. No identity is drawn.
    explicit JObject(const JHashCode& hashCode)
        : refCount_(1), hashCode_(hashCode), identityGiven_(true) {}

    /// Creates an object of its own, with count 1 and a fresh identity.
    /// \throws JException by value, "Cannot create hash code.", if the platform has no GUID
    JObject(const JObject&) : JObject() {}

    /// Keeps this object's count and identity. There is nothing else to assign.
    JObject& operator=(const JObject&) { return *this; }

    virtual ~JObject() {}

    /// Returns true if other is an object with the same identity. Returns false for null. Classes
    /// whose identities are drawn later override it.
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

    /// Returns the reference count. Values and value exceptions return 1, whatever the count is.
    virtual int32_t getRefCount() const { return refCount_; }

    /// Adds one reference, without any check.
    void addRef() { ++refCount_; }

    /// Releases one reference and deletes the object when the count drops from 1 to 0. An object
    /// whose count is 0 or less does not change, so an extra release never deletes twice.
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
    /// Selects the constructor of objects that seldom need an identity.
    struct IdentityLater {};

    /// Sets the count to 1. The identity is drawn when it is first needed, and that cannot fail.
    /// Where the platform cannot promise that, it is drawn at once. A class that uses this
    /// constructor overrides getHashCode and equals, which it implements with identity and
    /// hasIdentityOf.
    /// \throws JException by value, "Cannot create hash code.", if the platform has no GUID
    explicit JObject(IdentityLater);

    /// Returns the real count, even where getRefCount is overridden.
    int32_t referenceCount() const { return refCount_; }

    /// Returns the identity, without a virtual call, and draws it if that is still to be done.
    const JHashCode& identity() const {
        if (hasMark(identityDueMark)) {
            drawDueIdentity();
        }
        return hashCode_;
    }

    /// Returns true if other has the same identity. An identity that is still to be drawn differs
    /// from all others, so nothing is drawn for this.
    bool hasIdentityOf(const JObject& other) const {
        return this == &other || (!hasMark(identityDueMark) && !other.hasMark(identityDueMark) &&
                                  hashCode_ == other.hashCode_);
    }

    /// Returns true if the identity was given to the constructor. Only such an identity can equal
    /// that of an object made earlier.
    bool isIdentityGiven() const { return identityGiven_; }

    /// Marks that classes of the library keep in every object. They take no room of their own.
    enum Mark : uint8_t {
        identityDueMark = 1, ///< the identity is still to be drawn
        changedMark = 2,     ///< the changed flag of an observable object
        onPathMark = 4,      ///< a walk over a tree is below the value
    };

    bool hasMark(Mark mark) const { return (marks_ & mark) != 0; }
    void setMark(Mark mark, bool on) const {
        marks_ = static_cast<uint8_t>(on ? marks_ | mark : marks_ & ~mark);
    }

private:
    void drawDueIdentity() const;

    int32_t refCount_;
    mutable JHashCode hashCode_;
    bool identityGiven_;
    mutable uint8_t marks_ = 0;
};

/// Returns true if both are null, and false if only one is. Otherwise compares the identities.
/// Never fails.
inline bool equals(const JObject* a, const JObject* b) {
    return a == nullptr || b == nullptr ? a == b : a->equals(b);
}
