// SPDX-License-Identifier: MIT
/// @file Steps.hpp
/// The demonstration that goes by itself.
#pragma once

namespace dorn::demonstration {

/// Goes through every step on a board of its own and prints what was seen.
/// @return whether every step was seen to happen.
bool goThroughSteps();

} // namespace dorn::demonstration
