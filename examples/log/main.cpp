// A log: a text file to which each run appends root values, and a search through them.
//
//     log FILE add SOURCE LEVEL MESSAGE     appends an entry
//     log FILE from LEVEL                   shows the entries of this level and above
//
// The reader makes one entry at a time, so a long log needs little memory beside its text.
#include <kel/kel.hpp>

#include <cstdio>
#include <cstdlib>
#include <map>

namespace {

void add(const char* file, const char* source, int level, const char* message) {
    kel::append(kel::object({{"level", level}, {"source", source}, {"message", message}}), file);
}

void show(const char* file, int least) {
    std::map<std::string, int> counts;
    for (const kel::value& entry : kel::reader(file)) {
        const int level = entry.get_or("level", 0);
        const std::string source = entry.get_or("source", "?");
        ++counts[source];
        if (level >= least) {
            std::printf("%d %-6s %s\n", level, source.c_str(), entry.get_or("message", "").c_str());
        }
    }
    for (const auto& [source, count] : counts) {
        std::printf("%s: %d entries\n", source.c_str(), count);
    }
}

} // namespace

int main(int count, char** arguments) {
    const std::string verb = count < 4 ? "" : arguments[2];
    if (!(verb == "add" && count == 6) && !(verb == "from" && count == 4)) {
        std::fprintf(stderr, "usage: log FILE add SOURCE LEVEL MESSAGE | log FILE from LEVEL\n");
        return 2;
    }
    try {
        if (verb == "add") {
            add(arguments[1], arguments[3], std::atoi(arguments[4]), arguments[5]);
        } else {
            show(arguments[1], std::atoi(arguments[3]));
        }
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "log: %s\n", failure.what());
        return 1;
    }
}
