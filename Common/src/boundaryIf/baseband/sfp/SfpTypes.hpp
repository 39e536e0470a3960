// SPDX-License-Identifier: MIT
/// @file SfpTypes.hpp
/// How SFP modules are numbered.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::baseband::sfp {

using TSfpModuleId = std::uint32_t;

} // namespace vel::hwapi::common::bif::baseband::sfp
