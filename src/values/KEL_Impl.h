/// \file
/// KEL_Impl: the implementation base of every value.
#pragma once

#include "platform/Inline.h"
#include "runtime/JObservable.h"
#include "values/Kinds.h"

#include <kel/KEL_Observable.h>
#include <new>
#include <string_view>

namespace kel {
struct ChildCursor;
}

/// The common base of all kinds. It has counting, identity, observers, the defaults of the
/// conversions, and the operations that walks over trees consist of. There is one object per value:
/// the implementation of a kind derives from its public class and from this one.
class KEL_Impl : public virtual KEL, public virtual KEL_Observable, public JObservable {
public:
    KEL_ALWAYS_INLINE KEL_Impl() {}
    KEL_Impl(const KEL_Impl&) = delete;
    KEL_Impl& operator=(const KEL_Impl&) = delete;
    KEL_ALWAYS_INLINE ~KEL_Impl() override {
        // not reached: end has freed the text
        if (text_ != nullptr) {
            kel::platform::deallocate(text_);
        }
    }

    /// Returns the implementation of a host's pointer; null for null and for a foreign
    /// implementation.
    static KEL_Impl* of(KEL* value);
    static const KEL_Impl* of(const KEL* value);

    /// Returns whether value is a host's own implementation, which no container stores; false for
    /// null.
    static bool isForeign(const KEL* value) { return value != nullptr && of(value) == nullptr; }

    /// Allocates storage for a value, of platform::largestBlock bytes at most.
    /// \throws JOutOfMemoryException "Out of memory!"
    static void* operator new(std::size_t size);
    static void operator delete(void* storage) noexcept;

    /// Destroys a value whose last reference is gone. Below a few levels, values whose last
    /// reference it held wait until it is done, so that a tree of any depth is destroyed without a
    /// deep call stack.
    static void operator delete(KEL_Impl* value, std::destroying_delete_t) noexcept;

    // KELInterface_RefCount_V1
    void addRef() override { JObject::addRef(); }
    int32_t release() override { return JObject::release(); }
    JHashCode& getHashCode(JHashCode& out) const override { return out = identity(); }
    int32_t getRefCount() const override { return 1; }

    // KELInterface_Casting_V1: the neutral results of a kind without such a form, and the widths
    // that follow from toInt and toDouble.
    bool toBoolean() const override { return false; }
    int32_t toInt() const override { return 0; }
    int8_t toSignedChar() const override { return static_cast<int8_t>(toInt()); }
    uint8_t toUnsignedChar() const override { return static_cast<uint8_t>(toInt()); }
    int16_t toShort() const override { return static_cast<int16_t>(toInt()); }
    uint16_t toUnsignedShort() const override { return static_cast<uint16_t>(toInt()); }
    uint32_t toUnsignedInt() const override { return static_cast<uint32_t>(toInt()); }
    long toLong() const override { return toInt(); }
    unsigned long toUnsignedLong() const override { return static_cast<unsigned long>(toInt()); }
    int64_t toInt64() const override { return toInt(); }
    uint64_t toUnsignedInt64() const override { return static_cast<uint64_t>(toInt()); }
    double toDouble() const override { return 0.0; }
    float toFloat() const override { return static_cast<float>(toDouble()); }
    long double toLongDouble() const override { return toDouble(); }
    const char* toString() const override { return nullptr; }
    JHashCode& toGuid(JHashCode& out) const override { return out = JHashCode(); }
    void freeString() override;

    // JObject
    using JObject::equals;
    bool equals(const JObject* other) const override {
        return other != nullptr && hasIdentityOf(*other);
    }

    // KELInterface_V1
    KEL* copy() const override;
    void assign(const KEL* value) override;
    bool equals(const KEL* other) const override;
    bool equals(const KEL* a, const KEL* b) const override;
    void assignConverted(const KEL* value, bool notify) override;
    bool equalsValue(const KEL* other) const override;
    int32_t getVersion() const override { return 1; }

    // KELInterface_Observable_V1
    void addObserver(JObserver* observer) override;
    void addObserver(KEL_Observer* observer) override;
    void removeObserver(KEL_Observer* observer) override;
    void removeObserver(JObserver* observer) override;

    /// Marks the value changed, then notifies its observers.
    void notifyChanged() {
        setChanged();
        if (observers() != nullptr) {
            notifyObservers();
        }
    }

