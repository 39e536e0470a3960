// SPDX-License-Identifier: MIT
/// @file ModelText.hpp
/// RAML documents as short texts, to be compared.
#pragma once

#include "raml/dataclasses/RAML_Type.hpp"

#include <string>

namespace dorn::test {

/// The structure of a document: `raml(2.1,ns) cmData(actual,changes) A:A-1(x=1 l[1 create{a=2}])`; "none" for an empty
/// pointer. An operation that is none of the two of an item stands as `?`.
std::string structureOf(const RAML::RAML_Type::pointer& document);

/// The structure and every other text and enumeration of a document.
std::string textOf(const RAML::RAML_Type::pointer& document);

} // namespace dorn::test
