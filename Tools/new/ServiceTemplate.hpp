// SPDX-License-Identifier: MIT
/// @file ServiceTemplate.hpp
/// The files of Tools/templates/service, which are built into the command.
#pragma once

#include <span>
#include <string_view>

namespace dorn::tool {

/// A file of a template.
struct TemplateFile {
    std::string_view name; ///< "ServiceTest.cpp.in"
    std::string_view text; ///< with @Name@ and the like where something is to be filled in
};

/// In alphabetical order.
std::span<const TemplateFile> serviceTemplate();

/// What the headers of the library and the TestKit are called, without folder and ending: "Worker". A file of the same
/// name would be included in a header's place.
std::span<const std::string_view> headerNames();

} // namespace dorn::tool
