// SPDX-License-Identifier: MIT
/// @file TestBoard.hpp
/// The hardware of a TestNode, as its drivers see it.
#pragma once

#include "description/DeviceTree.hpp"

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <string>

namespace dorn::testkit {

/// Describes a board to the drivers of the TestNode that was made last: writes a device-tree blob and names it in
/// `DORN_BOARD`, which the end of the node sets back.
///
///     TestBoard board;                                                // a small Tarn board
///     board.cells("units/unit@0", "dorn,hw-sw-id", {0x00A00123});     // that differs in this
///     board.remove("watchdog");                                       // and has no watchdog
///
/// A process reads the description once, at its first driver call: change it before. Nodes are named by their path
/// below the one for the board, which itself is "". Docs/device-tree-binding.md tells nodes and properties.
class TestBoard {
public:
    /// A Tarn board with everything that drivers ask for: unit 0, the local module and one at port 1, boot loader,
    /// board-management unit (FPGA 1), FPGA 0x10002, RapidIO device 0x10 with 1 MiB at 0x80000000, file systems 1 and 2
    /// (read-only), watchdog.
    TestBoard();
    /// The board of a blob that `dtc` has compiled. @throws board::TreeError
    explicit TestBoard(const std::string& blobPath);

    /// Gives a node a property, and makes the node when it is missing.
    TestBoard& text(const std::string& node, const std::string& property, const std::string& value);
    /// Gives a node a property of 32-bit cells, and makes the node when it is missing.
    TestBoard& cells(const std::string& node, const std::string& property, std::initializer_list<std::uint32_t> values);
    /// A property of any bytes: `std::string("no terminator")`.
    TestBoard& bytes(const std::string& node, const std::string& property, const std::string& value);
    /// Takes away a node with everything below it, or a property: "units/unit@0/dorn,unit-id". "" is the whole board.
    TestBoard& remove(const std::string& path);

    /// Has the next @p times calls of a driver function, behind @p after calls that work, fail with @p code, in this
    /// process and in all others of the node: what `dorn board fault` does. FailNth is for this process alone.
    /// @param function "ddal_fpga_update_mod"; another word throws std::invalid_argument
    void fail(const std::string& function, std::int32_t code, std::uint32_t times = 1, std::uint32_t after = 0) const;

    /// Has a RapidIO device behind port 0 spoil the first byte of each of the next @p copies to it: what `dorn board
    /// rio corrupt` does.
    void corruptRio(std::uint16_t device, std::uint32_t copies = 1) const;
    /// Has each copy to or from it take longer: `dorn board rio slow`.
    void slowRio(std::uint16_t device, std::chrono::milliseconds delay) const;

    /// Where the blob lies: the value of `DORN_BOARD`.
    const std::string& path() const { return m_path; }
    /// The tree as it is now.
    const board::TreeNode& tree() const { return m_tree; }

private:
    void write() const;
    board::TreeNode& node(const std::string& path);
    void setProperty(const std::string& path, const std::string& property, const std::string& value);

    std::string m_path;
    board::TreeNode m_tree;
};

} // namespace dorn::testkit
