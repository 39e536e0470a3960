// SPDX-License-Identifier: MIT
/// @file SfpCage.hpp
/// A cage for an SFP module, and the module that is plugged when the board starts.
#pragma once

#include "description/BoardNode.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace dorn::board {

/// What a module says of itself.
struct SfpModule {
    std::string vendorName;
    std::string partNumber;
    std::string serialNumber;
    std::uint32_t wavelength; ///< nm
    std::uint32_t bitRate;    ///< nominal, Mbd
};

class SfpCage {
public:
    /// @param node a node of the group `sfp-cages`
    explicit SfpCage(BoardNode node) : m_node(std::move(node)) {}

    /// The number of the port that it belongs to. @throws BoardFailure
    std::uint32_t port() const { return m_node.number(); }
    /// What stands beside it; may be empty. @throws BoardFailure
    std::string label() const { return m_node.textIfAny("label"); }
    /// The module; nothing when the cage is empty. @throws BoardFailure
    std::optional<SfpModule> module() const;

private:
    BoardNode m_node;
};

} // namespace dorn::board
