// Prints how many bytes of resident memory one value takes, as lines "what library bytes". This is
// a separate program, so that nothing was allocated and freed before. For the same reason each
// figure is taken in a fresh child process.
#include <cstdio>
#include <fstream>
#include <kel/kel.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int32_t count = 2000000;

/// Returns the resident bytes of this process.
long residentBytes() {
    long total = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

/// Fills a container with count values in a child process and prints how much memory each of them
/// took.
/// \return whether the child succeeded
template <class Container, class Fill>
bool measure(const char* what, const char* library, Container (*create)(), Fill fill) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        Container container = create();
        const long before = residentBytes();
        for (int32_t i = 0; i < count; ++i) {
            fill(container, i);
        }
        const long taken = residentBytes() - before;
        std::printf("%s %s %.1f\n", what, library, static_cast<double>(taken) / count);
        std::fflush(stdout);
        _exit(taken > 0 ? 0 : 1);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

nlohmann::json newJsonArray() {
    return nlohmann::json::array();
}
KEL_Array* newKelArray() {
    return CreateKELArray();
}

} // namespace

int main() {
    using nlohmann::json;
    bool fine = measure("int_in_array", "KEL", newKelArray,
                        [](KEL_Array* array, int32_t i) { array->addInt(i); });
    fine &= measure("int_in_array", "nlohmann", newJsonArray,
                    [](json& array, int32_t i) { array.push_back(i); });
    fine &= measure("string_in_array", "KEL", newKelArray,
                    [](KEL_Array* array, int32_t) { array->addString("A string of 24 letters."); });
    fine &= measure("string_in_array", "nlohmann", newJsonArray,
                    [](json& array, int32_t) { array.push_back("A string of 24 letters."); });
    return fine ? 0 : 1;
}
