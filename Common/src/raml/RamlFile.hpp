// SPDX-License-Identifier: MIT
/// @file RamlFile.hpp
/// Reads a file into a text.
#pragma once

#include <string>

namespace RAML {

/// Reads a whole file: almost 2 GiB of an ordinary one, and 64 MiB of what does not tell its size.
/// @param name path of the target; a relative one counts from the working directory
/// @param[out] text the file's bytes
/// @return false when the file cannot be opened, read to its end or held in memory.
[[nodiscard]] bool readFile(const std::string& name, std::string& text);

} // namespace RAML
