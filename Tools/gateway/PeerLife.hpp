// SPDX-License-Identifier: MIT
/// @file PeerLife.hpp
/// Which life of another gateway this one has to do with.
#pragma once

#include "port/Clock.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

namespace dorn::gateway {

using host::Nanoseconds;

/// Epochs are random numbers and have no order. The dead are told by what they answer: a gateway begins to live when
/// the one before is dead, so that nobody but the present one can answer what has been asked since it was met. However
/// long ago a life has ended, and however late what it has left in the network arrives, it is not taken for a new one.
/// The lives that ended last are remembered besides: two gateways that live at once with one node's keys could take
/// turns otherwise.
class PeerLife {
public:
    enum class Meeting {
        First, ///< nobody had been met
        Same,
        New,   ///< another life: the one before has ended
        Ended, ///< a life that has ended; passed over
        Late   ///< another life, which answers what was asked before the present one was met; passed over
    };

    using Listener = std::function<void(Nanoseconds now)>;
    /// Has @p listener called whenever a life has ended. It lives as long as this object.
    void whenEnded(Listener listener) { m_listeners.push_back(std::move(listener)); }

    /// How many lives have been met. Who asks the other gateway for its epoch notes it for meet().
    std::uint64_t count() const { return m_count; }

    /// The other gateway has answered with its epoch.
    /// @param askedAt count() when it was asked
    Meeting meet(std::uint64_t epoch, std::uint64_t askedAt, Nanoseconds now);
    /// What meet() would say to who answers what is asked now.
    Meeting wouldBe(std::uint64_t epoch) const;

    /// 0 when nobody has been met.
    std::uint64_t epoch() const { return m_epoch; }

private:
    static constexpr std::size_t endedRemembered = 64;

    std::uint64_t m_epoch = 0;
    std::uint64_t m_count = 0;
    std::deque<std::uint64_t> m_ended;
    std::vector<Listener> m_listeners;
};

} // namespace dorn::gateway
