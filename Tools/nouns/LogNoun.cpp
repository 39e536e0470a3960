// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "answers/LogView.hpp"
#include "log/LogReader.hpp"
#include "node/NodePlace.hpp"
#include "text/Values.hpp"
#include "waiting/TimeLimit.hpp"
#include "waiting/Watch.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

constexpr const char* awaited = "the node's log";

struct LogOptions {
    std::string lines = "50";
    bool isFollowed = false;
    std::vector<std::string> features;
    std::vector<std::string> services;
    std::string severity;
    bool asJson = false;
    WatchLimits limits;
};

LogFilter filterOf(const LogOptions& options)
{
    LogFilter filter{options.features, options.services, std::nullopt};
    if (!options.severity.empty()) {
        filter.leastSeverity = parseSeverity("--severity", options.severity);
    }
    return filter;
}

/// The latest @p count lines that the filter accepts. next() goes on behind them.
std::vector<host::LogLine> lastLines(host::LogReader& reader, const LogFilter& filter, std::size_t count)
{
    constexpr std::size_t growth = 8;
    constexpr std::size_t leastStep = 1000;
    for (std::size_t step = filter.isOpen() ? count : std::max(count, leastStep);; step *= growth) {
        std::vector<host::LogLine> lines = reader.last(step);
        const bool isAll = lines.size() < step;
        std::erase_if(lines, [&filter](const host::LogLine& line) { return !filter.accepts(line); });
        if (isAll || lines.size() >= count) {
            lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(std::min(count, lines.size())));
            return lines;
        }
    }
}

void show(const host::LogLine& line, const LogOptions& options, Console& console)
{
    console.print((options.asJson ? jsonLine(logLineJson(line)) : logLineText(line, console)) + "\n");
}

Outcome follow(host::LogReader& reader, const LogFilter& filter, const LogOptions& options, Console& console,
               WatchProgress& progress)
{
    const StopRequest stop([&reader] { reader.interrupt(); });
    std::uint64_t gaps = 0;
    while (progress.wantsMore() && !stop.hasCome()) {
        for (const host::LogLine& line : reader.next(progress.until())) {
            if (filter.accepts(line) && progress.wantsMore()) {
                show(line, options, console);
                progress.noteItem();
            }
        }
        console.flush();
        if (reader.gaps() != std::exchange(gaps, reader.gaps())) {
            console.remark("lines are missing: a process wrote over them before they could be read");
        }
    }
    return stop.hasCome() ? Outcome::Fine : progress.outcome();
}

Outcome showLog(const LogOptions& options, Console& console)
{
    const LogFilter filter = filterOf(options);
    const auto count = std::size_t{parseUnsigned<std::uint32_t>("--lines", options.lines)};
    WatchProgress progress(options.limits, console);
    const NodePlace node;
    node.require(NodePart::Log);
    std::unique_ptr<host::LogReader> reader;
    const std::vector<host::LogLine> lines = answerOf(awaited, [&] {
        reader = std::make_unique<host::LogReader>();
        return lastLines(*reader, filter, count);
    });
    for (const host::LogLine& line : lines) {
        show(line, options, console);
    }
    if (options.isFollowed) {
        console.flush();
        return follow(*reader, filter, options, console, progress);
    }
    if (lines.empty() && count != 0) {
        console.remark(filter.isOpen() ? "the log of " + node.nodeName() + " is empty"
                                       : "no line of the log of " + node.nodeName() + " is like that");
        return Outcome::No;
    }
    return Outcome::Fine;
}

} // namespace

void addLogNoun(Program& program)
{
    const auto options = std::make_shared<LogOptions>();
    CLI::App& verb = program.addCommand({"log", "The log of the node: the latest lines of all its processes by time",
                                         "dorn log -n 20 --service ClimateS --severity warning"},
                                        [options](Console& console) { return showLog(*options, console); });
    verb.add_option("-n,--lines", options->lines, "How many of the latest lines; 50 without it")->type_name("N");
    CLI::Option* const isFollowed =
        verb.add_flag("-f,--follow", options->isFollowed, "Goes on with the lines to come, until Ctrl-C");
    verb.add_option("--feature", options->features, "Only lines of this feature, by name or number; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    verb.add_option("--severity", options->severity, "Only lines at least so severe: debug, info, warning, error, vip")
        ->type_name("WORD");
    verb.add_option("--service", options->services, "Only lines of this service; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    const WatchLimitOptions limits = addWatchLimits(verb, options->limits);
    limits.count->needs(isFollowed);
    limits.timeout->needs(isFollowed);
    verb.add_flag("--json", options->asJson, "Prints a JSON object a line");
}

} // namespace dorn::tool
