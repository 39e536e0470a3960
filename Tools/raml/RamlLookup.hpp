// SPDX-License-Identifier: MIT
/// @file RamlLookup.hpp
/// Managed objects and parameters by name, as people give them.
#pragma once

#include "raml/dataclasses/RAML_Type.hpp"

#include <string>

namespace dorn::tool {

/// The first managed object of a distinguished name in any block.
/// @param file where the document is from, for messages
/// @throws Failure when there is none.
RAML::RAML_ManagedObjectType::pointer findObject(const RAML::RAML_Type& document, const std::string& file,
                                                 const std::string& distName);

/// The first parameter, simple or list, of a name. @throws Failure when there is none.
RAML::RAML_MOParameterType::pointer findParameter(const RAML::RAML_ManagedObjectType& object, const std::string& name);

} // namespace dorn::tool
