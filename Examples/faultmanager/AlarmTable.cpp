// SPDX-License-Identifier: MIT
#include "AlarmTable.hpp"

#include <algorithm>

namespace dorn::examples {
namespace {

bool isAlarmOf(const SAlarm& alarm, const Fault& fault)
{
    return alarm.faultId == fault.faultId && alarm.boardNumber == fault.boardNumber && alarm.sender == fault.sender;
}

void note(SAlarm& alarm, const Fault& fault, std::uint64_t now)
{
    ++alarm.count;
    alarm.reported = now;
    alarm.detailSize = static_cast<std::uint32_t>(fault.details.size());
    alarm.details.fill(0);
    std::copy_n(fault.details.begin(), alarm.detailsHere(), alarm.details.begin());
}

} // namespace

void AlarmTable::report(const Fault& fault, std::uint64_t now)
{
    const auto known = std::find_if(m_active.begin(), m_active.end(),
                                    [&fault](const SAlarm& alarm) { return isAlarmOf(alarm, fault); });
    if (known != m_active.end()) {
        note(*known, fault, now);
        m_observer(EAlarmEvent_Repeated, *known);
        return;
    }
    if (m_active.size() == maxActiveAlarms) {
        end(std::min_element(m_active.begin(), m_active.end(),
                             [](const SAlarm& left, const SAlarm& right) { return left.reported < right.reported; }),
            EAlarmState_Displaced, now);
    }
    SAlarm alarm{};
    alarm.number = ++m_lastNumber;
    alarm.state = EAlarmState_Active;
    alarm.faultId = fault.faultId;
    alarm.boardNumber = fault.boardNumber;
    alarm.sender = fault.sender;
    alarm.raised = now;
    note(alarm, fault, now);
    m_active.push_back(alarm);
    m_observer(EAlarmEvent_Raised, alarm);
}

std::uint32_t AlarmTable::clear(std::uint32_t number, std::uint64_t now)
{
    std::uint32_t cleared = 0;
    for (auto alarm = m_active.begin(); alarm != m_active.end();) {
        if (number != 0 && alarm->number != number) {
            ++alarm;
            continue;
        }
        const auto place = alarm - m_active.begin();
        end(alarm, EAlarmState_Cleared, now);
        alarm = m_active.begin() + place;
        ++cleared;
    }
    return cleared;
}

void AlarmTable::end(std::vector<SAlarm>::iterator alarm, EAlarmState state, std::uint64_t now)
{
    SAlarm ended = *alarm;
    ended.state = state;
    ended.ended = now;
    m_active.erase(alarm);
    if (m_past.size() == maxPastAlarms) {
        m_past.erase(m_past.begin());
    }
    m_past.push_back(ended);
    m_observer(EAlarmEvent_Ended, ended);
}

} // namespace dorn::examples
