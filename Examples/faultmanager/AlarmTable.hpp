// SPDX-License-Identifier: MIT
/// @file AlarmTable.hpp
/// What becomes of reported faults.
#pragma once

#include "AlarmMessages.hpp"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace dorn::examples {

/// A fault as it was reported.
struct Fault {
    std::uint32_t faultId;
    std::uint32_t boardNumber;
    std::uint32_t sender;
    std::span<const std::uint8_t> details;
};

/// The active and the past alarms, never more than AlarmMessages.hpp says.
///
/// A fault that the same sender reports again for the same board is the same alarm. It is active until an operator
/// clears it: nothing that is reported says that a fault is over, and a sender that has died has not repaired anything.
class AlarmTable {
public:
    /// Told of every change, when it has been made.
    using Observer = std::function<void(EAlarmEvent, const SAlarm&)>;

    explicit AlarmTable(Observer observer) : m_observer(std::move(observer)) {}

    /// A fault has been reported. When there is no room, the active alarm that was not reported for longest becomes
    /// past.
    /// @param now micro-seconds since 1970
    void report(const Fault& fault, std::uint64_t now);

    /// Makes the active alarm with this number past, or all for 0. @return how many have become past.
    std::uint32_t clear(std::uint32_t number, std::uint64_t now);

    const std::vector<SAlarm>& active() const { return m_active; } ///< by number
    const std::vector<SAlarm>& past() const { return m_past; }     ///< the latest that ended last

private:
    void end(std::vector<SAlarm>::iterator alarm, EAlarmState state, std::uint64_t now);

    Observer m_observer;
    std::vector<SAlarm> m_active;
    std::vector<SAlarm> m_past;
    std::uint32_t m_lastNumber = 0;
};

} // namespace dorn::examples
