// SPDX-License-Identifier: MIT
/// @file TagFile.hpp
/// The configuration file: tags as XML.
#pragma once

#include "config/TagDatabase.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace dorn::host {

/// What a configuration file says, in the order of the file.
struct TagFileContent {
    struct Entry {
        std::uint32_t line;
        Tag tag;
    };
    struct Complaint {
        std::uint32_t line;
        std::string reason;
    };
    std::vector<Entry> entries;
    std::vector<Complaint> complaints; ///< what was passed over, and why
};

/// Reads the text of a configuration file. Any text does.
TagFileContent parseTagFile(const std::string& text);

/// Sets the tags of a configuration file; see AaConfigTagReadFile().
std::int32_t readTagFile(const std::string& targetPath);

} // namespace dorn::host
