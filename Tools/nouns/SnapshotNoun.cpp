// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "node/NodePlace.hpp"
#include "node/RunDirectory.hpp"
#include "snapshot/Snapshot.hpp"
#include "text/Values.hpp"
#include "waiting/TimeLimit.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

struct SnapshotOptions {
    std::string path;
    std::string timeout = "1.3"; // and some more to pack: within two seconds
    bool asJson = false;
};

constexpr std::chrono::milliseconds packing{400};

SnapshotTimes timesWithin(host::Nanoseconds patience)
{
    const host::Deadline now = host::Clock::get().monotonic();
    return {now + patience * 3 / 4, now + patience * 9 / 10, now + patience};
}

Outcome snapshot(const SnapshotOptions& options, Console& console)
{
    const host::Nanoseconds patience = parseSeconds("--timeout", options.timeout);
    const NodePlace node;
    node.require(NodePart::Services);
    const std::string name = snapshotName(host::nodeIdFromEnvironment(), host::Clock::get().wall());
    const std::string path = options.path.empty() ? name + ".tar.gz" : options.path;
    const TimeLimit limit(patience + packing, [] { giveUp("the node's troubleshooting files or the archive's disk"); });
    const SnapshotReport report = takeSnapshot(path, name, timesWithin(patience));
    for (const std::string& missing : report.missing) {
        console.remark("not in the snapshot: " + missing);
    }
    Json answer{{"archive", path}};
    answer.update(report.manifest);
    console.print(options.asJson ? jsonText(answer) : path + "\n");
    return Outcome::Fine;
}

} // namespace

void addSnapshotNoun(Program& program)
{
    const auto options = std::make_shared<SnapshotOptions>();
    CLI::App& command = program.addCommand(
        {"snapshot", "Gathers all that is known of the node in one archive", "dorn snapshot /tmp/board7.tar.gz"},
        [options](Console& console) { return snapshot(*options, console); });
    command.add_option("FILE", options->path, "Archive to write; dorn-snapshot-NODE-TIME.tar.gz without it");
    command.add_option("--timeout", options->timeout, "Waits so many seconds for what is slow; 1.3 without it")
        ->type_name("S");
    command.add_flag("--json", options->asJson, "Prints as JSON what is in it and what is not");
}

} // namespace dorn::tool
