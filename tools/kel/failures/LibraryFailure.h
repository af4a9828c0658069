/// \file
/// The messages of the library's failures.
#pragma once

#include <kel/JException.h>
#include <kel/KELException.h>
#include <string>

namespace kel::tool {

/// Deletes the failure, which was thrown as a pointer, and returns its message.
/// \throws std::bad_alloc if it reports that memory ran out
std::string takeMessage(KELException* failure);

/// Returns the message of the failure.
/// \throws std::bad_alloc if it reports that memory ran out
std::string messageOf(const JException& failure);

} // namespace kel::tool
