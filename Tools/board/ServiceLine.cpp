// SPDX-License-Identifier: MIT
#include "board/ServiceLine.hpp"

#include "answers/ServiceList.hpp"
#include "text/Table.hpp"
#include "text/Values.hpp"

namespace dorn::tool {
namespace {

/// What a running service says of itself.
std::string publishedText(const SupervisedService& service)
{
    const std::string condition = service.info ? conditionOf(*service.info) : "";
    return condition.empty() ? phaseWord(ServicePhase::Running) : condition;
}

Cell runningCell(const SupervisedService& service)
{
    switch (service.health) {
    case ServiceHealth::Stopped:
        return {"stopped", Colour::Red};
    case ServiceHealth::Hangs:
        return {"hangs", Colour::Red};
    case ServiceHealth::Lingers:
        return {publishedText(service), Colour::Red};
    case ServiceHealth::Late:
    case ServiceHealth::Fine:
        break;
    }
    return {publishedText(service), Colour::Green};
}

std::string withStatus(const SupervisedService& service)
{
    const std::string word = phaseWord(service.phase);
    return service.lastStatus ? word + " " + std::to_string(*service.lastStatus) : word;
}

Cell stateCell(const SupervisedService& service, host::Nanoseconds now)
{
    const std::string word = phaseWord(service.phase);
    switch (service.phase) {
    case ServicePhase::Running:
        return runningCell(service);
    case ServicePhase::Starting:
        if (service.health == ServiceHealth::Stopped) {
            return runningCell(service);
        }
        return {word, service.health == ServiceHealth::Late ? Colour::Red : Colour::Yellow};
    case ServicePhase::BackOff:
        return {word + " " + ageText(service.due - now + std::chrono::milliseconds(999)), Colour::Yellow};
    case ServicePhase::Held:
    case ServicePhase::Ending:
        return {word, Colour::Yellow};
    case ServicePhase::Ended:
        return {withStatus(service), Colour::Faint};
    case ServicePhase::Failed:
    case ServicePhase::GivenUp:
        break;
    }
    return {withStatus(service), Colour::Red};
}

} // namespace

ServiceLine serviceLine(const SupervisedService& service, host::Nanoseconds now)
{
    const Cell state = stateCell(service, now);
    return {printable(service.description.name),
            service.process ? std::to_string(service.process->pid()) : "-",
            state.text,
            state.colour,
            ageText(now - service.since),
            std::to_string(service.restarts)};
}

std::string supervisedTable(const std::vector<SupervisedService>& services, host::Nanoseconds now,
                            const Console& console)
{
    Table table({"SERVICE", "PID", "STATE", "FOR", "RESTARTS"});
    for (const SupervisedService& service : services) {
        const ServiceLine line = serviceLine(service, now);
        table.add({line.name, line.pid, {line.state, line.colour}, line.age, line.restarts});
    }
    return table.text(console);
}

Json supervisedJson(const std::vector<SupervisedService>& services)
{
    Json json = Json::array();
    for (const SupervisedService& service : services) {
        const auto state = service.info ? stateOf(*service.info) : std::nullopt;
        json.push_back({{"name", service.description.name},
                        {"pid", service.process ? Json(service.process->pid()) : Json(nullptr)},
                        {"phase", phaseWord(service.phase)},
                        {"state", state ? Json(state->value) : Json(nullptr)},
                        {"restarts", service.restarts},
                        {"lastStatus", service.lastStatus ? Json(*service.lastStatus) : Json(nullptr)}});
    }
    return json;
}

} // namespace dorn::tool
