// SPDX-License-Identifier: MIT
/// @file DropBurst.hpp
/// When it is said that messages are dropped for want of room.
#pragma once

#include "port/Clock.hpp"

#include <cstdint>
#include <optional>

namespace dorn::gateway {

using host::Nanoseconds;

/// Drops that follow each other are one burst, which is told at its beginning and at its end: a source that is a little
/// faster than what it fills overflows many times a second. Time is what its callers say it is.
class DropBurst {
public:
    /// @param calm a burst is over when nothing has been dropped for so long
    explicit DropBurst(Nanoseconds calm) : m_calm(calm) {}

    /// Messages have been dropped. @return whether a burst begins with them
    bool note(std::uint64_t count);
    /// To be called now and then while nothing waits.
    /// @return how many messages were dropped in the burst that is over now; nothing when none is
    std::optional<std::uint64_t> endAt(Nanoseconds now);

private:
    Nanoseconds m_calm;
    Nanoseconds m_calmSince{0};
    std::uint64_t m_count = 0; ///< of this burst; 0: there is none
    std::uint64_t m_known = 0; ///< of them, to endAt()
};

} // namespace dorn::gateway
