#include "command/CommandModel.h"

#include "command/CommandLine.h"
#include "failures/LastResort.h"

#include <CLI/CLI.hpp>

namespace kel::tool {

namespace {

/// Returns the words of "text|binary|json", or nothing for the name of a value such as "SIZE".
std::vector<std::string> wordsOf(const std::string& type) {
    return type.find('|') == std::string::npos ? std::vector<std::string>()
                                               : CLI::detail::split(type, '|');
}

} // namespace

std::vector<OptionModel> optionsOf(const CommandEntry& entry) {
    CLI::App app(entry.purpose, entry.name);
    const std::unique_ptr<Command> command = entry.make();
    CommandLine line(app);
    CommonOptions common;
    command->describe(line);
    describeCommon(line, common);
    std::vector<OptionModel> models;
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional()) {
            continue;
        }
        OptionModel model;
        if (!option->get_snames().empty()) {
            model.shortName = '-' + option->get_snames().front();
        }
        if (!option->get_lnames().empty()) {
            model.longName = "--" + option->get_lnames().front();
        }
        model.purpose = option->get_description();
        model.takesValue = option->get_items_expected_max() > 0;
        model.words = wordsOf(option->get_type_name());
        models.push_back(std::move(model));
    }
    return models;
}

} // namespace kel::tool
