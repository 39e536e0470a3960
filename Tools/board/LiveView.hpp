// SPDX-License-Identifier: MIT
/// @file LiveView.hpp
/// A board that lives in the terminal.
#pragma once

#include "board/BoardFrame.hpp"
#include "board/BoardObserver.hpp"
#include "board/Keyboard.hpp"
#include "board/Menu.hpp"
#include "board/Screen.hpp"
#include "board/Supervisor.hpp"
#include "board/Terminal.hpp"

#include <deque>
#include <optional>
#include <string>

namespace dorn::tool {

/// Draws the board a few times a second, and does what the keys say. Nothing here waits: a slow terminal is shown fewer
/// pictures, and whatever hangs on the board hangs in the observer's thread.
class LiveView {
public:
    LiveView(Supervisor& supervisor, BoardObserver& observer, Terminal& terminal, bool isColoured);

    /// Takes note of an event.
    void note(const SupervisorEvent& event);
    /// Takes keys and draws when it is time to.
    void update();
    /// When update() is due.
    host::Deadline nextUpdate() const { return m_nextDrawing; }
    /// Whether the terminal is to be waited for until it takes more.
    bool isWriting() const { return m_screen.isBusy(); }
    /// Whether a key has asked for the end.
    bool isEndWanted() const { return m_isEndWanted; }
    /// Whether it has asked although all were to end already.
    bool isEndUrgent() const { return m_isEndUrgent; }
    /// Whether the terminal is gone.
    bool isBroken() const { return m_screen.isBroken(); }

private:
    void handle(Key key);
    void askForEnd();
    void draw();
    BoardContent content() const;
    void open(const std::string& title, std::vector<Menu::Item> items);
    void offerCages();
    void offerLinks();
    void offerReference();
    void offerFaults();
    void offerReset();
    void offerRoles();
    void offerKills();
    Menu::Item itemOf(BoardAction action);

    Supervisor& m_supervisor;
    BoardObserver& m_observer;
    Terminal& m_terminal;
    Screen m_screen;
    Keyboard m_keyboard;
    std::deque<SupervisorEvent> m_events;
    std::optional<Menu> m_menu;
    std::string m_node;
    host::Nanoseconds m_begin;
    host::Deadline m_nextDrawing{};
    bool m_isEndWanted = false;
    bool m_isEndUrgent = false;
    bool m_isHelpWanted = false;
};

} // namespace dorn::tool
