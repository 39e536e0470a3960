// SPDX-License-Identifier: MIT
/// @file RestartRecord.hpp
/// When a service that has ended is started again.
#pragma once

#include "port/Clock.hpp"

#include <cstdint>
#include <deque>

namespace dorn::tool {

/// After which ends a service is started again.
enum class RestartWhen {
    Never,
    OnFailure, ///< after every end but a good one
    Always
};

/// How a service is started again.
struct RestartPolicy {
    RestartWhen when = RestartWhen::OnFailure;
    host::Nanoseconds first =
        std::chrono::milliseconds(200);                    ///< before the first restart; twice as long before each next
    host::Nanoseconds greatest = std::chrono::seconds(10); ///< never longer than this
    std::uint32_t limit = 10;                              ///< so many restarts ...
    host::Nanoseconds within = std::chrono::seconds(60);   ///< ... in this time, and no more

    bool operator==(const RestartPolicy&) const = default;
};

/// What becomes of a service that has ended.
struct RestartDecision {
    enum class What { Leave, Restart, GiveUp };
    What what;
    host::Nanoseconds delay{}; ///< before a restart

    bool operator==(const RestartDecision&) const = default;
};

/// Remembers the restarts of one service. Only those of the policy's latest time count: who has run well for so long
/// begins with the first delay again.
class RestartRecord {
public:
    explicit RestartRecord(const RestartPolicy& policy) : m_policy(policy) {}

    /// What becomes of the service, which has ended at @p now; a restart is remembered.
    RestartDecision decide(bool hasEndedWell, host::Nanoseconds now);
    /// Forgets all restarts, as after a reset of the board.
    void clear() { m_restarts.clear(); }

private:
    host::Nanoseconds nextDelay() const;

    RestartPolicy m_policy;
    std::deque<host::Nanoseconds> m_restarts; ///< when they were decided, the oldest first
};

} // namespace dorn::tool
