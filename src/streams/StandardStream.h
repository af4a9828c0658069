/// \file
/// Use of a host's std::istream or std::ostream whatever its exception mask is.
#pragma once

#include <ios>

namespace kel {

/// Runs action on a standard stream whose state the caller reads afterwards. A host may have asked
/// its stream to throw on bad or fail; the state then says the same, so that throw ends here.
template <class Action> void leavingItToTheState(Action action) {
    try {
        action();
    } catch (const std::ios_base::failure&) {
        // The state bits are set before this is thrown.
    }
}

} // namespace kel
