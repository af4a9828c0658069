/// \file
/// Random trees of values, the same for the same seed.
#pragma once

#include "values/KEL_Impl.h"

#include <cstdint>
#include <string>

namespace kel::test {

/// Values that random trees can hold besides Ints, Booleans, Strings, Doubles, arrays and structs.
/// Names and strings are often awkward: keywords, numbers, brackets, line ends, bytes above 127.
struct RandomTreeOptions {
    int maxValues = 30;        ///< the greatest number of values
    bool memBlocks = true;     ///< memory blocks
    bool guids = true;         ///< guids
    bool managers = true;      ///< managers
    bool quotes = true;        ///< strings with a double quote
    bool anyDoubles = true;    ///< every double; else whole millionths with an integer part that 32
                               ///< bits hold
    bool sharing = true;       ///< values that are in several places
    bool cycles = false;       ///< values that contain themselves; the test takes them apart
    bool nullVariables = true; ///< struct variables without a value
    bool lists = false;        ///< index lists
    bool metas = false;        ///< checked structs, struct descriptors and variable descriptors
    bool selectors = false;    ///< selectors and multi-selectors over lists of their own or of the
                               ///< tree
};

/// Random numbers that are the same with every standard library.
class RandomNumbers {
public:
    explicit RandomNumbers(uint64_t seed) : state_(seed) {}

    /// Returns any 64 bits.
    uint64_t next();

    /// Returns a number from 0 to below limit, which is above 0.
    int below(std::size_t limit) { return static_cast<int>(next() % limit); }

    /// Returns true in one of `times` cases on average.
    bool once(int times) { return below(static_cast<std::size_t>(times)) == 0; }

    JHashCode hashCode();

private:
    uint64_t state_;
};

/// Returns the tree of this seed, owned by the caller.
KEL_Impl* randomTree(uint64_t seed, const RandomTreeOptions& options = {});

/// Returns a name for a struct variable. It is not empty and has no double quote.
std::string randomName(RandomNumbers& numbers);

/// Returns a text without a NUL. The text can be empty.
std::string randomText(RandomNumbers& numbers, bool quotes);

/// Returns a double of the kind that the option selects.
double randomDouble(RandomNumbers& numbers, bool any);

/// Changes the value so that it no longer equals its former self. \return false if it has nothing
/// to change (a memory block without bytes)
bool changeValue(KEL_Impl& value);

/// Describes the tree in a few words for the message of a failed test: kinds and contents, nested
/// in brackets.
std::string describe(const KEL_Impl& root);

} // namespace kel::test
