// SPDX-License-Identifier: MIT
#include "nouns/board/BoardVerbs.hpp"

#include "Program.hpp"
#include "answers/DriverFaultText.hpp"
#include "node/NodePlace.hpp"
#include "node/PerNode.hpp"
#include "text/Values.hpp"
#include "waiting/TimeLimit.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

using board::DriverFault;
using board::DriverFunction;
using board::FaultStore;

constexpr const char* awaited = "the node's faults";

struct FaultOptions {
    std::string function;
    std::string code;
    std::string times;
    std::string after;
    bool isAlways = false;
    bool isPowerLoss = false;
    bool isClear = false;
    bool asJson = false;
    bool asNames = false;
    bool asCodes = false;
};

/// The function that a person named, with or without the prefix that all have. @throws UsageError
DriverFunction functionOf(const std::string& name)
{
    if (const auto function = DriverFunction::named(name)) {
        return *function;
    }
    if (const auto function = DriverFunction::named("ddal_" + name)) {
        return *function;
    }
    throw UsageError("there is no driver function '" + name + "'; 'dorn board fault --names' lists them");
}

/// @throws UsageError
std::int32_t codeOf(const std::string& text)
{
    const bool isNegative = text.starts_with('-');
    const std::uint64_t greatest = isNegative ? 0x7FFFFFFFU : 0xFFFFFFFFU;
    const auto number = readNumber(isNegative ? text.substr(1) : text);
    if (!number || *number == 0 || *number > greatest || *number == static_cast<std::uint32_t>(FaultStore::powerLoss)) {
        throw UsageError("--code: '" + text +
                         "' is no result of a function that fails: a number of 32 bits, not 0; "
                         "'dorn board fault --codes' lists those that have a meaning");
    }
    const auto bits = static_cast<std::uint32_t>(*number);
    return static_cast<std::int32_t>(isNegative ? 0U - bits : bits);
}

/// @throws UsageError
std::uint32_t timesOf(const FaultOptions& options)
{
    if (options.isAlways) {
        return FaultStore::always;
    }
    const std::string text = options.times.empty() ? "1" : options.times;
    const std::uint64_t times = parseNumber("--times", text, FaultStore::always - 1);
    if (times == 0) {
        throw UsageError("--times: 0 calls cannot fail; --clear takes a fault away");
    }
    return static_cast<std::uint32_t>(times);
}

std::vector<DriverFault> readFaults()
{
    if (!NodePlace().has(NodePart::DriverFaults)) {
        return {};
    }
    return answerOf(awaited, [] { return host::PerNode<FaultStore>::get().list(); });
}

Outcome list(const FaultOptions& options, Console& console)
{
    const std::vector<DriverFault> faults = readFaults();
    if (options.asJson) {
        console.print(jsonText(jsonArray(faults, driverFaultJson)));
    } else if (!faults.empty()) {
        console.print(driverFaultsTable(faults, console));
    } else {
        console.remark("no driver function has been told to fail on " + NodePlace().nodeName());
    }
    return Outcome::Fine;
}

Outcome listNames(Console& console)
{
    for (const std::string_view name : board::driverFunctionNames) {
        console.print(std::string(name) + "\n");
    }
    return Outcome::Fine;
}

Outcome listCodes(Console& console)
{
    console.print(driverResultsTable(console));
    return Outcome::Fine;
}

Outcome clear(const FaultOptions& options)
{
    std::vector<DriverFault> faults = readFaults();
    if (!options.function.empty()) {
        const auto number = functionOf(options.function).number();
        std::erase_if(faults, [number](const DriverFault& fault) { return fault.function.number() != number; });
    }
    for (const DriverFault& fault : faults) {
        host::PerNode<FaultStore>::get().clear(fault.function);
    }
    return Outcome::Fine;
}

std::uint32_t afterOf(const FaultOptions& options)
{
    return options.after.empty() ? 0 : parseUnsigned<std::uint32_t>("--after", options.after);
}

Outcome set(const FaultOptions& options, Console& console)
{
    const std::int32_t code = options.isPowerLoss ? FaultStore::powerLoss : codeOf(options.code);
    const DriverFault fault{functionOf(options.function), code, timesOf(options), 0, afterOf(options)};
    answerOf(awaited,
             [&fault] { host::PerNode<FaultStore>::get().set(fault.function, fault.code, fault.left, fault.after); });
    console.print(options.asJson ? jsonText(driverFaultJson(fault)) : driverFaultText(fault) + "\n");
    return Outcome::Fine;
}

Outcome fault(const FaultOptions& options, Console& console)
{
    const bool isOrder = !options.code.empty() || !options.times.empty() || !options.after.empty() ||
                         options.isAlways || options.isPowerLoss;
    if (options.asNames || options.asCodes) {
        if (isOrder || options.isClear || options.asJson || !options.function.empty()) {
            throw UsageError("--names and --codes list what there is, and take nothing else");
        }
        return options.asNames ? listNames(console) : listCodes(console);
    }
    if (options.isClear) {
        if (isOrder) {
            throw UsageError("--clear takes a fault away, and the other options make one");
        }
        return clear(options);
    }
    if (options.function.empty()) {
        if (isOrder) {
            throw UsageError("give the FUNCTION that is to fail");
        }
        return list(options, console);
    }
    if (options.code.empty() && !options.isPowerLoss) {
        throw UsageError("give --code, the result with which '" + options.function +
                         "' is to fail, --power-loss or --clear");
    }
    return set(options, console);
}

} // namespace

void addBoardFault(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<FaultOptions>();
    CLI::App& verb =
        program.addVerb(noun,
                        {"fault", "Has a driver function fail in every service; without one, lists those",
                         "dorn board fault ddal_fpga_update_mod --code 12 --times 3", "dorn board fault --names"},
                        [options](Console& console) { return fault(*options, console); });
    verb.add_option("FUNCTION", options->function, "The function, with or without 'ddal_'");
    CLI::Option* const code =
        verb.add_option("--code", options->code, "The result that it returns; --codes lists those with a meaning")
            ->type_name("N");
    CLI::Option* const times =
        verb.add_option("--times", options->times, "The calls that fail; 1 without it")->type_name("N");
    verb.add_option("--after", options->after, "The calls that work before; 0 without it")->type_name("N");
    CLI::Option* const always =
        verb.add_flag("--always", options->isAlways, "Every call fails until --clear")->excludes(times);
    verb.add_flag("--power-loss", options->isPowerLoss,
                  "The board loses its power in the call, half way where it flashes something")
        ->excludes(code)
        ->excludes(times)
        ->excludes(always);
    verb.add_flag("--clear", options->isClear, "Has FUNCTION work again; all of them without one");
    verb.add_flag("--json", options->asJson, "Prints JSON");
    CLI::Option* const names =
        verb.add_flag("--names", options->asNames, "Prints the names of all functions, one a line");
    verb.add_flag("--codes", options->asCodes, "Prints the results that have a meaning")->excludes(names);
}

} // namespace dorn::tool
