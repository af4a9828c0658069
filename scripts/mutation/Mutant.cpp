#include "platform/Mutant.h"

#include "platform/Store.h"

#include <cstdlib>

int kel_mutant_active = -1;
unsigned char kel_mutant_reached[1 << 16];
bool kel_uses_malloc = false;

/// Runs before all other initialization, so that this is mutated too.
[[gnu::constructor(101)]] static void readMutant() {
    if (const char* number = std::getenv("KEL_MUTANT")) {
        kel_mutant_active = std::atoi(number);
    }
    kel_uses_malloc = std::getenv("KEL_MALLOC") != nullptr;
}
