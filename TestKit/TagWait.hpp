// SPDX-License-Identifier: MIT
/// @file TagWait.hpp
/// Waits for a configuration tag of the node to be set, in whichever process.
#pragma once

#include "Bound.hpp"

#include <cstdint>
#include <string>

namespace dorn::testkit {

/// Waits until the configuration tag @p name has the value @p value, byte for byte; so a test waits for what a service
/// tells by a tag.
///
/// A value that is overwritten at once may be missed: wait for one that stays.
/// @return false when it has not had it within @p bound.
[[nodiscard]] bool waitForTag(const std::string& name, const std::string& value, Bound bound = generousBound);

/// Waits until the tag has this 32-bit number, as AaConfigTagSetU32() sets it.
[[nodiscard]] bool waitForTag(const std::string& name, std::uint32_t value, Bound bound = generousBound);

} // namespace dorn::testkit
