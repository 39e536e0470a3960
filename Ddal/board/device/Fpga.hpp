// SPDX-License-Identifier: MIT
/// @file Fpga.hpp
/// An FPGA, or the board-management unit, and its flash slots.
#pragma once

#include "description/BoardNode.hpp"
#include "device/FlashArea.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace dorn::board {

class Fpga {
public:
    struct Slot {
        std::uint32_t number;
        FlashArea area;
    };

    /// @param node a node of the group `fpgas`
    explicit Fpga(BoardNode node) : m_node(std::move(node)) {}

    /// The driver's number. @throws BoardFailure
    std::uint32_t id() const { return m_node.number(); }
    /// What people call it; may be empty. @throws BoardFailure
    std::string label() const { return m_node.textIfAny("label"); }
    /// The version that it runs. @throws BoardFailure
    std::uint32_t version() const;
    /// Its slots, in the order in which it tries them. @throws BoardFailure
    std::vector<Slot> slots() const;
    /// Flashes the image in the file @p path of the target. @throws BoardFailure
    void update(std::uint32_t slot, const std::string& path, FlashExtent extent = FlashExtent::Whole) const;

private:
    BoardNode m_node;
};

} // namespace dorn::board
