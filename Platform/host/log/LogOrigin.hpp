// SPDX-License-Identifier: MIT
/// @file LogOrigin.hpp
/// Where a line comes from: process, EU and feature, ready to be copied into the line.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace dorn::host {

/// The fields "Clock[4711] ClockMain CLKS" of the lines that one thread prints for one feature.
struct LogOrigin {
    static constexpr std::size_t maxNameField = 80; ///< longer names are cut

    std::uint32_t generation = 0; ///< of the process's identity; 0: not made yet
    std::uint32_t featureId = 0;
    bool isRegistered = false; ///< whether the feature has a name
    std::uint8_t euLength = 0;
    std::uint16_t length = 0;
    std::array<char, 32> euName{};
    std::array<char, 64> featureName{}; ///< terminated
    std::array<char, 3 * maxNameField + 24> text{};

    std::string_view fields() const { return {text.data(), length}; }
};

/// The origin of a line that the calling thread prints now. Valid until the thread's next call.
const LogOrigin& currentLogOrigin(std::uint32_t featureId) noexcept;

/// What all lines of this process say of it.
struct LogIdentity {
    std::string eeName;
    std::int32_t pid;
};
LogIdentity logIdentity();

/// Names the process; an empty name stands for the name of its program file.
void setLogIdentity(const std::string& eeName);
/// Takes the process id anew, in the child of a fork. Takes no lock and no memory.
void refreshLogIdentity() noexcept;
/// Keep the identity from changing while the process forks.
void lockLogIdentity();
void unlockLogIdentity();

} // namespace dorn::host
