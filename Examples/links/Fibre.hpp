// SPDX-License-Identifier: MIT
/// @file Fibre.hpp
/// How long light takes.
#pragma once

#include <cmath>

namespace dorn::examples {

/// What a fibre of so many metres delays, in periods of 307.2 MHz, the clock by which both standards measure.
inline long fibreDelay(double metres)
{
    constexpr double nanosecondsPerMetre = 5;
    constexpr double periodsPerNanosecond = 0.3072;
    return std::lround(metres * nanosecondsPerMetre * periodsPerNanosecond);
}

} // namespace dorn::examples
