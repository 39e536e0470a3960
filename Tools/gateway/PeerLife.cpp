// SPDX-License-Identifier: MIT
#include "gateway/PeerLife.hpp"

#include <algorithm>

namespace dorn::gateway {

PeerLife::Meeting PeerLife::wouldBe(std::uint64_t epoch) const
{
    if (epoch == m_epoch) {
        return Meeting::Same;
    }
    if (std::find(m_ended.begin(), m_ended.end(), epoch) != m_ended.end()) {
        return Meeting::Ended;
    }
    return m_epoch == 0 ? Meeting::First : Meeting::New;
}

PeerLife::Meeting PeerLife::meet(std::uint64_t epoch, std::uint64_t askedAt, Nanoseconds now)
{
    const Meeting meeting = wouldBe(epoch);
    if (meeting != Meeting::New && meeting != Meeting::First) {
        return meeting;
    }
    if (askedAt != m_count) {
        return Meeting::Late;
    }
    if (meeting == Meeting::New) {
        m_ended.push_back(m_epoch); // before anything has changed, as there may be no memory for it
        if (m_ended.size() > endedRemembered) {
            m_ended.pop_front();
        }
    }
    ++m_count;
    m_epoch = epoch;
    if (meeting == Meeting::New) {
        for (const Listener& listener : m_listeners) {
            listener(now);
        }
    }
    return meeting;
}

} // namespace dorn::gateway
