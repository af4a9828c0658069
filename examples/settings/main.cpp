// Settings with descriptions of their allowed values.
//
//     settings IN OUT
//
// Describes a few settings, takes over those of the text file IN, refuses values that are not
// allowed, lets the user choose a mode by its title, and saves everything in OUT.
#include <kel/kel.hpp>

#include <cstdio>

namespace {

// A file shows the identity of the description that it was saved with.
kel::checked make_settings() {
    const kel::guid identity(0x4B454C01, 0, 0, 1);
    return kel::checked(
        {
            {"gain", kel::describe<double>().range(-60, 6).fallback(0).step(0.5).unit(" dB")},
            {"mode", kel::describe<std::string>()
                         .one_of({"mono", "stereo", "surround"})
                         .fallback("stereo")
                         .prefix("play in ")},
            {"voices", kel::describe<int>().range(1, 16).fallback(8)},
        },
        identity);
}

void show(const kel::checked& settings) {
    for (const std::string& name : settings.names()) {
        std::printf("  %-7s%s%s\n", name.c_str(), settings.text(name).c_str(),
                    settings.is_default(name) ? "   (default)" : "");
    }
}

// Stores one value, or says why it is not allowed.
void take(kel::checked& settings, const std::string& name, const kel::value& content) {
    const kel::outcome done = settings.try_set(name, content);
    std::printf("  %s\n",
                done ? (name + " becomes " + settings.text(name)).c_str() : done.message().c_str());
}

// A menu shows the titles; the setting takes the mode beside the chosen one.
std::string mode_of(const std::string& title) {
    const kel::value modes = kel::object(
        {{"One speaker", "mono"}, {"Two speakers", "stereo"}, {"All around", "surround"}});
    return modes[title].get<std::string>();
}

void run(const char* in, const char* out) {
    kel::checked settings = make_settings();
    std::printf("At first:\n");
    show(settings);

    // A panel would redraw itself here.
    const kel::subscription drawn = kel::watch(
        settings, [](const kel::value&) { std::printf("  (the settings have changed)\n"); });

    // The settings in a file are a plain struct: anybody can have written it.
    std::printf("Loading %s:\n", in);
    for (const auto& [name, content] : kel::load(in).items()) {
        take(settings, name, content);
    }
    std::printf("Choosing a mode:\n");
    take(settings, "mode", mode_of("All around"));

    std::printf("In the end:\n");
    show(settings);
    kel::save_atomically(settings, out);
    std::printf("saved %s\n", out);
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: settings IN OUT\n");
        return 2;
    }
    try {
        run(arguments[1], arguments[2]);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "settings: %s\n", failure.what());
        return 1;
    }
}
