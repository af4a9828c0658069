// kel: works with files of KEL values.

#include "command/Request.h"
#include "document/Saving.h"
#include "failures/Failure.h"
#include "failures/FailureReport.h"
#include "system/OutputFile.h"
#include "system/System.h"

#include <string>
#include <vector>

namespace {

using namespace kel::tool;

/// Runs the command. \return the exit status
int run(const Request& request, Console& console) {
    if (request.common.maxMemory) {
        // not reached: every POSIX system limits memory
        if (!limitMemory(*request.common.maxMemory)) {
            throw Failure{Trouble::usage,
                          "--max-memory: kel cannot limit its memory on this system"};
        }
        console.knowMemoryLimit();
    }
    console.choose(request.common.colours);
    if (request.common.isQuiet) {
        console.beQuiet();
    }
    return request.command->run(console);
}

int runTool(int argc, const char* const* argv, Console& console) {
    try {
        const std::variant<Request, Answer> asked = parseRequest(argumentsOf(argc, argv));
        if (const Answer* answer = std::get_if<Answer>(&asked)) {
            print(*answer);
            OutputFile::closeStdout();
            return 0;
        }
        const int status = run(std::get<Request>(asked), console);
        OutputFile::closeStdout();
        return status;
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
