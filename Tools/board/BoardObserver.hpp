// SPDX-License-Identifier: MIT
/// @file BoardObserver.hpp
/// Looks at what happens on a board, on a thread of its own: whatever hangs there holds up nobody else.
#pragma once

#include "AlarmMessages.hpp"
#include "ClockMessages.hpp"
#include "LinkMessages.hpp"
#include "SfpMessages.hpp"
#include "board/BoardActions.hpp"
#include "board/EventText.hpp"
#include "board/RepeatedQuestion.hpp"
#include "log/LogLine.hpp"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace dorn::tool {

/// What a service answered last.
template <class Value>
struct Answered {
    Answering state = Answering::Unknown;
    Value value{};
};

/// What is known of a board at a moment.
struct BoardPicture {
    Answered<std::vector<examples::SLink>> links;
    Answered<std::vector<examples::SSfpCage>> cages;
    Answered<examples::SClockShowResp> clock;
    Answered<std::vector<examples::SAlarm>> alarms; ///< the active ones
    std::optional<bool> isActiveUnit;               ///< of a pair; nothing where there is none
    std::deque<std::string> messages;               ///< the latest, the oldest first, in words
    std::deque<host::LogLine> log;                  ///< the same
};

/// Asks the services twice a second, watches the messages and reads the log. Its own questions are not among the
/// messages.
class BoardObserver {
public:
    /// @throws host::EnvironmentError, Failure when the node cannot be looked at.
    BoardObserver();
    /// Leaves the thread behind when it hangs in something of the node for more than a second.
    ~BoardObserver();
    BoardObserver(const BoardObserver&) = delete;
    BoardObserver& operator=(const BoardObserver&) = delete;

    BoardPicture picture() const;
    /// Has something done; what came of it is among the news.
    void act(BoardAction action);
    /// What has become of actions since the last call.
    std::vector<SupervisorEvent> takeNews();

private:
    struct Shared;
    class Watcher;

    std::shared_ptr<Shared> m_shared; ///< outlives this object where the thread is left behind
    std::thread m_thread;
};

} // namespace dorn::tool
