/// \file
/// Trees of values with a certain shape, and looking at a tree from outside.
#pragma once

#include "values/KEL_Impl.h"

#include <vector>

namespace kel::test {

/// An Int inside so many arrays, each the only element of the next. Owned by the caller, like all
/// that follows.
KEL_Impl* nestedArrays(int levels);

/// An Int inside so many structs, each the only variable, "inner", of the next.
KEL_Impl* nestedStructs(int levels);

/// The same in turns of array, struct and manager.
KEL_Impl* nestedMixed(int levels);

/// An Int inside arrays that each hold the one below twice: 2 to the levels paths, levels + 1
/// values.
KEL_Impl* doublingChain(int levels);

/// The distinct values that can be reached from root, root first.
std::vector<KEL_Impl*> valuesOf(KEL_Impl& root, bool insideManagers = true);

/// Empties every container that can be reached from root, so that values that contain themselves
/// let go of each other.
void takeApart(KEL_Impl& root);

/// Takes values apart at the end of the scope.
class TakeApart {
public:
    explicit TakeApart(KEL* root) : root_(JPointer<KEL_Impl>::share(KEL_Impl::of(root))) {}
    TakeApart(const TakeApart&) = delete;
    TakeApart& operator=(const TakeApart&) = delete;
    ~TakeApart() { takeApart(*root_); }

private:
    JPointer<KEL_Impl> root_;
};

} // namespace kel::test
