// Prints a generated JSON document of at least the given number of bytes. It is the same in every
// run.
#include "GeneratedDocument.h"

#include <cstdio>
#include <cstdlib>

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: kel_bench_document BYTES\n");
        return 2;
    }
    const std::string json = bench::makeMixture(std::strtoul(arguments[1], nullptr, 10), 1);
    const bool fine = std::fwrite(json.data(), 1, json.size(), stdout) == json.size();
    return fine && std::fflush(stdout) == 0 ? 0 : 1;
}
