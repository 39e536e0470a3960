// SPDX-License-Identifier: MIT
#include "nouns/board/BoardVerbs.hpp"

#include "Program.hpp"
#include "ResetMessages.hpp"
#include "device/Resets.hpp"
#include "node/AskedService.hpp"
#include "waiting/TimeLimit.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr AskedService resetService{resetServiceCpid, "the reset service", "DornResetSExe"};
constexpr std::chrono::milliseconds glance{10};

struct ResetOptions {
    std::string text = "asked for with dorn";
    std::string reason = "1";
};

SResetReq requestOf(const ResetOptions& options)
{
    SResetReq request{newTransactionId(), 0, {}};
    request.reason = parseUnsigned<std::uint32_t>("--reason", options.reason);
    const std::size_t size = std::min(options.text.size(), request.text.size() - 1);
    std::copy_n(options.text.begin(), size, request.text.begin());
    return request;
}

/// Waits until the board has counted a reset. The service answers only when it does not reset the board.
void awaitReset(std::uint32_t resets)
{
    while (board::resetCount() == resets) {
        if (const MessageHandle answer = receive(host::Clock::get().monotonic() + glance);
            answer && AaSysComMsgGetId(answer.get()) == ResetRespMsg::ID) {
            throw Failure("the board is not reset: it has no watchdog, or its storage cannot be written");
        }
    }
}

Outcome reset(const ResetOptions& options)
{
    const SResetReq request = requestOf(options);
    NodePlace().require(NodePart::Messages);
    answerOf(resetService.name, [&request] {
        const CommunicationPoint point;
        const std::uint32_t resets = board::resetCount();
        sendOrExplain(resetService, ResetReqMsg::ID, std::as_bytes(std::span(&request, 1)));
        awaitReset(resets);
    });
    return Outcome::Fine;
}

} // namespace

void addBoardReset(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ResetOptions>();
    CLI::App& verb = program.addVerb(noun, {"reset", "Has the watchdog reset the board", "dorn board reset upgrade"},
                                     [options](Console&) { return reset(*options); });
    verb.add_option("WHY", options->text, "What to remember as the reason");
    verb.add_option("--reason", options->reason, "The same as a number; 1 without it")->type_name("N");
}

} // namespace dorn::tool
