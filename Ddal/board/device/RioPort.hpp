// SPDX-License-Identifier: MIT
/// @file RioPort.hpp
/// A RapidIO port of the board and the devices behind it.
#pragma once

#include "device/RioDevice.hpp"

#include <cstdint>
#include <vector>

namespace dorn::board {

class RioPort {
public:
    /// @param node a node of the group `rapidio`
    explicit RioPort(BoardNode node) : m_node(std::move(node)) {}

    /// The port's number. @throws BoardFailure
    std::uint32_t number() const { return m_node.number(); }
    /// The RapidIO id of the board's own end. @throws BoardFailure
    std::uint16_t ownId() const;
    /// @throws BoardFailure when there is none of this id.
    RioDevice device(std::uint16_t id) const { return {number(), m_node.numberedChild(id)}; }
    /// All of them, in the order of their ids. @throws BoardFailure
    std::vector<RioDevice> devices() const;

private:
    BoardNode m_node;
};

} // namespace dorn::board
