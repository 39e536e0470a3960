// SPDX-License-Identifier: MIT
#include "answers/ServiceList.hpp"

#include "ServiceState.hpp"
#include "rad/ERadHwapiState.h"
#include "text/Table.hpp"
#include "text/Values.hpp"

#include <algorithm>
#include <array>
#include <tuple>

namespace dorn::tool {
namespace {

using namespace vel::hwapi::common;

constexpr std::array<const char*, 6> stateWords{"", "starting", "waiting", "handling", "ended", "failed"};
static_assert(stateWords.size() == EServiceState_Failed + 1);

void sortByName(std::vector<host::EeInfo>& services)
{
    std::stable_sort(services.begin(), services.end(), [](const host::EeInfo& left, const host::EeInfo& right) {
        return std::tie(left.name, left.since) < std::tie(right.name, right.since);
    });
}

Cell stateCell(const host::EeInfo& service)
{
    const auto state = stateOf(service);
    const std::string condition = conditionOf(service);
    const std::string number = state ? std::to_string(state->value) : std::string();
    const std::string between = number.empty() || condition.empty() ? "" : " ";
    const std::string text = number + between + condition;
    const bool hasEndedWell = state && state->value == EServiceState_Ended;
    const bool isWrong = (!service.alive && !hasEndedWell) || (state && state->value == EServiceState_Failed);
    return {text.empty() ? "-" : text, isWrong ? Colour::Red : service.alive ? Colour::Green : Colour::Faint};
}

std::string cpidText(const host::EeInfo& service)
{
    return service.isGranted ? hexNumber(service.cpid, 4) : "-";
}

Json timeOrNull(std::int64_t wall)
{
    return wall == 0 ? Json(nullptr) : Json(timeText(host::Nanoseconds(wall)));
}

Json publishedJson(const host::EeInfo::Published& entry)
{
    return {{"id", entry.id}, {"value", entry.value}, {"moved", timeOrNull(entry.when)}};
}

Json cpidJson(const host::EeInfo::Cpid& entry)
{
    return {{"cpid", entry.cpid}, {"eu", entry.euName}};
}

Json serviceJson(const host::EeInfo& service)
{
    const auto state = stateOf(service);
    return {{"name", service.name},
            {"pid", service.pid},
            {"cpid", service.isGranted ? Json(service.cpid) : Json(nullptr)},
            {"alive", service.alive},
            {"state", state ? Json(state->value) : Json(nullptr)},
            {"condition", conditionOf(service)},
            {"started", timeOrNull(service.since)},
            {"moved", state ? timeOrNull(state->when) : Json(nullptr)},
            {"published", jsonArray(service.published, publishedJson)},
            {"cpids", jsonArray(service.cpids, cpidJson)}};
}

} // namespace

std::optional<host::EeInfo::Published> stateOf(const host::EeInfo& service)
{
    const auto found =
        std::find_if(service.published.begin(), service.published.end(),
                     [](const host::EeInfo::Published& entry) { return entry.id >> 16 == RAD_HWAPI_STATE_DOMAIN; });
    if (found == service.published.end()) {
        return std::nullopt;
    }
    host::EeInfo::Published state = *found;
    if (state.value == EServiceState_Ended && state.before == EServiceState_Failed) {
        state.value = EServiceState_Failed;
    }
    return state;
}

std::string stateWord(std::uint32_t state)
{
    return state < stateWords.size() ? stateWords[state] : "";
}

std::string conditionOf(const host::EeInfo& service)
{
    const auto state = stateOf(service);
    const std::string word = state ? stateWord(state->value) : "";
    const bool hasSaidItsEnd = state && (state->value == EServiceState_Ended || state->value == EServiceState_Failed);
    if (service.alive || hasSaidItsEnd) {
        return word;
    }
    return word.empty() ? "dead" : "dead (was " + word + ")";
}

std::string servicesTable(std::vector<host::EeInfo> services, const Console& console)
{
    sortByName(services);
    Table table({"SERVICE", "PID", "CPID", "STATE", "STARTED", "STATE MOVED"});
    for (const host::EeInfo& service : services) {
        const auto state = stateOf(service);
        table.add({printable(service.name), std::to_string(service.pid), cpidText(service), stateCell(service),
                   shortTimeText(host::Nanoseconds(service.since)),
                   shortTimeText(host::Nanoseconds(state ? state->when : 0))});
    }
    return table.text(console);
}

Json servicesJson(std::vector<host::EeInfo> services)
{
    sortByName(services);
    return jsonArray(services, serviceJson);
}

std::string serviceNames(std::vector<host::EeInfo> services)
{
    sortByName(services);
    std::string text;
    const std::string* previous = nullptr;
    for (const host::EeInfo& service : services) {
        if (!previous || *previous != service.name) {
            text += printable(service.name) + "\n";
        }
        previous = &service.name;
    }
    return text;
}

} // namespace dorn::tool
