// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "AskedService.hpp"
#include "Program.hpp"
#include "RedundancyText.hpp"
#include "TimeLimit.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr AskedService redundancyManager{redundancyManagerCpid, "the redundancy manager", "DornRedundancyManagerExe"};
constexpr const char* awaited = "the redundancy manager";

struct ShowOptions {
    bool asJson = false;
};

struct SwitchOptions {
    std::string role;
};

/// What the manager has answered, whichever the question.
struct Unit {
    std::uint32_t status = ERedundancySwitchStatus_Done;
    std::uint32_t role = EUnitRole_Between;
    std::vector<SRedundantService> services;
};

Outcome show(const ShowOptions& options, Console& console)
{
    const NodePlace node;
    node.require(NodePart::Messages);
    Unit unit;
    answerOf(awaited, [&unit] {
        const CommunicationPoint point;
        const auto answer = ask<RedundancyShowReqMsg, RedundancyShowRespMsg>(redundancyManager, {newTransactionId()});
        unit = {ERedundancySwitchStatus_Done, answer->role, answer.items<SRedundantService>(answer->serviceCount)};
    });
    NameBook book(node);
    console.print(options.asJson ? jsonText(redundancyJson(unit.role, unit.services, book.names()))
                                 : redundancyText(unit.role, unit.services, book.names(), console));
    return Outcome::Fine;
}

EUnitRole roleOf(const std::string& text)
{
    if (text == "active") {
        return EUnitRole_Active;
    }
    if (text == "standby") {
        return EUnitRole_Standby;
    }
    throw UsageError("'" + text + "' is no role: give 'active' or 'standby'");
}

[[noreturn]] void explain(const Unit& unit, const std::string& role, const NodePlace& node)
{
    if (unit.status == ERedundancySwitchStatus_Busy) {
        throw Failure("the redundancy manager is busy with another question or switch; try again");
    }
    NameBook book(node);
    std::string text = "the unit has not become " + role + " and is now '" + roleText(unit.role) + "'";
    for (const SRedundantService& service : unit.services) {
        text += "; " + failureText(service, book.names());
    }
    throw Failure(text);
}

Outcome switchOver(const SwitchOptions& options, Console&)
{
    const EUnitRole role = roleOf(options.role);
    const NodePlace node;
    node.require(NodePart::Messages);
    Unit unit;
    answerOf(awaited, [&] {
        const CommunicationPoint point;
        const auto answer =
            ask<RedundancySwitchReqMsg, RedundancySwitchRespMsg>(redundancyManager, {newTransactionId(), role});
        unit = {answer->status, answer->role, answer.items<SRedundantService>(answer->serviceCount)};
    });
    if (unit.status != ERedundancySwitchStatus_Done) {
        explain(unit, options.role, node);
    }
    return Outcome::Fine;
}

} // namespace

void addRedundancyNoun(Program& program)
{
    CLI::App& noun = program.addNoun("redundancy", "The unit's part in a redundant pair");
    const auto shown = std::make_shared<ShowOptions>();
    CLI::App& showVerb =
        program.addVerb(noun, {"show", "Asks the services that take part for their states", "dorn redundancy show"},
                        [shown](Console& console) { return show(*shown, console); });
    showVerb.add_flag("--json", shown->asJson, "Prints JSON");

    const auto switched = std::make_shared<SwitchOptions>();
    CLI::App& switchVerb =
        program.addVerb(noun, {"switch", "Makes the unit the active one, or standby", "dorn redundancy switch active"},
                        [switched](Console& console) { return switchOver(*switched, console); });
    switchVerb.add_option("ROLE", switched->role, "'active' or 'standby'")->required();
}

} // namespace dorn::tool
