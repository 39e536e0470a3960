// SPDX-License-Identifier: MIT
/// @file SfpNames.hpp
/// SFP cages in words.
#pragma once

#include "NameTable.hpp"
#include "SfpMessages.hpp"

#include <array>

namespace dorn::examples {

constexpr std::array<const char*, ESfpModule_Ready + 1> sfpModuleNames{"empty", "starting", "ready"};

} // namespace dorn::examples
