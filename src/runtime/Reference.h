/// \file
/// Reference: an owner of one reference that is no larger than a pointer.
#pragma once

#include <memory>

namespace kel {

/// Releases one reference.
struct GiveBack {
    template <class T> void operator()(T* target) const { target->release(); }
};

/// Owns one reference to an object of the library, or to a host's own implementation of an
/// interface.
template <class T> using Reference = std::unique_ptr<T, GiveBack>;

} // namespace kel
