// SPDX-License-Identifier: MIT
/// @file SwitchedBoards.hpp
/// Boards with a network of their own, each connected to one switch by a cable.
#pragma once

#include "Namespace.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace dorn::gateway::test {

/// The switch is a bridge in a network namespace, each board another namespace, and a cable a pair of interfaces:
/// `port` and the board's number in the switch, `eth0` in the board. What makes or changes them returns what stands
/// against it; empty: it is done.
class SwitchedBoards {
public:
    /// Makes the switch and @p count boards.
    std::string make(std::size_t count);

    static std::string address(std::size_t place) { return "10.77.0." + std::to_string(place + 1); }
    static std::string address6(std::size_t place) { return "fd77::" + std::to_string(place + 1); }
    /// Whether boards have the second address.
    bool hasIpv6() const;
    /// The beginning of a command that runs on a board.
    std::vector<std::string> on(std::size_t place) const { return m_boards[place]->enter(); }

    /// Ends of a cable, at which it is pulled and plugged.
    std::string setBoardsEnd(std::size_t place, bool isUp) const;
    std::string setSwitchsEnd(std::size_t place, bool isUp) const;
    /// Has what the switch sends to a board, or what the board sends, go through a discipline of the kernel's traffic
    /// control, "netem loss 5%"; empty: as it was.
    std::string shapeTo(std::size_t place, const std::string& discipline) const;
    std::string shapeFrom(std::size_t place, const std::string& discipline) const;

    /// Packets that the discipline of shapeTo() has not let through.
    std::uint64_t packetsLostTo(std::size_t place) const;

    /// A board loses its power: all its connections are gone without a word, and so is what it had been about to send.
    /// Its processes are to be killed before, while its cable is pulled.
    std::string losePower(std::size_t place);
    /// It has power again. Its address is as before, the one of its interface too.
    std::string powerUp(std::size_t place);

private:
    static std::string shape(const Namespace& host, const std::string& interface, const std::string& discipline);

    std::unique_ptr<Namespace> m_switch;
    std::vector<std::unique_ptr<Namespace>> m_boards;
};

} // namespace dorn::gateway::test
