// SPDX-License-Identifier: MIT
/// @file BoardSoak.hpp
/// A whole board to which things happen.
#pragma once

#include "Faults.hpp"
#include "TestNode.hpp"
#include "Usage.hpp"
#include "board/BoardObserver.hpp"
#include "board/ChildServiceProcess.hpp"
#include "board/Supervisor.hpp"

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace dorn::soak {

/// Runs the demonstration board, lets a fault happen, and waits until the board is well again; and so on. Throws
/// std::runtime_error as soon as it does not become so within its bound, or has left something behind.
class BoardSoak {
public:
    explicit BoardSoak(std::uint32_t seed);

    /// Starts the board.
    void start();
    /// Lets something happen. @return what, in words
    std::string suffer();
    /// Ends the board; all have to end well.
    void end();

    std::string summary() const;

private:
    using Supervisor = tool::Supervisor;

    void runUntil(const std::function<bool()>& isSo, const std::string& otherwise);
    void runFor(host::Nanoseconds time);
    bool isWell() const;
    std::string latestEvents() const;
    void checkUsage();
    std::vector<pid_t> processes() const;
    std::size_t someService() { return m_chance.oneOf(m_supervisor->services().size()); }

    std::string apply(Fault fault);
    std::string kill(std::size_t count);
    std::string stop();
    std::string plug();
    std::string breakLink();
    std::string reset();
    std::string act(tool::BoardAction action);

    testkit::TestNode m_node;
    Chance m_chance;
    tool::BoardDescription m_board;
    tool::ChildServiceLauncher m_launcher{{{"DORN_LOG", "file"}}};
    std::unique_ptr<Supervisor> m_supervisor;
    std::unique_ptr<tool::BoardObserver> m_observer;
    std::vector<std::string> m_lastEvents;
    std::array<unsigned, faultKinds> m_counts{};
    Usage m_first;
    Usage m_latest;
    host::Nanoseconds m_longest{}; ///< until the board was well again
};

} // namespace dorn::soak
