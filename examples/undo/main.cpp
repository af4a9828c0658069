// An application's settings with undo and redo.
//
//     undo FILE COMMAND...
//
// Commands: NAME=TEXT changes a setting, undo and redo go through the changes. What fits of FILE is
// loaded if it exists, and the settings are saved there in the end.
#include <kel/kel.hpp>

#include <cstdio>
#include <stdexcept>

namespace {

// The file is read and saved within the same limits.
kel::limits allowed() {
    return kel::limits::strangers(kel::format::text);
}

void change(kel::checked& settings, const std::string& command) {
    const std::size_t sign = command.find('=');
    if (sign == std::string::npos) {
        throw std::runtime_error(command + ": NAME=TEXT, undo or redo is needed.");
    }
    const kel::outcome done =
        settings.try_set_text(command.substr(0, sign), command.substr(sign + 1));
    if (!done) {
        std::printf("  %s\n", done.message().c_str());
    }
}

void run(const char* file, char** command, char** end) {
    kel::checked settings({{"volume", kel::describe<int>().range(0, 10).fallback(5)},
                           {"width", kel::describe<int>().range(100, 10'000).fallback(640)}});
    for (const kel::mismatch& each : kel::load_into_if_exists(settings, file, allowed())) {
        std::printf("%s: %s\n", file, each.message.c_str());
    }
    kel::history changes(settings);
    for (; command != end; ++command) {
        const std::string text = *command;
        std::printf("%s\n", text.c_str());
        if (text == "undo" || text == "redo") {
            if (!(text == "undo" ? changes.undo() : changes.redo())) {
                std::printf("  nothing to %s\n", text.c_str());
            }
        } else {
            change(settings, text);
            changes.remember();
        }
        for (const std::string& name : settings.names()) {
            std::printf("  %s = %s\n", name.c_str(), settings.text(name).c_str());
        }
    }
    kel::save_atomically(settings.stored_values(), file, allowed());
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: undo FILE COMMAND...\n");
        return 2;
    }
    try {
        run(arguments[1], arguments + 2, arguments + count);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "undo: %s\n", failure.what());
        return 1;
    }
}
