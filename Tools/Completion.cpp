// SPDX-License-Identifier: MIT
#include "Completion.hpp"

#include "Program.hpp"

#include <CLI/CLI.hpp>
#include <vector>

namespace dorn::tool {
namespace {

/// What can follow a command: "rad get" is followed by its options and what its values command lists.
struct Step {
    std::string command; ///< without "dorn"; empty for the program itself
    std::string words;
    std::string valueOptions; ///< options behind which a value stands
    std::string values;       ///< command that lists what the arguments can be
    unsigned files = 0;       ///< how many of the first arguments are files
    bool isRepeated = false;  ///< whether there can be several arguments
};

void addWord(std::string& words, const std::string& word)
{
    words += (words.empty() ? "" : " ") + word;
}

void addOption(const CLI::Option& option, Step& step)
{
    std::vector<std::string> names;
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    for (const std::string& name : option.get_snames()) {
        names.push_back("-" + name);
    }
    for (const std::string& name : names) {
        addWord(step.words, name);
        if (!isFlag(option)) {
            step.valueOptions += (step.valueOptions.empty() ? "" : "|") + name;
        }
    }
}

void collect(const Program& program, const CLI::App& command, const std::string& path, std::vector<Step>& steps)
{
    Step step{path, "", "", program.valuesOf(command), program.filesOf(command), false};
    const std::vector<const CLI::App*> followers = command.get_subcommands([](const CLI::App*) { return true; });
    for (const CLI::App* const follower : followers) {
        addWord(step.words, follower->get_name());
    }
    for (const CLI::Option* const option : command.get_options()) {
        if (option->nonpositional()) {
            addOption(*option, step);
        } else {
            step.isRepeated = step.isRepeated || option->get_expected_max() > 1;
        }
    }
    steps.push_back(step);
    for (const CLI::App* const follower : followers) {
        collect(program, *follower, path + (path.empty() ? "" : " ") + follower->get_name(), steps);
    }
}

std::string caseOf(const Step& step)
{
    std::string text = "    \"" + step.command + "\")\n";
    if (!step.valueOptions.empty()) {
        text += "        case \"$previous\" in " + step.valueOptions + ") return ;; esac\n";
    }
    text += "        words=\"" + step.words + "\"\n";
    if (step.files != 0) {
        const std::string count = std::to_string(step.files);
        text += "        [ \"$arguments\" -ge " + count + " ] || areFiles=1\n";
        text += "        [ \"$arguments\" -ne " + count + " ] || values=\"" + step.values + "\"\n";
    } else if (!step.values.empty()) {
        const std::string condition = step.isRepeated ? "" : "[ \"$arguments\" -gt 0 ] || ";
        text += "        " + condition + "values=\"" + step.values + "\"\n        first=\"\"\n";
    }
    return text + "        ;;\n";
}

constexpr const char* begin = R"bash(_dorn()
{
    local current="${COMP_WORDS[COMP_CWORD]}" previous="${COMP_WORDS[COMP_CWORD-1]}"
    local command="" words="" values="" word="" first="" areFiles="" arguments=0
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case "${command:+$command }$word" in
)bash";

constexpr const char* middle = R"bash(        *" -"*) ;;
        *) arguments=$((arguments + 1)); [ "$arguments" -gt 1 ] || first="$word" ;;
        esac
    done
    case "$command" in
)bash";

// What the node calls its things is data: it is compared and quoted, never evaluated.
constexpr const char* end = R"bash(    esac
    COMPREPLY=()
    if [[ -n "$values" && "$current" != -* ]]; then
        while IFS= read -r word; do
            if [[ -n "$word" && "$word" == "$current"* ]]; then
                COMPREPLY+=("$(printf '%q' "$word")")
            fi
        done <<< "$($values ${first:+"$first"} 2>/dev/null)"
    elif [[ -n "$areFiles" && "$current" != -* ]]; then
        compopt -o filenames 2>/dev/null
        while IFS= read -r word; do
            [[ -z "$word" ]] || COMPREPLY+=("$word")
        done <<< "$(compgen -f -- "$current")"
    else
        COMPREPLY=($(compgen -W "$words" -- "$current"))
    fi
}
complete -F _dorn dorn
)bash";

} // namespace

std::string bashCompletion(const Program& program)
{
    std::vector<Step> steps;
    collect(program, program.commandLine(), "", steps);
    std::string commands;
    std::string cases;
    for (const Step& step : steps) {
        if (!step.command.empty()) {
            commands += (commands.empty() ? "        " : " | ") + ("\"" + step.command + "\"");
        }
        cases += caseOf(step);
    }
    return "# Completion of the command dorn for bash: eval \"$(dorn completion bash)\"\n" + std::string(begin) +
           commands + ") command=\"${command:+$command }$word\" ;;\n" + middle + cases + end;
}

std::string zshCompletion(const Program& program)
{
    return "# Completion of the command dorn for zsh: eval \"$(dorn completion zsh)\"\n"
           "autoload -U +X compinit && compinit\n"
           "autoload -U +X bashcompinit && bashcompinit\n" +
           bashCompletion(program);
}

std::string zshCompletionFunction(const Program& program)
{
    // Loaded for the first completion, which it then is to do itself.
    return "#compdef dorn\nautoload -U +X bashcompinit && bashcompinit\n" + bashCompletion(program) +
           "_bash_complete -F _dorn\n";
}

} // namespace dorn::tool
