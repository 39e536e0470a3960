// SPDX-License-Identifier: MIT
#include "BoardClock.hpp"

namespace dorn::examples {
namespace {

constexpr double greatestNoise = 3; // nanoseconds

} // namespace

void BoardClock::step(double seconds, double air)
{
    m_uptime += seconds;
    m_ocxo.step(seconds, air);
    m_timeError += m_ocxo.frequencyError() * seconds;
}

double BoardClock::measurePhase()
{
    m_noise = m_noise * 1664525U + 1013904223U; // a linear congruential generator; its high bits are the good ones
    const double evenlySpread = static_cast<double>(m_noise >> 16) / 0xFFFF;
    return m_timeError - greatestNoise * (2 * evenlySpread - 1);
}

} // namespace dorn::examples
