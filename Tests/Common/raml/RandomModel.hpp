// SPDX-License-Identifier: MIT
/// @file RandomModel.hpp
/// RAML documents by chance, the same ones for the same number.
#pragma once

#include "raml/dataclasses/RAML_Type.hpp"

#include <cstdint>

namespace dorn::test {

/// A document that is written and read back without loss: its operations have a text, no simple value has more than one
/// special character and no other text has one, what is not written is empty.
RAML::RAML_Type::pointer randomModel(std::uint32_t number);

} // namespace dorn::test
