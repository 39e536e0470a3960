// SPDX-License-Identifier: MIT
/// @file RadWait.hpp
/// Waits for an R&D parameter of the node to be set, in whichever process.
#pragma once

#include "AaConfigRad.h"
#include "Bound.hpp"

#include <cstdint>
#include <functional>

namespace dorn::testkit {

/// Waits until the parameter @p id has the value @p value; so a test waits for a service's state.
///
/// A value that is overwritten at once may be missed: wait for one that stays.
/// @return false when it has not had it within @p bound, or no process has registered its domain.
[[nodiscard]] bool waitForRad(TAaConfigRadId id, std::uint32_t value, Bound bound = generousBound);

/// Waits until @p isMet, which is asked again whenever a parameter has been set on the node and after stirRadWaits().
/// @return false when it has not been met within @p bound.
[[nodiscard]] bool waitForRadChange(const std::function<bool()>& isMet, Bound bound = generousBound);

/// Has those who wait ask their conditions again.
void stirRadWaits();

} // namespace dorn::testkit
