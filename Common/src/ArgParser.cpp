// SPDX-License-Identifier: MIT
#include "ArgParser.hpp"

#include <array>
#include <sstream>

namespace vel::hwapi::common {
namespace {

constexpr const char* notSeen = "arg off";
constexpr const char* seen = "arg on";

bool isShort(const std::string& word)
{
    return word.size() > 1 && word[0] == '-' && word[1] != '-';
}

bool isLong(const std::string& word)
{
    return word.size() > 3 && word.starts_with("--");
}

std::string longName(const std::string& word)
{
    return word.substr(2, word.find('=') - 2);
}

} // namespace

ArgParser::ArgParser()
{
    ArgParser::SetArgumentInfo("-h\n--help Print usage information\n\n");
}

void ArgParser::SetArgumentInfo(std::string info)
{
    std::istringstream text(std::move(info));
    std::string word;
    while (text >> word) {
        if (!isShort(word) && !isLong(word)) {
            continue;
        }
        const std::string name = isShort(word) ? word.substr(1, 1) : longName(word);
        m_argList[name] = notSeen;

        // A longer line leaves the stream failed, which ends the reading.
        std::array<char, 256> description{};
        text.getline(description.data(), description.size());
        m_help += "\t" + word;
        if (description[0] != '\0') {
            m_help += std::string("\n\t\t") + description.data();
        }
        m_help += "\n";
    }
}

std::string ArgParser::Parse(int argc, char** argv)
{
    std::string errors;
    if (!argv) {
        return errors;
    }
    for (int index = 1; index < argc; ++index) {
        if (!argv[index]) {
            continue;
        }
        const std::string argument = argv[index];
        if (isShort(argument)) {
            parseLetters(argument, errors);
        } else if (isLong(argument)) {
            parseLong(argument, errors);
        } else {
            errors += " " + argument;
        }
    }
    return errors;
}

void ArgParser::parseLetters(const std::string& argument, std::string& errors)
{
    for (const char letter : argument.substr(1)) {
        const auto option = m_argList.find(std::string(1, letter));
        if (option == m_argList.end()) {
            errors += std::string(" -") + letter;
        } else {
            option->second = seen;
        }
    }
}

void ArgParser::parseLong(const std::string& argument, std::string& errors)
{
    const std::string name = longName(argument);
    const auto option = m_argList.find(name);
    if (option == m_argList.end()) {
        errors += " --" + name;
        return;
    }
    const std::size_t equals = argument.find('=');
    option->second = equals == std::string::npos ? seen : argument.substr(equals + 1);
}

std::string ArgParser::ReadArgument(std::string name)
{
    const auto option = m_argList.find(name);
    return option == m_argList.end() ? std::string() : option->second;
}

std::string ArgParser::GetHelp()
{
    return m_help;
}

} // namespace vel::hwapi::common
