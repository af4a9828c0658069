/// \file
/// Temporary: a value on the stack.
#pragma once

#include "values/KEL_Impl.h"

#include <cstddef>
#include <new>

namespace kel {

/// Holds a value for one operation that takes its contents over and keeps no reference to it. This
/// needs no allocation, and no destructor where the kind needs none.
template <class T> class Temporary {
public:
    template <class Content>
    explicit Temporary(const Content& content) : value_(::new (storage_) T(content)) {}
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    ~Temporary() { KEL_Impl::end(value_); }

    T* get() const { return value_; }

private:
    alignas(T) std::byte storage_[sizeof(T)];
    T* value_;
};

} // namespace kel
