// SPDX-License-Identifier: MIT
/// @file Roff.hpp
/// Text in the language of man(7).
#pragma once

#include <string>

namespace dorn::tool {

/// Text that formats nothing: a hyphen is one that can be copied, and no line begins with a request.
std::string plain(const std::string& text);
/// The same in bold.
std::string bold(const std::string& text);
/// A term, formatted, and what it is, plain, in the body of a list.
std::string item(const std::string& term, const std::string& description);
/// What a page begins with. @param name "dorn-rad" @param version with the program's name: "dorn 0.1.0"
/// @param description the rest of a line that begins with the name
std::string pageHead(const std::string& name, const std::string& version, const std::string& description);

} // namespace dorn::tool
