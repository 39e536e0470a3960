// SPDX-License-Identifier: MIT
/// @file FirmwareSteps.hpp
/// The steps of the demonstration in which an FPGA gets new firmware.
#pragma once

#include "Board.hpp"
#include "FirmwareMessages.hpp"
#include "TestNode.hpp"

#include <cstdint>
#include <functional>
#include <string>

namespace dorn::demonstration {

/// One step each, in this order, on a board on which nothing else runs. Each throws std::runtime_error when it does not
/// see what is to happen.
class FirmwareSteps {
public:
    /// @param start starts FirmwareS and waits until it waits for messages
    /// @param awaitLine waits for a line of the log that ends so
    FirmwareSteps(testkit::TestNode& node, Board& board, std::function<void()> start,
                  std::function<void(const std::string&)> awaitLine);

    void flashNewer();
    void reset();
    void refuseBadImages();
    void heedMarkers();
    void losePower();

private:
    void makeImage(std::uint32_t version, const std::string& hwSwId) const;
    examples::SFirmwareUpdateResp ask() const;
    void expect(examples::EFirmwareOutcome outcome, std::uint32_t activeVersion, std::int32_t result = 0) const;
    bool holds(std::uint32_t slot, std::uint32_t version) const;
    void awaitReset();

    testkit::TestNode& m_node;
    Board& m_board;
    std::function<void()> m_start;
    std::function<void(const std::string&)> m_awaitLine;
};

} // namespace dorn::demonstration
