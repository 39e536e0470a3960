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
        if (option.get_type_size() != 0) {
            step.valueOptions += (step.valueOptions.empty() ? "" : "|") + name;
        }
    }
}

void collect(const Program& program, const CLI::App& command, const std::string& path, std::vector<Step>& steps)
{
    Step step{path, "", "", program.valuesOf(command)};
    const std::vector<const CLI::App*> followers = command.get_subcommands([](const CLI::App*) { return true; });
    for (const CLI::App* const follower : followers) {
        addWord(step.words, follower->get_name());
    }
    for (const CLI::Option* const option : command.get_options()) {
        if (option->nonpositional()) {
            addOption(*option, step);
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
    if (!step.values.empty()) {
        text += "        values=\"" + step.values + "\"\n";
    }
    return text + "        ;;\n";
}

constexpr const char* begin = R"(_dorn()
{
    local current="${COMP_WORDS[COMP_CWORD]}" previous="${COMP_WORDS[COMP_CWORD-1]}"
    local command="" words="" values="" word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case "${command:+$command }$word" in
)";

constexpr const char* middle = R"(        esac
    done
    case "$command" in
)";

constexpr const char* end = R"(    esac
    local IFS=$'\n'
    COMPREPLY=($(compgen -W "${words// /$'\n'}" -- "$current"))
    if [[ -n "$values" && "$current" != -* ]]; then
        IFS=' '
        values="$($values 2>/dev/null)"
        IFS=$'\n'
        COMPREPLY=($(compgen -W "$values" -- "$current"))
    fi
}
complete -F _dorn dorn
)";

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

} // namespace dorn::tool
