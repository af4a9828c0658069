/// \file
/// Runs code with a small call stack.
#pragma once

#include <functional>

namespace kel::test {

/// Runs action in a thread of its own with a stack of 256 KiB and waits for it. Rethrows the
/// exceptions of action. Code that uses the call stack for depth ends the program instead.
void runInSmallStack(const std::function<void()>& action);

} // namespace kel::test
