// An application's settings with undo and redo.
//
//     undo FILE COMMAND...
//
// Commands: NAME=NUMBER changes a setting, undo and redo go through the changes. The settings are
// loaded from FILE if it exists, and saved there in the end.
#include <kel/kel.hpp>

#include <cstdio>
#include <cstdlib>

namespace {

// Remembers every state of a document. A state is a copy, so nothing that happens to the document
// later can change it.
class history {
public:
    explicit history(kel::value document) : document_(std::move(document)) { remember(); }

    // Keeps the present state, and forgets the states that were undone.
    void remember() {
        states_.resize(states_.empty() ? 0 : present_ + 1);
        states_.push_back(document_.copy());
        present_ = states_.size() - 1;
    }
    bool undo() { return present_ > 0 && go_to(present_ - 1); }
    bool redo() { return present_ + 1 < states_.size() && go_to(present_ + 1); }

private:
    // restore changes the document in place, so whoever watches a part of it sees the change.
    bool go_to(std::size_t state) {
        present_ = state;
        document_.restore(states_[state]);
        return true;
    }

    kel::value document_;
    std::vector<kel::value> states_;
    std::size_t present_ = 0;
};

void run(const char* file, char** command, char** end) {
    kel::value settings = kel::load_struct_or(file, kel::object({{"volume", 5}, {"width", 640}}));
    history changes(settings);
    for (; command != end; ++command) {
        const std::string text = *command;
        std::printf("%s\n", text.c_str());
        if (text == "undo" || text == "redo") {
            if (!(text == "undo" ? changes.undo() : changes.redo())) {
                std::printf("  nothing to %s\n", text.c_str());
            }
        } else {
            const std::size_t sign = text.find('=');
            settings.set(text.substr(0, sign),
                         sign == std::string::npos ? 0 : std::atoi(text.c_str() + sign + 1));
            changes.remember();
        }
        for (const auto& [name, content] : settings.items()) {
            std::printf("  %s = %d\n", name.c_str(), content.get<int>());
        }
    }
    kel::save_atomically(settings, file);
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
