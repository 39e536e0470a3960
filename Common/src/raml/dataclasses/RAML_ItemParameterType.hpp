// SPDX-License-Identifier: MIT
/// @file RAML_ItemParameterType.hpp
/// A named value inside an item of a list.
#pragma once

#include <string>

namespace RAML {

struct RAML_ItemParameterType {
    std::string name; ///< may be empty
    std::string value;
};

} // namespace RAML
