// Sequences of host calls. The input is a script of calls on eight variables. A model has the
// contents, the reference counts and the observers that every value must have after each call.
#include "calls/Calls.h"

using namespace kel::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr int mostCalls = 150;
    Script script(data, size);
    Calls calls(script);
    if (script.below(4) != 0) {
        calls.begin();
    }
    for (int i = 0; i < mostCalls && !script.isAtEnd(); ++i) {
        calls.next();
    }
    calls.finish();
    return 0;
}
