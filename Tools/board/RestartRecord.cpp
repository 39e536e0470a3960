// SPDX-License-Identifier: MIT
#include "board/RestartRecord.hpp"

#include <algorithm>

namespace dorn::tool {

RestartDecision RestartRecord::decide(bool hasEndedWell, host::Nanoseconds now)
{
    using What = RestartDecision::What;
    const bool isWanted =
        m_policy.when == RestartWhen::Always || (m_policy.when == RestartWhen::OnFailure && !hasEndedWell);
    if (!isWanted) {
        return {What::Leave};
    }
    while (!m_restarts.empty() && now - m_restarts.front() >= m_policy.within) {
        m_restarts.pop_front();
    }
    if (m_restarts.size() >= m_policy.limit) {
        return {What::GiveUp};
    }
    const host::Nanoseconds delay = nextDelay();
    m_restarts.push_back(now);
    return {What::Restart, delay};
}

host::Nanoseconds RestartRecord::nextDelay() const
{
    host::Nanoseconds delay = std::min(m_policy.first, m_policy.greatest);
    for (std::size_t doublings = m_restarts.size(); doublings != 0 && delay < m_policy.greatest; --doublings) {
        delay = delay > m_policy.greatest / 2 ? m_policy.greatest : delay * 2;
    }
    return delay;
}

} // namespace dorn::tool
