#include "values/KEL_Impl.h"

#include "platform/ThreadLocal.h"
#include "runtime/Storage.h"
#include "values/ImplementationPlaces.h"
#include "values/KELException_Impl.h"
#include "values/KEL_Observer_Impl.h"
#include "values/KeepAlive.h"
#include "values/OutOfMemory.h"
#include "values/TreeCopy.h"
#include "values/TreeEquality.h"

#include <cstring>
#include <typeinfo>

namespace {

/// Values of this thread that wait until the values being destroyed are gone.
KEL_HOT_THREAD_LOCAL KEL_Impl* doomed = nullptr;

/// The number of values that are being destroyed, one inside the other.
KEL_HOT_THREAD_LOCAL int nesting = 0;

/// Most trees are not deeper than this, and are destroyed from the leaves up without waiting.
constexpr int deepestNesting = 16;

constinit kel::ImplementationPlaces places;

void destroy(KEL_Impl* value) {
    void* storage = dynamic_cast<void*>(value);
    KEL_Impl::end(value);
    kel::platform::deallocateBlock(storage);
}

} // namespace

KEL_Impl* KEL_Impl::of(KEL* value) {
    if (value == nullptr) {
        return nullptr;
    }
    const std::type_info& type = typeid(*value);
    auto* object = static_cast<char*>(dynamic_cast<void*>(value));
    const ptrdiff_t distance = places.find(type);
    if (distance != kel::ImplementationPlaces::unknown) {
        return reinterpret_cast<KEL_Impl*>(object + distance);
    }
    auto* implementation = dynamic_cast<KEL_Impl*>(value);
    if (implementation != nullptr) {
        places.remember(type, reinterpret_cast<char*>(implementation) - object);
    }
    return implementation;
}

const KEL_Impl* KEL_Impl::of(const KEL* value) {
    return of(const_cast<KEL*>(value)); // only to find it; the result is constant again
}

void* KEL_Impl::operator new(std::size_t size) {
    void* storage = kel::platform::allocateBlock(size);
    if (storage == nullptr) {
        kel::throwOutOfMemory();
    }
    return storage;
}

void KEL_Impl::operator delete(void* storage) noexcept {
    kel::platform::deallocateBlock(storage);
}

void KEL_Impl::operator delete(KEL_Impl* value, std::destroying_delete_t) noexcept {
    if (nesting == deepestNesting) {
        value->freeString();
        value->nextDoomed_ = doomed;
        doomed = value;
        return;
    }
    ++nesting;
    destroy(value);
    while (nesting == 1 && doomed != nullptr) {
        KEL_Impl* next = doomed;
        doomed = next->nextDoomed_;
        next->text_ = nullptr;
        destroy(next);
    }
    --nesting;
}

void KEL_Impl::end(KEL_Impl* value) noexcept {
    value->freeString();
    if (value->observers() != nullptr) {
        value->deleteObservers();
    }
    if (!value->giveContentsBack()) {
        value->~KEL_Impl();
    }
}

void KEL_Impl::freeString() {
    if (text_ != nullptr) {
        kel::platform::deallocate(text_);
        text_ = nullptr;
    }
}

char* KEL_Impl::textBuffer(std::size_t size) const {
    if (text_ == nullptr) {
        text_ = static_cast<char*>(kel::platform::allocate(size));
    }
    if (text_ != nullptr) {
        std::memset(text_, 0, size);
    }
    return text_;
}

KEL* KEL_Impl::copy() const {
    return kel::copyTree(*this);
}

void KEL_Impl::assign(const KEL* value) {
    const KEL_Impl* source = of(value);
    if (source == nullptr) {
        return;
    }
    if (source->getType() != getType()) {
        throw new KELNoSuchTypeException_Impl("Can't set the value when types are not equal!");
    }
    const auto self = kel::keepAlive(this); // the old contents can be its last holder
    if (source != this) {
        kel::withOneOutOfMemory([&] { takeContents(*source); });
    }
    notifyContentsChanged();
}

bool KEL_Impl::equals(const KEL* other) const {
    const KEL_Impl* theirs = of(other);
    return theirs != nullptr && hasIdentityOf(*theirs);
}

bool KEL_Impl::equals(const KEL* a, const KEL* b) const {
    if (a == nullptr || b == nullptr) {
        return a == b;
    }
    return a->equals(b);
}

void KEL_Impl::assignConverted(const KEL* value, bool notify) {
    const KEL_Impl* source = of(value);
    const auto self = kel::keepAlive(this);
    if (source != nullptr && kel::withOneOutOfMemory([&] { return takeConverted(*source); }) &&
        notify) {
        notifyContentsChanged();
    }
}

JPointer<KEL_Impl> KEL_Impl::prepareContents(const KEL_Impl& source) {
    return JPointer<KEL_Impl>(kel::copyTreeFor(source, *this));
}

bool KEL_Impl::takeConverted(const KEL_Impl& source) {
    if (source.getType() != getType()) {
        return false;
    }
    if (&source != this) {
        takeContents(source);
    }
    return true;
}

bool KEL_Impl::equalsValue(const KEL* other) const {
    const KEL_Impl* theirs = of(other);
    return theirs != nullptr && kel::treesEqual(*this, *theirs);
}

void KEL_Impl::addObserver(JObserver* observer) {
    if (observer != nullptr) {
        JObservable::addObserver(observer);
    }
}

void KEL_Impl::addObserver(KEL_Observer* observer) {
    if (observer != nullptr && !containsObserverWith(KEL_Observer_Impl::identityFor(observer))) {
        const JPointer<KEL_Observer_Impl> wrapper(new KEL_Observer_Impl(observer));
        JObservable::addObserver(wrapper.get());
    }
}

void KEL_Impl::removeObserver(KEL_Observer* observer) {
    if (observer != nullptr) {
        deleteObserverWith(KEL_Observer_Impl::identityFor(observer));
    }
}

void KEL_Impl::removeObserver(JObserver* observer) {
    JObservable::deleteObserver(observer);
}

bool KEL_Impl::nextChild(kel::ChildCursor&) const {
    return false;
}

// not reached: only containers are copied child by child
void KEL_Impl::adoptCopiedChild(std::string_view, JPointer<KEL_Impl>&&) {}
