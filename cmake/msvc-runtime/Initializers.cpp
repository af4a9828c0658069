// Stands for the markers in the C run-time's start-up objects between which the linker puts the
// addresses of all initializers. It sorts the parts of the section by what follows the "$".
#include "Initializers.h"

#pragma section(".CRT$XCA", read)
#pragma section(".CRT$XCZ", read)
#pragma section(".CRT$XDA", read)
#pragma section(".CRT$XDZ", read)
#pragma comment(linker, "/merge:.CRT=.rdata")

extern "C" {
__declspec(allocate(".CRT$XCA")) extern const Procedure __xc_a[] = {nullptr};
__declspec(allocate(".CRT$XCZ")) extern const Procedure __xc_z[] = {nullptr};
__declspec(allocate(".CRT$XDA")) extern const Procedure __xd_a[] = {nullptr};
__declspec(allocate(".CRT$XDZ")) extern const Procedure __xd_z[] = {nullptr};
}

namespace {

/// Runs the functions of a list. The linker may leave gaps of zeros in it.
void run(const Procedure* first, const Procedure* last) {
    for (; first < last; ++first) {
        if (*first != nullptr) {
            (**first)();
        }
    }
}

} // namespace

void runInitializers() {
    run(__xc_a, __xc_z);
}

void runThreadInitializers() {
    run(__xd_a, __xd_z);
}
