/// \file
/// What is done about memory that runs out where no handler can catch the failure. Include it
/// before headers whose initializers allocate.
#pragma once

namespace kel::tool {

/// Makes a failure that nothing catches end the process with a message and a documented status, and
/// makes hasMemoryRunOut work. \return true
bool setLastResort() noexcept;

/// Returns whether an allocation has failed. Streams of the C++ library swallow the exception and
/// drop the rest of their text, so whoever uses them has to ask.
bool hasMemoryRunOut();

/// Is initialized before everything that follows this header in a source file.
inline const bool isLastResortSet = setLastResort();

} // namespace kel::tool