    /// Notifies of new contents taken over from another value. The observers of the values that
    /// this value consists of for its hosts are notified first, then those of this value.
    virtual void notifyContentsChanged() { notifyChanged(); }

    /// Gives back everything that the value's own class holds, so that its destructor would have
    /// nothing left to do. This makes every value cheaper: a destructor steps through all bases.
    /// \return false for a class that needs its destructor; then nothing was given back
    virtual bool giveContentsBack() noexcept { return false; }

    /// Ends the value's life but does not free its storage.
    static void end(KEL_Impl* value) noexcept;

    // The operations that walks over trees use.

    /// Moves the cursor to this container's next child. Returns false after the last one; a value
    /// without children returns false at once.
    virtual bool nextChild(kel::ChildCursor& cursor) const;

    /// Returns the container that has the children: the inner struct of a value built on one, else
    /// this value. Others can hold the inner struct too, so two values can have the very same
    /// children.
    virtual const KEL_Impl& holderOfChildren() const { return *this; }

    /// Returns a new value of this kind with this value's own contents, but without the children
    /// that a deep copy copies one by one. The caller owns it.
    virtual KEL_Impl* copyWithoutChildren() const = 0;

    /// Returns whether a deep copy copies the children; false when there are none or they are
    /// shared.
    virtual bool copiesChildren() const { return false; }

    /// Appends a copied child and takes over its reference; null only for a struct's null variable.
    /// Nobody is notified.
    virtual void adoptCopiedChild(std::string_view name, JPointer<KEL_Impl>&& child);

    /// Returns the value that a copy of this container holds in place of a null variable; null
    /// keeps it null.
    // not reached: only structs have null variables
    virtual JPointer<KEL_Impl> copyOfNullVariable() const { return {}; }

    /// Drops the children and notifies nobody. It is for copies that are part of each other and
    /// will not be finished.
    virtual void dropChildren() {}

    KELKind kind() const { return *kel::kindWithCode(getType()); }

    /// Returns whether its contents are children.
    bool isContainer() const { return kel::isContainer(kind()); }

    /// Returns whether the kinds agree (Int and Double do) and the contents are equal. Of the
    /// children of a container only the number is compared.
    virtual bool equalsWithoutChildren(const KEL_Impl& other) const = 0;

    /// Makes a value with the contents that this value would have after taking over source, for
    /// swapContents. Every step of taking over a value of the same kind that can fail is done here.
    /// \throws KELMemBlockException for a memory block of another size
    virtual JPointer<KEL_Impl> prepareContents(const KEL_Impl& source);

    /// Exchanges contents with a value from prepareContents.
    virtual void swapContents(KEL_Impl& prepared) noexcept = 0;

    /// Takes over the contents of a value of the same kind. Throws as prepareContents does.
    virtual void takeContents(const KEL_Impl& source) { swapContents(*prepareContents(source)); }

    /// Takes over a value of any kind, converted.
    /// \return false, with nothing changed, if it has no form of this kind
    virtual bool takeConverted(const KEL_Impl& source);

    /// Returns whether a walk that must not reach this container inside itself is below it. One
    /// mark is enough: a walk that finds the mark of another one refuses the container too.
    bool isOnPath() const { return hasMark(onPathMark); }
    void setOnPath(bool onPath) const { setMark(onPathMark, onPath); }

    /// Returns whether this value has more than one holder: only then can a walk reach it again.
    bool isShared() const { return referenceCount() > 1; }

    /// Returns whether this container or its children have more than one holder.
    bool isContentShared() const { return isShared() || holderOfChildren().isShared(); }

    /// Give access to the identity without a virtual call, and to whether it was given rather than
    /// drawn. Asking for the identity draws it if that is still to be done; comparing does not.
    using JObject::hasIdentityOf;
    using JObject::identity;
    using JObject::isIdentityGiven;

protected:
    /// Returns a zero-filled text buffer of the kind's size, made at the first call and kept until
    /// freeString; null when there is no memory.
    char* textBuffer(std::size_t size) const;

private:
    union {
        mutable char* text_ = nullptr; ///< the result of toString, for kinds that format
        KEL_Impl* nextDoomed_;         ///< the text is freed before a value has to wait
    };
};
