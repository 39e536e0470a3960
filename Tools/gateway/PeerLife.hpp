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

/// Epochs are random numbers and have no order; a life that has ended is told by having been met before another.
class PeerLife {
public:
    enum class Meeting {
        First, ///< nobody had been met
        Same,
        New,  ///< another life: the one before has ended
        Ended ///< a life that has ended; passed over
    };

    using Listener = std::function<void(Nanoseconds now)>;
    /// Has @p listener called whenever a life has ended. It lives as long as this object.
    void whenEnded(Listener listener) { m_listeners.push_back(std::move(listener)); }

    Meeting meet(std::uint64_t epoch, Nanoseconds now);
    /// What meet() would say.
    Meeting wouldBe(std::uint64_t epoch) const;

    /// 0 when nobody has been met.
    std::uint64_t epoch() const { return m_epoch; }

private:
    static constexpr std::size_t endedRemembered = 64;

    std::uint64_t m_epoch = 0;
    std::deque<std::uint64_t> m_ended;
    std::vector<Listener> m_listeners;
};

} // namespace dorn::gateway
