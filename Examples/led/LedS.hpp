// SPDX-License-Identifier: MIT
/// @file LedS.hpp
/// The LEDs on the board's front.
#pragma once

#include "LedMessages.hpp"
#include "Service.hpp"

#include <array>

namespace dorn::examples {

/// Keeps the colour of each LED and changes it when it is asked to.
class LedS : public vel::hwapi::common::Service {
public:
    LedS();

private:
    void Init() override;
    void HandleSet(LedSetReqMsg request);
    void show(std::uint32_t led, std::uint32_t colour);

    std::array<std::uint32_t, EFrontLed_Count> m_colours{};
};

} // namespace dorn::examples
