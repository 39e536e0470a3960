// SPDX-License-Identifier: MIT
/// @file HardwareSteps.hpp
/// The steps of the demonstration in which something happens to the board's hardware.
#pragma once

#include "Stage.hpp"

#include <cstdint>

namespace dorn::demonstration {

/// One step each, in any order, while the board's services run. Each throws std::runtime_error when it does not see
/// what is to happen.
class HardwareSteps {
public:
    explicit HardwareSteps(Stage& stage) : m_stage(stage) {}

    void plugModule();
    void breakLink();
    void loseReference();
    void useDrivers();
    void loadDsp();

private:
    Stage& m_stage;
};

/// How the driver says that a file system is mounted.
std::uint32_t mountModeOf(std::uint32_t fileSystem);

} // namespace dorn::demonstration
