// SPDX-License-Identifier: MIT
/// @file ConfigFileFuzz.cpp
/// Any bytes as a configuration file: they are read without harm, and what is read keeps the limits of a tag.
#include "Require.hpp"
#include "config/TagFile.hpp"
#include "config/TagLimits.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

using dorn::fuzz::require;
using dorn::host::TagFileContent;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const TagFileContent content = dorn::host::parseTagFile(text);
    for (const TagFileContent::Entry& entry : content.entries) {
        require(!entry.tag.name.empty() && entry.tag.name.size() <= dorn::host::maximumTagName);
        require(entry.tag.value.size() <= dorn::host::maximumTagValue);
        require(entry.line >= 1);
    }
    for (const TagFileContent::Complaint& complaint : content.complaints) {
        require(complaint.line >= 1 && !complaint.reason.empty());
        require(complaint.reason.find('\n') == std::string::npos && complaint.reason.size() < 400);
    }
    return 0;
}
