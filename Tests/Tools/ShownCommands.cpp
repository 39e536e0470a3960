// SPDX-License-Identifier: MIT
#include "ShownCommands.hpp"

#include <sstream>

namespace dorn::tool {

std::vector<ShownCommand> shownCommands(const std::string& page)
{
    const std::string indent = "    ";
    const std::string prompt = indent + "$ ";
    std::vector<ShownCommand> commands;
    bool isInside = false;
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(prompt)) {
            commands.push_back({line.substr(prompt.size()), ""});
            isInside = true;
        } else if (isInside && (line.starts_with(indent) || line.empty())) {
            commands.back().output += (line.empty() ? line : line.substr(indent.size())) + "\n";
        } else {
            isInside = false;
        }
    }
    for (ShownCommand& command : commands) {
        while (command.output.ends_with("\n\n") || command.output == "\n") { // the empty line behind the block
            command.output.pop_back();
        }
    }
    return commands;
}

} // namespace dorn::tool
