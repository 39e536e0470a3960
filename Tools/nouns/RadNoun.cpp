// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "answers/RadDirectory.hpp"
#include "answers/RadText.hpp"
#include "config/RadWatch.hpp"
#include "node/NodePlace.hpp"
#include "node/PerNode.hpp"
#include "text/Values.hpp"
#include "waiting/TimeLimit.hpp"
#include "waiting/Watch.hpp"

#include <CLI/CLI.hpp>
#include <memory>
#include <set>

namespace dorn::tool {
namespace {

constexpr const char* awaited = "the node's R&D parameters";
constexpr const char* addresses = "dorn rad list --names";
constexpr const char* addressHelp = "Number (0x20054), DOMAIN/NAME (HWA/FIRM), or NAME where it is the only one";

struct ListOptions {
    std::string domain;
    bool isChangedOnly = false;
    bool isHex = false;
    bool asJson = false;
    bool asNames = false;
};

struct ParameterOptions {
    std::string address;
    std::string value;
    bool isHex = false;
    bool asJson = false;
};

struct WatchOptions {
    std::vector<std::string> addresses;
    bool isHex = false;
    bool asJson = false;
    WatchLimits limits;
};

RadBase baseOf(bool isHex)
{
    return isHex ? RadBase::Hexadecimal : RadBase::Decimal;
}

/// The node's store, which is there.
host::RadStore& openStore()
{
    NodePlace().require(NodePart::RadParameters);
    return host::PerNode<host::RadStore>::get();
}

/// A parameter as it is now.
RadEntry entryOf(host::RadStore& store, TAaConfigRadId id)
{
    const host::RadDomain& domain = *store.domain(static_cast<std::uint16_t>(id >> 16));
    const std::size_t index = id & 0xFFFFU;
    return {{id, domain.parameterName(index), domain.defaultValue(index), domain.value(index).load()}, domain.name()};
}

Outcome list(const ListOptions& options, Console& console)
{
    std::vector<RadEntry> entries =
        answerOf(awaited, [&options] { return RadDirectory(openStore()).entries(options.domain); });
    std::erase_if(entries, [&options](const RadEntry& entry) { return options.isChangedOnly && !entry.isChanged(); });
    if (options.asJson) {
        console.print(jsonText(radJson(entries)));
    } else if (!entries.empty()) {
        console.print(options.asNames ? radAddresses(entries) : radTable(entries, baseOf(options.isHex), console));
    }
    if (entries.empty()) {
        console.remark(options.isChangedOnly ? "every R&D parameter has its default"
                                             : "there are no R&D parameters on " + NodePlace().nodeName());
        return Outcome::No;
    }
    return Outcome::Fine;
}

Outcome get(const ParameterOptions& options, Console& console)
{
    const RadEntry entry = answerOf(awaited, [&options] {
        host::RadStore& store = openStore();
        return entryOf(store, RadDirectory(store).find(options.address));
    });
    console.print(options.asJson ? jsonText(radJson(entry))
                                 : radValueText(entry.parameter.value, baseOf(options.isHex)) + "\n");
    return Outcome::Fine;
}

Outcome set(const ParameterOptions& options, Console& console)
{
    const auto value = parseUnsigned<std::uint32_t>("VALUE", options.value);
    const RadChange change = answerOf(awaited, [&options, value] {
        host::RadStore& store = openStore();
        const TAaConfigRadId id = RadDirectory(store).find(options.address);
        const std::uint32_t before = entryOf(store, id).parameter.value;
        store.set(id, value);
        RadEntry entry = entryOf(store, id);
        entry.parameter.value = value;
        return RadChange{entry, before};
    });
    console.print(options.asJson ? jsonText(radChangeJson(change))
                                 : radChangeText(change, baseOf(options.isHex)) + "\n");
    return Outcome::Fine;
}

/// Prints changes as they come.
class RadWatcher {
public:
    RadWatcher(host::RadStore& store, const WatchOptions& options, Console& console)
        : m_store(store),
          m_options(options),
          m_console(console),
          m_memory(RadDirectory(store).entries()),
          m_watch(store)
    {
        for (const std::string& address : options.addresses) {
            const RadEntry entry = entryOf(store, RadDirectory(store).find(address));
            if (entry.parameter.name.empty()) {
                throw Failure("R&D parameter " + entry.address() + " is not registered, and so cannot be watched");
            }
            m_wanted.insert(entry.parameter.id);
        }
    }

