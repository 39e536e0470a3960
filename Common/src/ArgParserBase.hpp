// SPDX-License-Identifier: MIT
/// @file ArgParserBase.hpp
/// What checks a command line against declared options.
#pragma once

#include <string>

namespace vel::hwapi::common {

/// Root of command-line parsers.
class ArgParserBase {
public:
    ArgParserBase() = default;
    ArgParserBase(const ArgParserBase&) = default;
    ArgParserBase& operator=(const ArgParserBase&) = default;
    virtual ~ArgParserBase() = default;

    /// Declares options.
    virtual void SetArgumentInfo(std::string info) = 0;
    /// Marks the options that @p argv contains. @return what was not understood; empty when all was.
    virtual std::string Parse(int argc, char** argv) = 0;
    /// Tells what was found for an option.
    virtual std::string ReadArgument(std::string name) = 0;
    /// Returns the help text for all declared options.
    virtual std::string GetHelp() = 0;
};

} // namespace vel::hwapi::common
