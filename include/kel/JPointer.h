/// \file
/// JPointer: an intrusive counted pointer to a JObject.
#pragma once

#include <kel/JObject.h>

/// Holds one reference to a T (a class derived from JObject), or null. Adopting a raw pointer takes
/// over the caller's reference. Copying and sharing add a reference. Clearing, assigning and
/// destroying release the old one.
///
/// \par Failures
/// Never fails.
template <class T> class JPointer {
public:
    /// Holds nothing: the pointer is null.
    JPointer() noexcept : target_(nullptr) {}

    /// Adopts target without adding a reference. Null is allowed.
    explicit JPointer(T* target) noexcept : target_(target) {}

    /// Shares other's target.
    JPointer(const JPointer& other) : target_(other.target_) { retain(target_); }

    /// Takes over other's reference and leaves other null.
    JPointer(JPointer&& other) noexcept : target_(other.target_) { other.target_ = nullptr; }

    /// Returns a pointer that shares target and adds a reference. The holder of target keeps its
    /// own.
    static JPointer share(T* target) {
        retain(target);
        return JPointer(target);
    }

    virtual ~JPointer() { JPointer::clear(); }

    /// Releases the target once, if there is one, and becomes null.
    virtual void clear() {
        T* old = target_;
        target_ = nullptr;
        drop(old);
    }

    /// Returns the target, passes its reference to the caller and becomes null.
    virtual T* detach() {
        T* old = target_;
        target_ = nullptr;
        return old;
    }

    KEL_SLOTS(
        /// Returns true if the pointer is null. Calls the const form.
        virtual bool isNull() { return static_cast<const JPointer*>(this)->isNull(); },
        /// Returns true if the pointer is null.
        virtual bool isNull() const { return target_ == nullptr; })

    /// Returns true if the pointer is not null.
    virtual bool isValid() const { return !isNull(); }

    KEL_SLOTS(
        /// Shares other's target and releases the old one. The new reference is added first, so a
        /// target that only the old one keeps alive survives.
        virtual JPointer& operator=(const JPointer& other) {
            if (target_ != other.target_) {
                T* old = target_;
                target_ = other.target_;
                retain(target_);
                drop(old);
            }
            return *this;
        },
        /// Adopts target and releases the old one. Never pass the pointer that is held already: it
        /// would be released, and perhaps deleted, before it is stored again.
        virtual JPointer& operator=(T* target) {
            T* old = target_;
            target_ = target;
            drop(old);
            return *this;
        })

    /// Returns the target, borrowed while somebody holds a reference.
    virtual T* get() const { return target_; }
    T* operator->() const { return target_; }
    T& operator*() const { return *target_; }

private:
    static void retain(T* target) {
        if (target != nullptr) {
            static_cast<JObject*>(target)->addRef();
        }
    }
    static void drop(T* target) {
        if (target != nullptr) {
            static_cast<JObject*>(target)->release();
        }
    }

    T* target_;
};
