/// \file
/// Runs a row undisturbed, with every allocation failing, and with every observer throwing.
#pragma once

#include "atomicity/Row.h"

namespace kel::test {

/// The counts for the report.
struct Tally {
    int rows = 0;
    int failedAllocations = 0;
    int throwingObservers = 0;
};

/// Runs the row. \return the promises that its call breaks; empty if all hold
std::vector<std::string> complaintsAbout(const Row& row, Tally& tally);

} // namespace kel::test
