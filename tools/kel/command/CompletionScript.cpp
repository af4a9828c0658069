#include "command/CompletionScript.h"

#include "command/CommandModel.h"
#include "command/CommandTable.h"
#include "failures/Failure.h"

namespace kel::tool {

namespace {

/// Returns the texts with the separator between them.
std::string joined(const std::vector<std::string>& texts, const char* separator) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : separator) + text;
    }
    return all;
}

/// Returns the names of all commands.
std::vector<std::string> commandNames() {
    std::vector<std::string> names;
    for (const CommandEntry* entry : allCommands()) {
        names.emplace_back(entry->name);
    }
    return names;
}

/// Returns the words that can stand in the first place after the command's name.
std::vector<std::string> firstWordsOf(std::string_view command) {
    if (command == "help") {
        return commandNames();
    }
    if (command == "completion") {
        return {"bash", "zsh", "fish"};
    }
    return {};
}

/// Returns the text in single quotes of a shell.
std::string inSingleQuotes(const std::string& text) {
    std::string out = "'";
    for (const char c : text) {
        // not reached: no text of an option has a single quote so far
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return out + '\'';
}

std::string bashScript() {
    std::string values;
    std::string options;
    std::string words;
    const auto choice = [](const std::string& when, const std::vector<std::string>& choices) {
        return "        " + when + ") words=" + inSingleQuotes(joined(choices, " ")) + " ;;\n";
    };
    for (const CommandEntry* entry : allCommands()) {
        std::vector<std::string> names;
        for (const OptionModel& option : optionsOf(*entry)) {
            for (const std::string& name : {option.shortName, option.longName}) {
                if (name.empty()) {
                    continue;
                }
                names.push_back(name);
                if (!option.words.empty()) {
                    values += choice(std::string(entry->name) + '/' + name, option.words);
                }
            }
        }
        options += choice(entry->name, names);
        if (const auto first = firstWordsOf(entry->name); !first.empty()) {
            words += choice(entry->name, first);
        }
    }
    return R"(# Completes the command lines of kel in bash.
_kel() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    local command=${COMP_WORDS[1]} words=
    COMPREPLY=()
    if [ "$COMP_CWORD" = 1 ]; then
        COMPREPLY=($(compgen -W ')" +
           joined(commandNames(), " ") + R"( --help --version' -- "$current"))
        return
    fi
    case $command/$previous in
)" + values +
           R"(        *) case $current in
        -*) case $command in
)" + options +
           R"(        esac ;;
        *) case $command in
)" + words +
           R"(        esac ;;
        esac ;;
    esac
    if [ -n "$words" ]; then
        COMPREPLY=($(compgen -W "$words" -- "$current"))
    fi
}
complete -o default -F _kel kel
)";
}

/// Returns the text without the characters that zsh would not take as they are in the description
/// of an option.
std::string zshText(const std::string& text) {
    std::string out;
    for (const char c : text) {
        // not reached: no text of an option has brackets or backslashes so far
        out += std::string(c == '[' || c == ']' || c == ':' || c == '\\' ? "\\" : "") + c;
    }
    return out;
}

std::string zshScript() {
    std::string names;
    std::string cases;
    for (const CommandEntry* entry : allCommands()) {
        names += "        " +
                 inSingleQuotes(std::string(entry->name) + ':' + zshText(entry->purpose)) + '\n';
        cases += std::string("    ") + entry->name + ")\n        _arguments";
        for (const OptionModel& option : optionsOf(*entry)) {
            for (const std::string& name : {option.shortName, option.longName}) {
                if (name.empty()) {
                    continue;
                }
                std::string form = name + '[' + zshText(option.purpose) + ']';
                if (!option.words.empty()) {
                    form += ":value:(" + joined(option.words, " ") + ')';
                } else if (option.takesValue) {
                    form += ":value:";
                }
                cases += " \\\n            " + inSingleQuotes(form);
            }
        }
        const std::vector<std::string> words = firstWordsOf(entry->name);
        cases += " \\\n            " +
                 inSingleQuotes(words.empty() ? "*:file:_files"
                                              : "1:word:(" + joined(words, " ") + ')') +
                 " ;;\n";
    }
    return R"(#compdef kel
# Completes the command lines of kel in zsh.
_kel() {
    local -a commands=(
)" + names +
           R"(    )
    if (( CURRENT == 2 )); then
        _describe command commands
        return
    fi
    local command=$words[2]
    shift words
    (( CURRENT-- ))
    case $command in
)" + cases +
           R"(    esac
}
if [ "$funcstack[1]" = _kel ]; then
    _kel "$@"
else
    compdef _kel kel
fi
)";
}

std::string fishScript() {
    std::string script = "# Completes the command lines of kel in fish.\n";
    for (const CommandEntry* entry : allCommands()) {
        script += "complete -c kel -n __fish_use_subcommand -f -a " + std::string(entry->name) +
                  " -d " + inSingleQuotes(entry->purpose) + '\n';
    }
    for (const CommandEntry* entry : allCommands()) {
        const std::string lead =
            "complete -c kel -n '__fish_seen_subcommand_from " + std::string(entry->name) + "' ";
        if (const auto words = firstWordsOf(entry->name); !words.empty()) {
            script += lead + "-f -a " + inSingleQuotes(joined(words, " ")) + '\n';
        }
        for (const OptionModel& option : optionsOf(*entry)) {
            script += lead;
            if (!option.shortName.empty()) {
                script += "-s " + option.shortName.substr(1) + ' ';
            }
            if (!option.longName.empty()) {
                script += "-l " + option.longName.substr(2) + ' ';
            }
            if (!option.words.empty()) {
                script += "-x -a " + inSingleQuotes(joined(option.words, " ")) + ' ';
            } else if (option.takesValue) {
                script += "-r ";
            }
            script += "-d " + inSingleQuotes(option.purpose) + '\n';
        }
    }
    return script;
}

} // namespace

std::string completionScript(const std::string& shell) {
    if (shell == "bash") {
        return bashScript();
    }
    if (shell == "zsh") {
        return zshScript();
    }
    if (shell == "fish") {
        return fishScript();
    }
    throw Failure{Trouble::usage, '"' + shell + "\" is not bash, zsh or fish"};
}

} // namespace kel::tool
