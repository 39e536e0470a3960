// SPDX-License-Identifier: MIT
#include "nouns/board/BoardVerbs.hpp"

#include "Program.hpp"
#include "answers/RioFaultText.hpp"
#include "node/PerNode.hpp"
#include "text/Values.hpp"
#include "waiting/TimeLimit.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

using board::RioAddress;
using board::RioFaultStore;

constexpr const char* awaited = "the node's RapidIO devices";
constexpr std::uint64_t longestDelay = 3'600'000; // an hour

struct ShowOptions {
    bool asJson = false;
};

struct DeviceOptions {
    std::string device;
    std::string port;
    std::string amount;
    bool isAlways = false;
};

RioAddress addressOf(const DeviceOptions& options)
{
    const std::string port = options.port.empty() ? "0" : options.port;
    return {parseUnsigned<std::uint16_t>("--port", port), parseUnsigned<std::uint16_t>("DEVICE", options.device)};
}

/// Does something to a device.
template <class Work>
Outcome tell(const DeviceOptions& options, const Work& work)
{
    const RioAddress device = addressOf(options);
    answerOf(awaited, [&] { work(host::PerNode<RioFaultStore>::get(), device); });
    return Outcome::Fine;
}

Outcome show(const ShowOptions& options, Console& console)
{
    const auto faults = answerOf(awaited, [] { return host::PerNode<RioFaultStore>::get().list(); });
    if (options.asJson) {
        console.print(jsonText(rioFaultsJson(faults)));
    } else if (!faults.empty()) {
        console.print(rioFaultsTable(faults, console));
    } else {
        console.remark("no RapidIO device has been told what goes wrong with it");
    }
    return Outcome::Fine;
}

Outcome corrupt(const DeviceOptions& options)
{
    const std::string amount = options.amount.empty() ? "1" : options.amount;
    const std::uint64_t copies =
        options.isAlways ? RioFaultStore::always : parseNumber("--copies", amount, RioFaultStore::always - 1);
    return tell(options, [copies](RioFaultStore& store, const RioAddress& device) {
        store.corrupt(device, static_cast<std::uint32_t>(copies));
    });
}

Outcome slow(const DeviceOptions& options)
{
    const std::chrono::milliseconds delay(parseNumber("MILLISECONDS", options.amount, longestDelay));
    return tell(options, [delay](RioFaultStore& store, const RioAddress& device) { store.slow(device, delay); });
}

Outcome heal(const DeviceOptions& options)
{
    return tell(options, [](RioFaultStore& store, const RioAddress& device) { store.heal(device); });
}

void addDevice(CLI::App& verb, const std::shared_ptr<DeviceOptions>& options)
{
    verb.add_option("DEVICE", options->device, "RapidIO id of the device")->required();
    verb.add_option("--port", options->port, "The port behind which it is; 0 without it")->type_name("N");
}

} // namespace

void addBoardRio(Program& program, CLI::App& board)
{
    CLI::App& part = program.addPart(board, "rio", "The RapidIO devices and what goes wrong with them");
    const auto shown = std::make_shared<ShowOptions>();
    program
        .addVerb(part, {"show", "Shows the devices that corrupt or are slow", "dorn board rio show"},
                 [shown](Console& console) { return show(*shown, console); })
        .add_flag("--json", shown->asJson, "Prints JSON");

    const auto corrupted = std::make_shared<DeviceOptions>();
    CLI::App& corruptVerb = program.addVerb(
        part,
        {"corrupt", "Has a device spoil a byte of what is copied to it", "dorn board rio corrupt 0x10 --copies 3"},
        [corrupted](Console&) { return corrupt(*corrupted); });
    addDevice(corruptVerb, corrupted);
    CLI::Option* const copies =
        corruptVerb.add_option("--copies", corrupted->amount, "The copies that it spoils; 1 without it")
            ->type_name("N");
    corruptVerb.add_flag("--always", corrupted->isAlways, "Every copy until 'heal'")->excludes(copies);

    const auto slowed = std::make_shared<DeviceOptions>();
    CLI::App& slowVerb =
        program.addVerb(part, {"slow", "Has each copy to or from a device take longer", "dorn board rio slow 0x10 20"},
                        [slowed](Console&) { return slow(*slowed); });
    addDevice(slowVerb, slowed);
    slowVerb.add_option("MILLISECONDS", slowed->amount, "How much longer each copy of up to 64 KiB takes")->required();

    const auto healed = std::make_shared<DeviceOptions>();
    addDevice(program.addVerb(part, {"heal", "Has a device work again", "dorn board rio heal 0x10"},
                              [healed](Console&) { return heal(*healed); }),
              healed);
}

} // namespace dorn::tool
