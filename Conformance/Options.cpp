// SPDX-License-Identifier: MIT
#include "Options.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <span>
#include <string_view>

namespace dorn::conformance {
namespace {

Options& theOptions()
{
    static Options instance;
    return instance;
}

std::uint64_t numberOf(const std::string& text, std::uint64_t greatest)
{
    char* end = nullptr;
    errno = 0;
    const std::uint64_t number = std::strtoull(text.c_str(), &end, 0);
    if (text.empty() || text.front() == '-' || *end != '\0' || errno != 0 || number > greatest) {
        throw WrongUse("'" + text + "' is not a number from 0 to " + std::to_string(greatest));
    }
    return number;
}

std::uint32_t wordOf(const std::string& text)
{
    return static_cast<std::uint32_t>(numberOf(text, UINT32_MAX));
}

RapidIoPlace placeOf(const std::string& text)
{
    const std::size_t first = text.find(':');
    const std::size_t second = text.find(':', first + 1);
    if (first == std::string::npos || second == std::string::npos) {
        throw WrongUse("'" + text + "' is not PORT:DEVICE:ADDRESS");
    }
    return {wordOf(text.substr(0, first)),
            static_cast<std::uint16_t>(numberOf(text.substr(first + 1, second - first - 1), UINT16_MAX)),
            numberOf(text.substr(second + 1), UINT64_MAX)};
}

/// An option of the command line: with a value if @c value names one.
struct Option {
    std::string_view name;
    std::string_view value;
    std::string_view help;
    void (*take)(Options& options, const std::string& value);
};

constexpr std::array optionTable{
    Option{"--list", "", "print every rule with its id, header and functions, and try none",
           [](Options& options, const std::string&) { options.isList = true; }},
    Option{"--function", "NAME", "only the rules that exercise this function",
           [](Options& options, const std::string& value) { options.function = value; }},
    Option{"--destructive", "", "also the rules that flash, overwrite device memory or reset the unit",
           [](Options& options, const std::string&) { options.isDestructive = true; }},
    Option{"--bound", "SECONDS", "how long to wait for what must happen (10)",
           [](Options& options, const std::string& value) {
               options.bound = std::chrono::seconds(std::max<std::uint64_t>(numberOf(value, 3600), 1));
           }},
    Option{"--directory", "PATH", "a directory of the target to write in (/tmp/dorn-conformance)",
           [](Options& options, const std::string& value) { options.directory = value; }},
    Option{
        "--end-signal", "NUMBER", "the signal that asks a process to end (15); 0: there is none",
        [](Options& options, const std::string& value) { options.endSignal = static_cast<int>(numberOf(value, 64)); }},
    Option{"--tag-file", "PATH", "a configuration file of your platform that is to be read without fault",
           [](Options& options, const std::string& value) { options.tagFile = value; }},
    Option{"--collect", "COMMAND", "the shell command that gathers troubleshooting files",
           [](Options& options, const std::string& value) { options.collect = value; }},
    Option{"--rio", "PORT:DEVICE:ADDRESS", "256 bytes of a RapidIO device's memory; written with --destructive only",
           [](Options& options, const std::string& value) { options.rapidIo = placeOf(value); }},
    Option{"--fpga", "ID", "an FPGA that the board has",
           [](Options& options, const std::string& value) { options.fpga = wordOf(value); }},
    Option{"--file-system", "NUMBER", "a flash file system that the board has",
           [](Options& options, const std::string& value) { options.fileSystem = wordOf(value); }},
    Option{"--boot-image", "PATH", "a boot loader to flash; with --destructive",
           [](Options& options, const std::string& value) { options.bootImage = value; }},
    Option{"--fpga-image", "PATH", "an image to flash into the primary slot of --fpga; with --destructive",
           [](Options& options, const std::string& value) { options.fpgaImage = value; }},
    Option{"--verbose", "", "show what providers print, not only for broken rules",
           [](Options& options, const std::string&) { options.isVerbose = true; }},
    Option{"--here", "", "try the rules in this one process, for a debugger",
           [](Options& options, const std::string&) { options.isHere = true; }},
    Option{"--help", "", "print this text", [](Options& options, const std::string&) { options.isHelp = true; }},
};

/// Options between the suite and the processes that it starts.
constexpr std::array innerTable{
    Option{"--rule", "ID", "", [](Options& options, const std::string& value) { options.rule = value; }},
    Option{
        "--report", "DESCRIPTOR", "",
        [](Options& options, const std::string& value) { options.report = static_cast<int>(numberOf(value, 4096)); }},
};

const Option* findOption(std::string_view name)
{
    for (const std::span<const Option> table :
         {std::span<const Option>(optionTable), std::span<const Option>(innerTable)}) {
        const auto found = std::ranges::find(table, name, &Option::name);
        if (found != table.end()) {
            return &*found;
        }
    }
    return nullptr;
}

} // namespace

const Options& options()
{
    return theOptions();
}

void readOptions(int argc, char** argv)
{
    Options read;
    for (int index = 1; index < argc; ++index) {
        const std::string word = argv[index];
        if (word == "--role" && index + 1 < argc) {
            read.role = argv[index + 1];
            read.roleArguments.assign(argv + index + 2, argv + argc);
            break;
        }
        read.arguments.push_back(word);
        if (!word.starts_with("--")) {
            read.patterns.push_back(word);
            continue;
        }
        const Option* const option = findOption(word);
        if (!option) {
            throw WrongUse("there is no option '" + word + "'");
        }
        if (!option->value.empty() && ++index == argc) {
            throw WrongUse(word + " wants " + std::string(option->value));
        }
        const std::string value = option->value.empty() ? "" : argv[index];
        if (!option->value.empty()) {
            read.arguments.push_back(value);
        }
        option->take(read, value);
    }
    theOptions() = std::move(read);
}

std::string helpText(const std::string& program)
{
    constexpr std::size_t column = 29;
    std::string text = "Usage: " + program +
                       " [options] [RULE...]\n\n"
                       "Holds the linked platform and drivers against the rules of the seam headers.\n"
                       "RULE is the id of a rule or a pattern such as 'sem.*'; without one all are tried.\n\n";
    for (const Option& option : optionTable) {
        std::string line = "  " + std::string(option.name);
        if (!option.value.empty()) {
            line += " " + std::string(option.value);
        }
        if (line.size() >= column) {
            text += line + "\n";
            line.clear();
        }
        line.resize(column, ' ');
        text += line + " " + std::string(option.help) + "\n";
    }
    return text + "\nExample: " + program +
           " --directory /ram/conformance 'sem.*' 'message.*'\n\n"
           "Exit status: 0 no rule is broken, 1 a rule is broken, 2 wrong use, or no rule could be tried.\n";
}

} // namespace dorn::conformance
