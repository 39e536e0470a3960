// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "answers/RedundancyText.hpp"
#include "node/AskedService.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr AskedService redundancyManager{redundancyManagerCpid, "the redundancy manager", "DornRedundancyManagerExe"};

struct ShowOptions {
    bool asJson = false;
};

struct SwitchOptions {
    std::string role;
};

Outcome show(const ShowOptions& options, Console& console)
{
    const auto answer = askOnce<RedundancyShowReqMsg, RedundancyShowRespMsg>(redundancyManager, {newTransactionId()});
    const auto services = answer.items<SRedundantService>(answer->serviceCount);
    NameBook book{NodePlace()};
    console.print(options.asJson ? jsonText(redundancyJson(answer->role, services, book.names()))
                                 : redundancyText(answer->role, services, book.names(), console));
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

[[noreturn]] void explain(const SRedundancySwitchResp& answer, const std::vector<SRedundantService>& failed,
                          const std::string& role)
{
    if (answer.status == ERedundancySwitchStatus_Busy) {
        throw Failure("the redundancy manager is busy with another question or switch; try again");
    }
    NameBook book{NodePlace()};
    std::string text = "the unit has not become " + role + " and is now '" + roleText(answer.role) + "'";
    for (const SRedundantService& service : failed) {
        text += "; " + failureText(service, book.names());
    }
    throw Failure(text);
}

Outcome switchOver(const SwitchOptions& options, Console&)
{
    const auto answer = askOnce<RedundancySwitchReqMsg, RedundancySwitchRespMsg>(
        redundancyManager, {newTransactionId(), roleOf(options.role)});
    const auto failed = answer.items<SRedundantService>(answer->serviceCount);
    if (answer->status != ERedundancySwitchStatus_Done) {
        explain(*answer, failed, options.role);
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
