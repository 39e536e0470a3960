// SPDX-License-Identifier: MIT
/// @file RamlRanks.hpp
/// Rank tables: in which order the classes of managed objects come.
#pragma once

#include "raml/RamlDefs.hpp"
#include "raml/dataclasses/RAML_Type.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// Reads a table: a class a line, in the order of their ranks, or with its rank behind a blank. What follows a "#" is
/// said to people, and empty lines mean nothing. A line without a rank has one more than the line before.
/// @param file how messages call the table
/// @throws Failure when a line is none of this, or a class has two ranks.
RAML::TmlMoHierarchyMap parseRanks(const std::string& text, const std::string& file);

/// Orders the managed objects of each block as RAML_CMDataType::sort() does by their classes' ranks, but leaves objects
/// of equal rank in their order and those without one behind all others, in theirs.
/// @return the classes without a rank, each once, in the order of the document.
std::vector<std::string> sortRaml(RAML::RAML_Type& document, const RAML::TmlMoHierarchyMap& ranks);

/// Takes the managed objects whose classes have no rank out.
void dropUnranked(RAML::RAML_Type& document, const RAML::TmlMoHierarchyMap& ranks);

} // namespace dorn::tool
