// SPDX-License-Identifier: MIT
/// @file RamlFields.hpp
/// What the parts of a RAML document say of themselves, as names and texts: so that each field is listed once for all
/// who show, compare or count them.
#pragma once

#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_Type.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace dorn::tool {

/// A field that has a value.
struct RamlField {
    std::string_view name; ///< of the attribute in a document
    std::string text;
    bool isWritten; ///< whether a written document keeps it
};
using RamlFields = std::vector<RamlField>;

RamlFields fieldsOf(const RAML::RAML_Type& document);
RamlFields fieldsOf(const RAML::RAML_CMDataType& block);
/// All but the text of the entry.
RamlFields fieldsOf(const RAML::RAML_LogType& log);
/// All but class and distinguished name.
RamlFields fieldsOf(const RAML::RAML_ManagedObjectType& object);
RamlFields fieldsOf(const RAML::RAML_ItemType& item);

/// "RAML_OK"
std::string_view nameOf(RAML::RAML_ParsingResult result);
/// The text that a document has for an operation, also for those that are not written.
std::string_view nameOf(RAML::RAML_MOOperationType operation);

} // namespace dorn::tool
