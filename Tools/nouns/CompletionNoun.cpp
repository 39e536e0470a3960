// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Completion.hpp"
#include "Program.hpp"

#include <CLI/CLI.hpp>

namespace dorn::tool {

void addCompletionNoun(Program& program)
{
    CLI::App& noun = program.addNoun("completion", "Completion of this command in a shell");
    program.addVerb(noun, {"bash", "Prints the script for bash", "eval \"$(dorn completion bash)\""},
                    [&program](Console& console) {
                        console.print(bashCompletion(program));
                        return Outcome::Fine;
                    });
    program.addVerb(noun, {"zsh", "Prints the script for zsh", "eval \"$(dorn completion zsh)\""},
                    [&program](Console& console) {
                        console.print(zshCompletion(program));
                        return Outcome::Fine;
                    });
}

} // namespace dorn::tool
