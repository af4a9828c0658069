/// \file
/// Builds trees of values with a certain shape, and inspects a tree from outside.
#pragma once

#include "support/Held.h"
#include "values/KEL_Array_Impl.h"

#include <vector>

namespace kel::test {

/// The number of levels in the tests of depth. A call for each of them would overflow any stack.
inline constexpr int million = 1000000;

/// Returns an Int inside the given number of arrays, each the only element of the next. The caller
/// owns the result, here and below.
KEL_Impl* nestedArrays(int levels);

/// Returns an Int inside the given number of structs, each the only variable, "inner", of the next.
KEL_Impl* nestedStructs(int levels);

/// Returns the same with alternating arrays, structs and managers.
KEL_Impl* nestedMixed(int levels);

/// Returns an Int inside arrays that each hold the one below twice. The result has levels + 1
/// values, and 2 to the power of levels paths.
KEL_Impl* doublingChain(int levels);

/// Returns the given number of arrays. Each is the only element of the one before, and the first is
/// the only element of the last.
std::vector<Held<KEL_Array_Impl>> ring(std::size_t length);

/// Returns an array that contains itself and that nobody else holds, borrowed.
KEL_Array_Impl* selfHeld();

/// Returns levels of arrays that each hold a variable descriptor and the struct inside it. The only
/// variable of that struct is the level below. Two paths lead to every level, although no array is
/// shared.
KEL_Impl* chainOfInnerStructs(int levels);

/// Returns the distinct values that can be reached from root, root first.
std::vector<KEL_Impl*> valuesOf(KEL_Impl& root, bool insideManagers = true);

/// Empties every container that can be reached from root, so that values that contain themselves
/// release each other.
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
