// kel: converts, shows and checks files of KEL values.

#include "Commands.h"
#include "Failure.h"
#include "system/System.h"

#include <kel/KELException.h>
#include <new>
#include <string>
#include <vector>

namespace {

using namespace kel::tool;

int runTool(const std::vector<std::string>& arguments, Console& console) {
    try {
        const std::variant<Options, Answer> asked = parseOptions(arguments);
        if (const Answer* answer = std::get_if<Answer>(&asked)) {
            print(*answer);
            return 0;
        }
        return run(std::get<Options>(asked), console);
    } catch (const Failure& failure) {
        console.say(failure.message);
        return exitStatus(failure.trouble);
    } catch (const std::bad_alloc&) {
        console.say("out of memory");
        return exitStatus(Trouble::unwritten);
    } catch (KELException* failure) {
        console.say(failure->getMessage());
        DeleteKELException(failure);
        return exitStatus(Trouble::unwritten);
    }
}

} // namespace

int main(int argc, char** argv) {
    prepareProcess();
    Console console;
    return runTool(argumentsOf(argc, argv), console);
}
