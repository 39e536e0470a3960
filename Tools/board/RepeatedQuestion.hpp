// SPDX-License-Identifier: MIT
/// @file RepeatedQuestion.hpp
/// A question that is put to a service again and again.
#pragma once

#include "node/AskedService.hpp"
#include "port/Clock.hpp"

#include <cstdint>

namespace dorn::tool {

/// How long a service may take to answer; from then on it counts as one that does not.
constexpr std::chrono::milliseconds answerPatience{1200};

/// How a service that is asked again and again stands to it.
enum class Answering {
    Unknown, ///< it has just been asked for the first time
    Yes,
    No,  ///< it is there, but its answer is late
    Gone ///< nobody has its cpid
};

/// The question's payload is its transaction id. It is put twice a second; a service that does not answer is asked less
/// and less often, so that its queue does not fill.
class RepeatedQuestion {
public:
    RepeatedQuestion(TAaSysComCpid cpid, TAaSysComMsgId question, TAaSysComMsgId answer)
        : m_service{cpid, "", ""}, m_question(question), m_answer(answer)
    {
    }

    /// Asks if it is time to. @param now on the monotonic clock
    void askWhenDue(host::Nanoseconds now);
    /// Whether a message is the answer.
    bool takes(void* message);

    Answering state() const { return m_state; }

private:
    static constexpr std::chrono::milliseconds askPeriod{500};

    AskedService m_service;
    TAaSysComMsgId m_question;
    TAaSysComMsgId m_answer;
    Answering m_state = Answering::Unknown;
    bool m_isOpen = false; ///< asked, and not answered
    std::uint32_t m_transaction = 0;
    host::Nanoseconds m_askedAt{}; ///< when the question that is open was put first
    host::Nanoseconds m_nextAt{};
    host::Nanoseconds m_pause = askPeriod;
};

} // namespace dorn::tool
