// SPDX-License-Identifier: MIT
/// @file OwnUnit.hpp
/// The unit that a service runs on, for its log.
#pragma once

#include <cstdint>

namespace dorn::examples {

/// Logs which unit this is, in one line that is printed whatever is switched on. A unit that cannot be read is no
/// failure: autodetection's own line says so.
/// @param feature the service's print switch
void logOwnUnit(std::uint32_t feature);

} // namespace dorn::examples
