// SPDX-License-Identifier: MIT
/// @file SfpTypes.hpp
/// How SFP modules are numbered.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::baseband::sfp {

/// The driver's number of an SFP cage.
using TSfpModuleId = std::uint32_t;

} // namespace vel::hwapi::common::bif::baseband::sfp
