// SPDX-License-Identifier: MIT
#include "gateway/Reception.hpp"

#include "gateway/Link.hpp"

#include <algorithm>

namespace dorn::gateway {
namespace {

/// A confirmation waits so long for a parcel in the opposite direction to go along with.
constexpr std::chrono::milliseconds confirmWithin{5};
/// So much is not left unconfirmed: a part of what a sender may have on its way.
constexpr std::size_t confirmAfterBytes = std::size_t{256} << 10;

} // namespace

std::optional<Welcome> Reception::onGreeting(const Greeting& greeting, std::uint64_t ownEpoch, const std::string& route)
{
    if (m_life.wouldBe(greeting.epoch) == PeerLife::Meeting::Ended) {
        return std::nullopt;
    }
    m_greeted = {randomId(), greeting.epoch, route, m_life.count()};
    return Welcome{greeting.attempt, ownEpoch, m_greeted.id, greeting.epoch == m_streamEpoch ? m_expected : 1};
}

Reception::Verdict Reception::onSession(std::uint64_t session, Nanoseconds now)
{
    if (session != 0 && session == m_current.id) {
        return m_life.epoch() == m_current.epoch ? Verdict::Taken : Verdict::Stale;
    }
    if (session == 0 || session != m_greeted.id) {
        return Verdict::Stale;
    }
    m_life.meet(m_greeted.epoch, m_greeted.askedAt, now);
    if (m_life.epoch() != m_greeted.epoch) {
        return Verdict::Stale;
    }
    m_current = std::move(m_greeted);
    m_greeted = {};
    if (m_current.epoch != m_streamEpoch) {
        m_streamEpoch = m_current.epoch;
        m_expected = 1;
    }
    m_unconfirmedBytes = 0;
    m_confirmBy = host::noDeadline;
    return Verdict::Taken;
}

Reception::Verdict Reception::onParcel(const Parcel& parcel, Nanoseconds now)
{
    if (parcel.number > m_expected) {
        return Verdict::Missing;
    }
    m_unconfirmedBytes += parcel.records.size();
    m_confirmBy = m_unconfirmedBytes >= confirmAfterBytes ? now : std::min(m_confirmBy, now + confirmWithin);
    if (parcel.number < m_expected) {
        return Verdict::Again;
    }
    ++m_expected;
    return Verdict::Taken;
}

void Reception::noteSaid()
{
    m_unconfirmedBytes = 0;
    m_confirmBy = host::noDeadline;
}

Confirmation Reception::confirm()
{
    noteSaid();
    return confirmation();
}

} // namespace dorn::gateway
