/// \file
/// KEL_SHARES_TAIL_PADDING: a member whose unused last bytes later members may use.
#pragma once

/// Lets the members after this one be placed in its tail padding. Microsoft's ABI never does that.
#if defined(_MSC_VER)
#define KEL_SHARES_TAIL_PADDING
#else
#define KEL_SHARES_TAIL_PADDING [[no_unique_address]]
#endif
