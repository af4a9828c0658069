/// \file
/// Random trees as a host makes them, for tests that use many at once.
#pragma once

#include <kel/kel.hpp>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace host {

/// The kinds of values in a tree: every one, or those that a format carries. Doubles are such that
/// text keeps them.
enum class Kinds { every, ofText, ofBinary };

/// Makes and changes trees that are the same for the same seed. One thread at a time uses it.
class RandomTrees {
public:
    explicit RandomTrees(uint64_t seed) : random_(seed) {}

    /// Returns a number from 0 to below limit.
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    /// Returns a struct of about this many values, some of which are shared.
    kel::value make(Kinds kinds, int values);

    /// Changes every scalar that is a variable of the root, and adds and removes some variables.
    /// \return the number of scalars that were changed in place
    int change(kel::value& root);

private:
    kel::value makeScalar(Kinds kinds);
    kel::value makeContainer(Kinds kinds);
    kel::value makeChecked();
    kel::value makeSelector(const kel::value& list);
    void put(kel::value& container, const kel::value& content);
    std::string makeText();

    std::mt19937_64 random_;
    int names_ = 0;
};

/// Returns the values that can be reached from the root, each once, root first. The keys and items
/// of index lists are among them, the lists of selectors are not.
std::vector<kel::value> valuesOf(const kel::value& root);

} // namespace host
