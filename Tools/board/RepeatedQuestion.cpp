// SPDX-License-Identifier: MIT
#include "board/RepeatedQuestion.hpp"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace dorn::tool {
namespace {

constexpr std::chrono::seconds longestPause{30};

} // namespace

void RepeatedQuestion::askWhenDue(host::Nanoseconds now)
{
    if (m_isOpen && now - m_askedAt >= answerPatience) {
        m_state = Answering::No;
    }
    if (now < m_nextAt) {
        return;
    }
    m_transaction = newTransactionId();
    const std::int32_t status = sendToService(m_service, m_question, std::as_bytes(std::span(&m_transaction, 1)));
    const bool wasOpen = std::exchange(m_isOpen, status == EAaSysComStatus_Ok);
    if (status == EAaSysComStatus_NoReceiver) {
        m_state = Answering::Gone;
    }
    if (!wasOpen || !m_isOpen) {
        m_askedAt = now;
        m_pause = askPeriod;
    } else {
        m_pause = std::min<host::Nanoseconds>(m_pause * 2, longestPause);
    }
    m_nextAt = now + m_pause;
}

bool RepeatedQuestion::takes(void* message)
{
    std::uint32_t transaction = 0;
    const BytesView payload = payloadOf(message);
    if (AaSysComMsgGetId(message) != m_answer || payload.size() < sizeof transaction) {
        return false;
    }
    std::memcpy(&transaction, payload.data(), sizeof transaction);
    if (transaction != m_transaction) {
        return false;
    }
    m_isOpen = false;
    m_state = Answering::Yes;
    m_nextAt = std::min(m_nextAt, host::Clock::get().monotonic() + askPeriod);
    return true;
}

} // namespace dorn::tool
