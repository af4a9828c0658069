/// \file
/// Running code with little room on the call stack.
#pragma once

#include <functional>

namespace kel::test {

/// Runs action in a thread of its own with a stack of 256 KiB and waits for it. What action throws
/// is thrown here. Code that uses the call stack for depth ends the program instead.
void runInSmallStack(const std::function<void()>& action);

} // namespace kel::test
