// SPDX-License-Identifier: MIT
/// @file ArgParser.hpp
/// The command line of a service executable.
///
/// 1. Options are declared in a small text, one per line: `-v Print more` or `--level=N Level of detail`. Every parser
///    knows "-h" and "--help" from the start.
/// 2. Parse() goes through the arguments, marks the options that are there and reports what it does not know.
/// 3. ReadArgument() tells what was found: "arg off", "arg on", or what was given behind "=".
///
/// Marks are kept: a second Parse() adds to them. No argument, however wrong, makes the parser throw.
#pragma once

#include "ArgParserBase.hpp"

#include <map>
#include <string>

namespace vel::hwapi::common {

/// The command line of a service: options are declared first, then read.
class ArgParser : public ArgParserBase {
public:
    ArgParser();

    /// Declares options and adds them to the help text.
    ///
    /// A word of the text that looks like an option is declared, and what follows it on its line is its description.
    /// "-v" and "-verbose" both declare the letter "v"; "--level=N" declares "level"; a long option's name has two
    /// characters or more. Other words are passed over. Declaring an option again sets it back to "arg off" and lists
    /// it once more.
    ///
    /// A description has up to 255 characters. Of a longer one the first 255 are kept, and the rest of the text is not
    /// read: nothing is declared behind it.
    void SetArgumentInfo(std::string info) override;

    /// Marks the options that @p argv contains, from index 1 on; null entries are passed over.
    ///
    /// "-hv" stands for "-h -v". Any declared option may be given with or without a value: "--level", "--level=3".
    /// @return each part that is not understood, with a blank before it; empty when all was understood.
    std::string Parse(int argc, char** argv) override;

    /// Tells what was found for the option @p name, which is given without dashes.
    /// @return "arg off", "arg on" or the value; an empty text for an option that was never declared.
    std::string ReadArgument(std::string name) override;

    /// Returns the help text: each option as it was declared and, on a line of its own, its description.
    std::string GetHelp() override;

private:
    void parseLetters(const std::string& argument, std::string& errors);
    void parseLong(const std::string& argument, std::string& errors);

    std::map<std::string, std::string> m_argList;
    std::string m_help;
};

} // namespace vel::hwapi::common
