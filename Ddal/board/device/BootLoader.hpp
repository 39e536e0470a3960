// SPDX-License-Identifier: MIT
/// @file BootLoader.hpp
/// The boot loader and the flash that it lies in.
#pragma once

#include "description/BoardNode.hpp"
#include "device/FlashArea.hpp"

#include <cstdint>
#include <string>

namespace dorn::board {

class BootLoader {
public:
    /// @param node node `boot-loader` of the board
    explicit BootLoader(BoardNode node) : m_node(std::move(node)) {}

    /// A value of #ddal_boot_location, or another one: as described, but the backup copy where the primary one would be
    /// and was only half flashed. @throws BoardFailure
    std::int32_t startLocation() const;
    /// The version in use. @throws BoardFailure
    std::string version() const;
    /// @throws BoardFailure
    FlashArea flash() const;
    /// Flashes the image in the file @p path of the target. @throws BoardFailure
    void update(const std::string& path, FlashExtent extent = FlashExtent::Whole) const
    {
        flash().flash(path, version(), extent);
    }

private:
    BoardNode m_node;
};

} // namespace dorn::board
