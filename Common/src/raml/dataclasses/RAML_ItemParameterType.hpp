// SPDX-License-Identifier: MIT
/// @file RAML_ItemParameterType.hpp
/// A named value inside an item of a list.
#pragma once

#include <string>

namespace RAML {

/// A named value inside an item.
struct RAML_ItemParameterType {
    std::string name; ///< may be empty
    /// The element's characters; a number stays the text it is.
    std::string value;
};

} // namespace RAML
