// The settings of an application: loaded, changed, and saved if they have changed.
//
//     settings FILE [SECTION.NAME=TEXT | open=FILE]...
//
// Takes over what fits of FILE, if it exists, and refuses the rest. Stores the values that are
// typed, and remembers the files that are opened. A damaged file is kept under another name. What
// another version of the program has added to the file remains in it.
#include <kel/kel.hpp>

#include <cstdio>
#include <stdexcept>

namespace {

constexpr int present_version = 2;
constexpr std::size_t most_recent = 3;

// The file is read and saved within the same limits, so whatever is saved can be loaded.
kel::limits allowed() {
    return kel::limits::strangers(kel::format::text);
}

kel::value make_settings() {
    const kel::checked sound({
        {"gain", kel::describe<double>().range(-60, 6).fallback(0).step(0.5).unit(" dB")},
        {"mode", kel::describe<std::string>().one_of({"mono", "stereo"}).fallback("stereo")},
        {"voices", kel::describe<int>().range(1, 16).fallback(8)},
    });
    const kel::checked window({
        {"width", kel::describe<int>().range(100, 10'000).fallback(800)},
        {"title", kel::describe<std::string>().longest(80).fallback("Untitled")},
    });
    return kel::object({{"sound", sound}, {"window", window}});
}

class settings_file {
public:
    explicit settings_file(std::string name) : name_(std::move(name)) {
        try {
            load(kel::load_struct_or(name_, kel::object(), allowed()));
        } catch (const kel::malformed& failure) {
            const std::string aside = kel::set_aside(name_); // which can fail, so it comes first
            std::printf("%s\nkept as %s\n", failure.what(), aside.c_str());
        }
        loaded_ = contents();
    }

    kel::value settings = make_settings();
    kel::value recent = kel::array();

    // Moves a file to the beginning of the list, or throws why it cannot be loaded from there.
    void remember(const std::string& file) {
        recent_file.read_text(file, "open");
        for (std::size_t i = recent.size(); i-- > 0;) {
            if (recent[i].get<std::string>() == file) {
                recent.erase_at(i);
            }
        }
        recent.insert(0, file);
        while (recent.size() > most_recent) {
            recent.erase_at(most_recent);
        }
    }

    // Saves only changes, so that two programs that look at their settings do not undo each
    // other's.
    bool save() {
        const kel::value present = contents();
        if (present == loaded_) {
            return false;
        }
        kel::save_atomically(present, name_, allowed());
        loaded_ = present;
        return true;
    }

private:
    const kel::variable_description recent_file = kel::describe<std::string>().longest(1000);

    void load(const kel::value& document) {
        const int version = document.get_or("version", 1);
        if (version > present_version) {
            throw std::runtime_error(name_ + " was written by a later version.");
        }
        kel::taken files = kel::take(document, "recent", recent_file, most_recent);
        recent = files.elements;
        mismatches_ = settings.merge(document);
        for (const auto* each : {&mismatches_, &files.mismatches}) {
            for (const kel::mismatch& one : *each) {
                if (!one.is_unknown && !one.is_missing) {
                    std::printf("%s: %s\n", name_.c_str(), one.message.c_str());
                }
            }
        }
    }

    // What is saved: what was chosen, without defaults and descriptions, and what is unknown.
    kel::value contents() const {
        kel::value saved = settings.stored_values();
        saved["version"] = present_version;
        saved["recent"] = recent.copy();
        kel::keep_unknown(saved, mismatches_);
        return saved;
    }

    std::string name_;
    std::vector<kel::mismatch> mismatches_;
    kel::value loaded_;
};

void show(const kel::value& settings) {
    for (const auto& [section, variables] : settings.items()) {
        for (const std::string& name : variables.names()) {
            const kel::checked inside(variables);
            std::printf("  %s.%s = %s%s\n", section.c_str(), name.c_str(),
                        kel::printable(inside.text(name)).c_str(),
                        inside.is_default(name) ? "   (default)" : "");
        }
    }
}

// Stores what a person has typed, or prints why it is not allowed.
void change(settings_file& file, const std::string& typed) {
    const std::size_t sign = typed.find('=');
    if (sign == std::string::npos) {
        throw std::runtime_error(typed + ": NAME=TEXT is needed.");
    }
    const std::string name = typed.substr(0, sign);
    const std::string text = typed.substr(sign + 1);
    // A double quote would make saving fail at the end, with all other changes.
    const std::vector<std::string> losses = kel::lost_in_text(text);
    if (!losses.empty()) {
        std::printf("  %s: %s.\n", kel::printable(name).c_str(), losses.front().c_str());
        return;
    }
    try {
        if (name == "open") {
            file.remember(text);
        } else {
            file.settings.at_path(name).set_text(text);
        }
    } catch (const kel::error& refused) { // an unknown name, or a value that is not allowed
        std::printf("  %s\n", refused.what());
    }
}

void run(const char* name, char** argument, char** end) {
    settings_file file(name);
    show(file.settings);
    for (; argument != end; ++argument) {
        std::printf("%s\n", *argument);
        change(file, *argument);
    }
    show(file.settings);
    for (const kel::value& each : file.recent.elements()) {
        std::printf("  recently %s\n", kel::printable(each.get<std::string>()).c_str());
    }
    std::printf(file.save() ? "saved\n" : "nothing to save\n");
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: settings FILE [SECTION.NAME=TEXT | open=FILE]...\n");
        return 2;
    }
    try {
        run(arguments[1], arguments + 2, arguments + count);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "settings: %s\n", failure.what());
        return 1;
    }
}
