// Loads a value from a file, watches one of its parts, changes the part and saves everything.
//
//     watch IN OUT TEXT PATH
//
// PATH leads from the loaded value to the part, such as shelf[1].count. TEXT is converted into the
// part's kind.
#include <kel/kel.hpp>

#include <cstdio>
#include <iostream>

namespace {

void run(const char* in, const char* out, const char* text, const char* path) {
    const kel::value root = kel::load(in);
    kel::value part = root.at_path(path);
    std::cout << "found " << part << '\n';
    {
        const kel::subscription watching = kel::watch(
            part, [](const kel::value& now) { std::cout << "changed to " << now << '\n'; });
        part.assign_converted(text);
    } // here the subscription ends
    kel::save(root, out);
    std::cout << "saved " << out << '\n';
}

} // namespace

int main(int count, char** arguments) {
    if (count != 5) {
        std::fprintf(stderr, "usage: watch IN OUT TEXT PATH\n");
        return 2;
    }
    try {
        run(arguments[1], arguments[2], arguments[3], arguments[4]);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "watch: %s\n", failure.what());
        return 1;
    }
}
