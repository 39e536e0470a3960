// SPDX-License-Identifier: MIT
#include "nouns/board/BoardVerbs.hpp"

#include "Program.hpp"
#include "answers/ClockText.hpp"
#include "node/AskedService.hpp"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <memory>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr AskedService clockService{clockServiceCpid, "the clock service", "DornClockSExe"};

struct ShowOptions {
    bool asJson = false;
};

struct JumpOptions {
    std::string amount;
};

/// Something that happens to the clocks: a verb each.
struct Event {
    EClockAction action;
    const char* verb;
    const char* description;
    const char* example;
    const char* soAlready; ///< why it cannot happen
};

constexpr Event events[] = {
    {EClockAction_LoseReference, "lose-reference", "Takes the clock reference away: the PLL goes into holdover",
     "dorn board clock lose-reference", "the reference is lost already"},
    {EClockAction_RestoreReference, "restore-reference", "Gives the clock reference back",
     "dorn board clock restore-reference", "the reference is there"},
    {EClockAction_LoseSensors, "lose-sensors", "Has the sensors of the oven answer no more",
     "dorn board clock lose-sensors", "the sensors are lost already"},
    {EClockAction_RestoreSensors, "restore-sensors", "Has the sensors of the oven answer again",
     "dorn board clock restore-sensors", "the sensors answer"},
};

Outcome show(const ShowOptions& options, Console& console)
{
    const SClockShowResp clock = *askOnce<ClockShowReqMsg, ClockShowRespMsg>(clockService, {newTransactionId()});
    console.print(options.asJson ? jsonText(clockJson(clock)) : clockTable(clock, console));
    return Outcome::Fine;
}

/// Has something happen. @return EClockActStatus
std::uint32_t act(EClockAction action, double amount)
{
    return askOnce<ClockActReqMsg, ClockActRespMsg>(clockService, {newTransactionId(), action, amount})->status;
}

Outcome happen(const Event& event)
{
    const std::uint32_t status = act(event.action, 0);
    if (status == EClockActStatus_SoAlready) {
        throw Failure(event.soAlready);
    }
    if (status != EClockActStatus_Done) {
        throw Failure("the clock service refuses: status " + std::to_string(status));
    }
    return Outcome::Fine;
}

double parsePpb(const std::string& text)
{
    double value = 0;
    const bool hasPlus = text.starts_with('+') && !text.starts_with("+-"); // which from_chars() does not take
    const char* const begin = text.data() + (hasPlus ? 1 : 0);
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(begin, end, value, std::chars_format::fixed);
    if (error != std::errc() || last != end || !(std::fabs(value) <= greatestClockJump)) {
        throw UsageError("PPB: '" + text + "' is not a number from -1000 to 1000, decimals allowed");
    }
    return value;
}

Outcome jump(const JumpOptions& options)
{
    if (const std::uint32_t status = act(EClockAction_Jump, parsePpb(options.amount)); status != EClockActStatus_Done) {
        throw Failure("the clock service refuses: status " + std::to_string(status));
    }
    return Outcome::Fine;
}

} // namespace

void addBoardClock(Program& program, CLI::App& board)
{
    CLI::App& part = program.addPart(board, "clock", "The clock reference, the oscillator and what follows them");
    const auto shown = std::make_shared<ShowOptions>();
    CLI::App& showVerb = program.addVerb(
        part, {"show", "Shows the clocks, and what the clock service has been told of them", "dorn board clock show"},
        [shown](Console& console) { return show(*shown, console); });
    showVerb.add_flag("--json", shown->asJson, "Prints JSON");
    for (const Event& event : events) {
        program.addVerb(part, {event.verb, event.description, event.example},
                        [&event](Console&) { return happen(event); });
    }
    const auto jumped = std::make_shared<JumpOptions>();
    CLI::App& jumpVerb = program.addVerb(
        part, {"jump", "Has the oscillator's frequency jump, as crystals do", "dorn board clock jump 120"},
        [jumped](Console&) { return jump(*jumped); });
    jumpVerb.add_option("PPB", jumped->amount, "By how many parts per billion; negative: slower")->required();
}

} // namespace dorn::tool
