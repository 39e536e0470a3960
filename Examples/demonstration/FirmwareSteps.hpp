// SPDX-License-Identifier: MIT
/// @file FirmwareSteps.hpp
/// The steps of the demonstration in which an FPGA gets new firmware.
#pragma once

#include "FirmwareMessages.hpp"
#include "Stage.hpp"

#include <cstdint>
#include <string>

namespace dorn::demonstration {

/// One step each, in this order, on a board on which nothing else runs. Each throws std::runtime_error when it does not
/// see what is to happen.
class FirmwareSteps {
public:
    explicit FirmwareSteps(Stage& stage);

    void flashNewer();
    void reset();
    void refuseBadImages();
    void heedMarkers();
    void losePower();

private:
    void startService();
    void makeImage(std::uint32_t version, const std::string& hwSwId) const;
    examples::SFirmwareUpdateResp ask() const;
    void expect(examples::EFirmwareOutcome outcome, std::uint32_t activeVersion, std::int32_t result = 0) const;
    bool holds(std::uint32_t slot, std::uint32_t version) const;
    void awaitReset();

    Stage& m_stage;
    testkit::TestNode& m_node;
};

} // namespace dorn::demonstration
