// SPDX-License-Identifier: MIT
/// @file FileSystem.hpp
/// A flash file system and how it is mounted.
#pragma once

#include "description/BoardNode.hpp"

#include <cstdint>
#include <string>

namespace dorn::board {

class FileSystem {
public:
    /// @param node a node of the group `file-systems`
    explicit FileSystem(BoardNode node) : m_node(std::move(node)) {}

    /// The driver's number. @throws BoardFailure
    std::uint32_t id() const { return m_node.number(); }
    /// What people call it; may be empty. @throws BoardFailure
    std::string label() const { return m_node.textIfAny("label"); }
    /// Where it is mounted on the target. @throws BoardFailure
    std::string mountPoint() const { return m_node.text("dorn,mount-point"); }

    /// A value of #ddal_ffs_mode, or another one: the mode that it was mounted in since the last reset, else the one in
    /// which each start of the board mounts it. @throws BoardFailure
    std::uint32_t mode() const;
    /// Mounts it in another mode, as the board's mount service does; until the next reset. @throws BoardFailure
    void mount(std::uint32_t mode) const;

private:
    BoardNode m_node;
};

} // namespace dorn::board
