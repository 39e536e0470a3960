// SPDX-License-Identifier: MIT
#include "answers/AlarmText.hpp"

#include "FaultNames.hpp"
#include "text/Table.hpp"

namespace dorn::tool {
namespace {

using namespace examples;

host::Nanoseconds wallOf(std::uint64_t microseconds)
{
    constexpr std::uint64_t greatest = 4'000'000'000'000'000; // a time of the year 2096: what is later is nonsense
    return microseconds <= greatest ? std::chrono::microseconds(microseconds) : host::Nanoseconds(0);
}

std::string detailsText(const SAlarm& alarm)
{
    const std::string text = hexText(std::as_bytes(std::span(alarm.details)).first(alarm.detailsHere()));
    const std::size_t missing = alarm.detailSize - alarm.detailsHere();
    return missing == 0 ? text : text + "... " + std::to_string(missing) + " more";
}

std::string stateText(const SAlarm& alarm)
{
    return nameOrNumber(nameIn(alarmStateNames, alarm.state), alarm.state);
}

std::string eventText(const SAlarmEventInd& event)
{
    return nameOrNumber(nameIn(alarmEventNames, event.event), event.event);
}

Colour colourOf(const SAlarm& alarm)
{
    return alarm.state == EAlarmState_Active ? Colour::Red : Colour::Faint;
}

Json timeOrNull(std::uint64_t microseconds)
{
    return microseconds == 0 ? Json(nullptr) : Json(timeText(wallOf(microseconds)));
}

Json alarmJson(const SAlarm& alarm, const Names& names)
{
    return {{"number", alarm.number},
            {"state", stateText(alarm)},
            {"fault", alarm.faultId},
            {"name", nameIn(faultNames, alarm.faultId)},
            {"board", alarm.boardNumber},
            {"sender", partyJson(partyAt(alarm.sender, names))},
            {"count", alarm.count},
            {"raised", timeOrNull(alarm.raised)},
            {"reported", timeOrNull(alarm.reported)},
            {"ended", timeOrNull(alarm.ended)},
            {"detailSize", alarm.detailSize},
            {"details", hexText(std::as_bytes(std::span(alarm.details)).first(alarm.detailsHere()))}};
}

std::uint64_t timeOf(const SAlarmEventInd& event)
{
    return event.event == EAlarmEvent_Ended ? event.alarm.ended : event.alarm.reported;
}

} // namespace

std::string alarmFaultText(std::uint32_t faultId)
{
    const std::string name = nameIn(faultNames, faultId);
    return name.empty() ? "fault " + std::to_string(faultId) : name;
}

std::string alarmsTable(const std::vector<SAlarm>& alarms, const Names& names, const Console& console)
{
    Table table({"ALARM", "STATE", "FAULT", "BOARD", "FROM", "COUNT", "RAISED", "REPORTED", "ENDED", "DETAILS"});
    for (const SAlarm& alarm : alarms) {
        const std::string details = detailsText(alarm);
        table.add({std::to_string(alarm.number),
                   {stateText(alarm), colourOf(alarm)},
                   alarmFaultText(alarm.faultId),
                   std::to_string(alarm.boardNumber),
                   partyText(partyAt(alarm.sender, names), names.ownNode),
                   std::to_string(alarm.count),
                   shortTimeText(wallOf(alarm.raised)),
                   shortTimeText(wallOf(alarm.reported)),
                   shortTimeText(wallOf(alarm.ended)),
                   details.empty() ? "-" : details});
    }
    return table.text(console);
}

Json alarmsJson(const std::vector<SAlarm>& alarms, const Names& names)
{
    return jsonArray(alarms, [&names](const SAlarm& alarm) { return alarmJson(alarm, names); });
}

std::string alarmEventText(const SAlarmEventInd& event, const Names& names)
{
    const SAlarm& alarm = event.alarm;
    const std::string word = event.event == EAlarmEvent_Ended ? stateText(alarm) : eventText(event);
    const std::string details = detailsText(alarm);
    return timeText(wallOf(timeOf(event))) + " " + word + " " + std::to_string(alarm.number) + " " +
           alarmFaultText(alarm.faultId) + " board " + std::to_string(alarm.boardNumber) + " " +
           partyText(partyAt(alarm.sender, names), names.ownNode) + " count " + std::to_string(alarm.count) +
           (details.empty() ? "" : " details " + details);
}

Json alarmEventJson(const SAlarmEventInd& event, const Names& names)
{
    return {{"time", timeText(wallOf(timeOf(event)))},
            {"event", eventText(event)},
            {"alarm", alarmJson(event.alarm, names)}};
}

} // namespace dorn::tool
