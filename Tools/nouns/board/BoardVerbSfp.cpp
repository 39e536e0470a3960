// SPDX-License-Identifier: MIT
#include "nouns/board/BoardVerbs.hpp"

#include "Program.hpp"
#include "answers/SfpText.hpp"
#include "node/AskedService.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr AskedService sfpService{sfpServiceCpid, "the SFP service", "DornSfpSExe"};
constexpr const char* cageNumbers = "dorn board sfp show --names";

struct ShowOptions {
    bool asJson = false;
    bool asNames = false;
};

struct CageOptions {
    std::string cage;
};

Outcome show(const ShowOptions& options, Console& console)
{
    const auto answer = askOnce<SfpShowReqMsg, SfpShowRespMsg>(sfpService, {newTransactionId()});
    const auto cages = answer.items<SSfpCage>(answer->cageCount);
    if (options.asJson) {
        console.print(jsonText(sfpJson(cages)));
    } else {
        console.print(options.asNames ? sfpCageNumbers(cages) : sfpTable(cages, console));
    }
    return Outcome::Fine;
}

/// Plugs a module into a cage, or pulls it.
Outcome plug(const CageOptions& options, bool isPlugged)
{
    const auto cage = parseUnsigned<std::uint32_t>("CAGE", options.cage);
    const SSfpPlugReq request{newTransactionId(), cage, isPlugged ? 1U : 0U};
    const std::uint32_t status = askOnce<SfpPlugReqMsg, SfpPlugRespMsg>(sfpService, request)->status;
    if (status == ESfpPlugStatus_NoSuchCage) {
        throw Failure("the board has no cage " + options.cage + "; 'dorn board sfp show' lists those that it has");
    }
    if (status != ESfpPlugStatus_Done) {
        throw Failure("cage " + options.cage + (isPlugged ? " has a module already" : " is empty already"));
    }
    return Outcome::Fine;
}

void addHand(Program& program, CLI::App& part, const VerbText& text, bool isPlugged)
{
    const auto options = std::make_shared<CageOptions>();
    CLI::App& verb = program.addVerb(part, text, [options, isPlugged](Console&) { return plug(*options, isPlugged); });
    verb.add_option("CAGE", options->cage, "Number of the cage")->required();
}

} // namespace

void addBoardSfp(Program& program, CLI::App& board)
{
    CLI::App& part = program.addPart(board, "sfp", "The SFP cages and their modules");
    const auto options = std::make_shared<ShowOptions>();
    CLI::App& verb = program.addVerb(
        part, {"show", "Shows the cages, and what the SFP service has been told of them", "dorn board sfp show"},
        [options](Console& console) { return show(*options, console); });
    CLI::Option* const json = verb.add_flag("--json", options->asJson, "Prints JSON");
    verb.add_flag("--names", options->asNames, "Prints the numbers alone, one a line")->excludes(json);
    addHand(program, part, {"plug", "Plugs a module into a cage", "dorn board sfp plug 1", cageNumbers}, true);
    addHand(program, part, {"pull", "Pulls the module out of a cage", "dorn board sfp pull 1", cageNumbers}, false);
}

} // namespace dorn::tool
