// SPDX-License-Identifier: MIT
/// @file RamlTree.hpp
/// RAML documents as people and programs see them.
#pragma once

#include "Console.hpp"
#include "raml/dataclasses/RAML_Type.hpp"
#include "text/Json.hpp"

#include <string>

namespace dorn::tool {

/// Prints a document as a tree. Of a value of more than 200 bytes only the first are shown.
void printRamlTree(const std::string& title, const RAML::RAML_Type& document, Console& console);
/// Prints one managed object as a tree.
void printRamlTree(const RAML::RAML_ManagedObjectType& object, Console& console);

Json ramlJson(const RAML::RAML_Type& document);
Json ramlJson(const RAML::RAML_ManagedObjectType& object);
/// "name" and "value", or "name" and "list", whose elements are texts or objects with "parameters".
Json ramlJson(const RAML::RAML_MOParameterType& parameter);

} // namespace dorn::tool
