// SPDX-License-Identifier: MIT
/// @file RamlModelText.hpp
/// A RAML document's model as a text that two models have in common exactly when they are the same.
#pragma once

#include "raml/dataclasses/RAML_Type.hpp"

#include <string>

namespace dorn::fuzz {

/// Which fields of a model count.
enum class ModelFields {
    All,
    Written ///< those that a written document keeps
};

std::string modelText(const RAML::RAML_Type& document, ModelFields fields);

/// Whether the document can be written so that it reads back with the fields that are written: all that
/// RAML_ostream.hpp says, and no white space that a reader takes for other white space.
bool isKeptByWriter(const RAML::RAML_Type& document);

/// Aborts unless the model is one that a parser may give away.
/// @param isWhole whether the parser's result was RAML_OK
void requireSound(const RAML::RAML_Type& document, bool isWhole);

} // namespace dorn::fuzz
