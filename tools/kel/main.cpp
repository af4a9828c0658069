// kel: converts, shows and checks files of KEL values.

#include "Commands.h"
#include "Failure.h"
#include "FailureReport.h"
#include "system/System.h"

#include <string>
#include <vector>

namespace {

using namespace kel::tool;

int runTool(int argc, const char* const* argv, Console& console) {
    try {
        const std::variant<Options, Answer> asked = parseOptions(argumentsOf(argc, argv));
        if (const Answer* answer = std::get_if<Answer>(&asked)) {
            print(*answer);
            return 0;
        }
        return run(std::get<Options>(asked), console);
    } catch (...) {
        return exitStatus(reportFailure(console));
    }
}

} // namespace

int main(int argc, char** argv) {
    prepareProcess();
    Console console;
    const int status = runTool(argc, argv, console);
    // A warning that nobody can have read must not pass for success.
    const bool isUnsaid = status == 0 && !console.hasSaidAll();
    return isUnsaid ? exitStatus(Trouble::unwritten) : status;
}
