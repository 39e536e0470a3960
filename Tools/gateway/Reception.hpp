// SPDX-License-Identifier: MIT
/// @file Reception.hpp
/// What comes from one other node: sessions, the order of parcels, and what is confirmed, without any input or output.
#pragma once

#include "gateway/Frames.hpp"
#include "gateway/PeerLife.hpp"
#include "port/Clock.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace dorn::gateway {

using host::Nanoseconds;

/// One thread. Time is what its callers say it is.
class Reception {
public:
    enum class Verdict {
        Taken,   ///< it is the parcel that was expected; or a ping to be answered
        Again,   ///< a parcel that has come before; to be passed over
        Stale,   ///< it is of a session that is over, or of a life that has ended
        Missing, ///< parcels before it are missing
    };

    explicit Reception(PeerLife& life) : m_life(life) {}

    /// The other node wants to send. What it gets is the Welcome.
    /// @param route where answers in the session are to go
    /// @return nothing when it greets from a life that has ended.
    std::optional<Welcome> onGreeting(const Greeting& greeting, std::uint64_t ownEpoch, const std::string& route);

    /// A message bears a session's id. The first of a session begins it.
    Verdict onSession(std::uint64_t session, Nanoseconds now);
    /// Breaks the session off: the other node has to begin anew, and to send again what has not been taken.
    void endSession() { m_current.id = 0; }
    /// A parcel; after onSession().
    Verdict onParcel(const Parcel& parcel, Nanoseconds now);

    /// Where answers go.
    const std::string& route() const { return m_current.route; }
    /// What has arrived so far.
    Confirmation confirmation() const { return {m_current.id, m_current.id != 0 ? m_expected : 0}; }
    /// That has been said.
    void noteSaid();
    /// Both.
    Confirmation confirm();
    /// When it is to be said, if it is not said along with something else before; noDeadline when there is nothing.
    Nanoseconds deadline() const { return m_confirmBy; }

private:
    struct Session {
        std::uint64_t id = 0;
        std::uint64_t epoch = 0;
        std::string route;
        std::uint64_t askedAt = 0; ///< count of lives when it was welcomed
    };

    PeerLife& m_life;
    Session m_current;
    Session m_greeted;               ///< begins with the first message that bears its id
    std::uint64_t m_streamEpoch = 0; ///< the life whose parcels m_expected counts
    std::uint64_t m_expected = 1;
    std::size_t m_unconfirmedBytes = 0;
    Nanoseconds m_confirmBy{host::noDeadline};
};

} // namespace dorn::gateway