    Outcome run(WatchProgress& progress)
    {
        const StopRequest stop([this] { m_store.changes().notify(); });
        // What was set between the first look and the begin of the watch.
        show(RadDirectory(m_store).entries(), progress);
        while (progress.wantsMore() && !stop.hasCome()) {
            const std::uint32_t seen = m_store.changes().count();
            const std::vector<RadEntry> changed = changedEntries();
            show(changed, progress);
            if (changed.empty() && !stop.hasCome()) {
                m_store.changes().waitBeyond(seen, progress.until());
            }
        }
        return stop.hasCome() ? Outcome::Fine : progress.outcome();
    }

private:
    std::vector<RadEntry> changedEntries()
    {
        std::vector<RadEntry> entries;
        for (const host::RadParameter& parameter : m_watch.waitForChanges(host::Deadline(0))) {
            entries.push_back({parameter, m_store.domain(static_cast<std::uint16_t>(parameter.id >> 16))->name()});
        }
        return entries;
    }

    void show(const std::vector<RadEntry>& entries, WatchProgress& progress)
    {
        const std::string now = timeText(host::Clock::get().wall());
        for (const RadEntry& entry : entries) {
            const std::optional<RadChange> change = m_memory.note(entry);
            const bool isWanted = m_wanted.empty() || m_wanted.contains(entry.parameter.id);
            if (!change || !isWanted || !progress.wantsMore()) {
                continue;
            }
            if (m_options.asJson) {
                Json json{{"time", now}};
                json.update(radChangeJson(*change));
                m_console.printLine(jsonLine(json));
            } else {
                m_console.printLine(now + " " + radChangeText(*change, baseOf(m_options.isHex)));
            }
            progress.noteItem();
        }
    }

    host::RadStore& m_store;
    const WatchOptions& m_options;
    Console& m_console;
    RadMemory m_memory; // made first: what changes before the watch begins is told apart by it
    host::RadWatch m_watch;
    std::set<TAaConfigRadId> m_wanted;
};

Outcome watch(const WatchOptions& options, Console& console)
{
    WatchProgress progress(options.limits, console);
    const auto watcher = answerOf(awaited, [&] { return std::make_unique<RadWatcher>(openStore(), options, console); });
    return watcher->run(progress);
}

void addList(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ListOptions>();
    CLI::App& verb =
        program.addVerb(noun,
                        {"list", "Lists the R&D parameters, and marks those that do not have their default",
                         "dorn rad list HWA --changed"},
                        [options](Console& console) { return list(*options, console); });
    verb.add_option("DOMAIN", options->domain, "Only parameters of this domain, by name or number");
    verb.add_flag("--changed", options->isChangedOnly, "Only parameters that do not have their default");
    verb.add_flag("--hex", options->isHex, "Values in hexadecimal");
    CLI::Option* const json = verb.add_flag("--json", options->asJson, "Prints JSON");
    verb.add_flag("--names", options->asNames, "Prints DOMAIN/NAME alone, one a line")->excludes(json);
}

void addGet(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ParameterOptions>();
    CLI::App& verb =
        program.addVerb(noun, {"get", "Prints the value of an R&D parameter", "dorn rad get HWA/FIRM", addresses},
                        [options](Console& console) { return get(*options, console); });
    verb.add_option("PARAMETER", options->address, addressHelp)->required();
    verb.add_flag("--hex", options->isHex, "Value in hexadecimal");
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

void addSet(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ParameterOptions>();
    CLI::App& verb = program.addVerb(
        noun, {"set", "Sets an R&D parameter for all processes of the node", "dorn rad set HWA/FIRM 1", addresses},
        [options](Console& console) { return set(*options, console); });
    verb.add_option("PARAMETER", options->address, addressHelp)->required();
    verb.add_option("VALUE", options->value, "New value, 0 to 4294967295 or 0xFFFFFFFF")->required();
    verb.add_flag("--hex", options->isHex, "Values in hexadecimal");
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

void addWatch(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<WatchOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {"watch", "Prints R&D parameters as they change, until Ctrl-C",
                                      "dorn rad watch HWAState/LedState --count 1 --timeout 10", addresses},
                                     [options](Console& console) { return watch(*options, console); });
    verb.add_option("PARAMETER", options->addresses, "The parameters to watch; all without one");
    addWatchLimits(verb, options->limits);
    verb.add_flag("--hex", options->isHex, "Values in hexadecimal");
    verb.add_flag("--json", options->asJson, "Prints a JSON object a line");
}

} // namespace

void addRadNoun(Program& program)
{
    CLI::App& noun = program.addNoun("rad", "The R&D parameters of the node");
    addList(program, noun);
    addGet(program, noun);
    addSet(program, noun);
    addWatch(program, noun);
}

} // namespace dorn::tool
