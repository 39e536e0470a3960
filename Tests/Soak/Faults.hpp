// SPDX-License-Identifier: MIT
/// @file Faults.hpp
/// What happens to a board in a soak.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>

namespace dorn::soak {

enum class Fault {
    Kill,      ///< of a service
    KillSome,  ///< of three services at once
    Stop,      ///< of a service for a moment
    Plug,      ///< of a cage, or pulling
    Link,      ///< broken or mended
    Reference, ///< of the clock, lost or restored
    Driver,    ///< a call that fails
    Reset,     ///< of the board
    Switch     ///< to the other role
};
constexpr std::size_t faultKinds = static_cast<std::size_t>(Fault::Switch) + 1;
constexpr std::array<const char*, faultKinds> faultNames{"kill",  "kill three", "stop",  "plug",  "link",
                                                         "clock", "driver",     "reset", "switch"};

/// Numbers that are the same for the same seed everywhere.
class Chance {
public:
    explicit Chance(std::uint32_t seed) : m_numbers(seed) {}

    /// One of 0 to @p count - 1; 0 when there is none.
    std::size_t oneOf(std::size_t count) { return count == 0 ? 0 : m_numbers() % count; }
    bool coin() { return oneOf(2) == 0; }
    Fault fault();

private:
    std::mt19937 m_numbers;
};

} // namespace dorn::soak
