/// \file
/// The lists of functions that the linker makes of the objects, and what walks them.
#pragma once

/// A function without arguments: an initializer, or what runs at the end.
using Procedure = void(__cdecl*)();

/// Runs the constructors of all static variables of the module, in the order of the linker.
void runInitializers();

/// Runs the constructors of the thread-local variables of the calling thread.
void runThreadInitializers();
