// A panel in a terminal that is drawn from descriptions alone.
//
//     panel FILE [NAME+STEPS | NAME-STEPS]...
//
// FILE holds a checked struct that any program can have made: the panel knows none of its
// variables. It draws a slider for each range, a list for each choice and a switch for each truth
// value, moves the named controls, and draws again. A name without a number moves by one step.
#include <kel/kel.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

std::string slider(double place) {
    std::string bar(21, '-');
    bar[static_cast<std::size_t>(std::lround(place * 20))] = 'O';
    return bar;
}

std::string choices(const std::vector<std::string>& allowed, const std::string& chosen) {
    std::string list;
    for (const std::string& each : allowed) {
        list += (list.empty() ? "" : " ") + (each == chosen ? "(" + each + ")" : each);
    }
    return list;
}

void draw(const kel::checked& panel) {
    for (const std::string& name : panel.names()) {
        const kel::variable_description rules = panel.description(name);
        std::string control = panel.text(name);
        if (rules.least()) {
            control = slider(panel.normalised(name)) + ' ' + control;
        } else if (rules.kind() == kel::kind::boolean) {
            control = panel.normalised(name) > 0 ? "[x]" : "[ ]";
        } else if (panel.has_scale(name)) {
            control = choices(panel.choice_texts(name), control);
        }
        std::printf("%8s  %s\n", kel::printable(name).c_str(), kel::printable(control).c_str());
    }
}

void move(kel::checked& panel, const std::string& command) {
    const std::size_t sign = command.find_first_of("+-");
    const std::string name = command.substr(0, sign);
    const int steps = sign == std::string::npos ? 1 : std::atoi(command.c_str() + sign);
    panel.step_by(name, steps);
}

void run(const char* file, char** command, char** end) {
    kel::checked panel(kel::load(file));
    draw(panel);
    for (; command != end; ++command) {
        std::printf("\n%s\n", *command);
        move(panel, *command);
        draw(panel);
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: panel FILE [NAME+STEPS | NAME-STEPS]...\n");
        return 2;
    }
    try {
        run(arguments[1], arguments + 2, arguments + count);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "panel: %s\n", failure.what());
        return 1;
    }
}
