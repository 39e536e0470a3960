// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "AaPro.h"
#include "Program.hpp"
#include "answers/AlarmText.hpp"
#include "node/AskedService.hpp"
#include "waiting/Watch.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr AskedService faultManager{faultManagerCpid, "the fault manager", "DornFaultManagerExe"};

struct ListOptions {
    bool isActiveWanted = false;
    bool isPastWanted = false;
    bool asJson = false;
};

struct ClearOptions {
    std::string number;
    bool isAllWanted = false;
};

struct WatchOptions {
    bool asJson = false;
    WatchLimits limits;
};

bool areAllWanted(const ListOptions& options)
{
    return options.isActiveWanted == options.isPastWanted;
}

std::vector<SAlarm> readAlarms(const ListOptions& options)
{
    const auto answer = askOnce<AlarmListReqMsg, AlarmListRespMsg>(faultManager, {newTransactionId()});
    auto alarms = answer.items<SAlarm>(std::size_t{answer->activeCount} + answer->pastCount);
    std::erase_if(alarms, [&](const SAlarm& alarm) {
        return !areAllWanted(options) && (alarm.state == EAlarmState_Active) != options.isActiveWanted;
    });
    return alarms;
}

Outcome list(const ListOptions& options, Console& console)
{
    const NodePlace node;
    const std::vector<SAlarm> alarms = readAlarms(options);
    NameBook book(node);
    if (options.asJson) {
        console.print(jsonText(alarmsJson(alarms, book.names())));
    } else if (!alarms.empty()) {
        console.print(alarmsTable(alarms, book.names(), console));
    } else {
        console.remark((areAllWanted(options) ? "no alarms on " : "no such alarms on ") + node.nodeName());
    }
    return Outcome::Fine;
}

Outcome clear(const ClearOptions& options, Console&)
{
    if (options.isAllWanted == !options.number.empty()) {
        throw UsageError("give the number of an alarm, or --all");
    }
    const auto number = options.isAllWanted ? 0 : parseUnsigned<std::uint32_t>("ALARM", options.number);
    if (number == 0 && !options.isAllWanted) {
        throw UsageError("no alarm has the number 0");
    }
    const auto answer = askOnce<AlarmClearReqMsg, AlarmClearRespMsg>(faultManager, {newTransactionId(), number});
    if (answer->clearedCount == 0 && !options.isAllWanted) {
        throw Failure("no alarm " + options.number + " is active; 'dorn alarm list' shows those that are");
    }
    return Outcome::Fine;
}

/// A subscription to the changes of alarms, which is renewed every second: so it outlives a fault manager that comes
/// back.
class Subscription {
public:
    explicit Subscription(Console& console) : m_console(console)
    {
        const auto answer = ask<AlarmSubscribeReqMsg, AlarmSubscribeRespMsg>(faultManager, {newTransactionId(), 1});
        if (answer->status != 0) {
            throw Failure("the fault manager has too many subscribers; end one of the watches");
        }
    }
    ~Subscription()
    {
        if (m_isThere) {
            request(0);
        }
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;

    host::Deadline renewAt() const { return m_renewAt; }

    void renewWhenDue()
    {
        if (host::Clock::get().monotonic() < m_renewAt) {
            return;
        }
        m_renewAt = host::Clock::get().monotonic() + period;
        const bool wasThere = std::exchange(m_isThere, request(1));
        if (wasThere != m_isThere) {
            m_console.remark(m_isThere ? "the fault manager is back" : "the fault manager has gone; waiting for it");
        }
    }

private:
    static constexpr std::chrono::seconds period{1};

    static bool request(std::uint32_t isWanted)
    {
        const SAlarmSubscribeReq record{newTransactionId(), isWanted};
        return sendToService(faultManager, AlarmSubscribeReqMsg::ID, std::as_bytes(std::span(&record, 1))) !=
               EAaSysComStatus_NoReceiver;
    }

    Console& m_console;
    bool m_isThere = true;
    host::Deadline m_renewAt = host::Clock::get().monotonic() + period;
};

/// The change that a message tells of; nothing when it tells of none.
std::optional<SAlarmEventInd> eventOf(void* message)
{
    SAlarmEventInd event{};
    const BytesView payload = payloadOf(message);
    if (AaSysComMsgGetId(message) != AlarmEventIndMsg::ID || payload.size() < sizeof event) {
        return std::nullopt;
    }
    std::memcpy(&event, payload.data(), sizeof event);
    return event.event == EAlarmEvent_None ? std::nullopt : std::optional(event);
}

Outcome watch(const WatchOptions& options, Console& console)
{
    WatchProgress progress(options.limits, console);
    const NodePlace node;
    node.require(NodePart::Messages);
    NameBook book(node);
    const Names names = book.names();
    const CommunicationPoint point;
    const StopRequest stop([eu = AaProEuCurrent()] { AaSysComEuWakeUp(eu); });
    const auto subscription = answerOf(faultManager.name, [&] { return std::make_unique<Subscription>(console); });
    while (progress.wantsMore() && !stop.hasCome()) {
        const MessageHandle message = receive(std::min(progress.until(), subscription->renewAt()));
        subscription->renewWhenDue();
        if (const auto event = message ? eventOf(message.get()) : std::nullopt) {
            console.printLine(options.asJson ? jsonLine(alarmEventJson(*event, names)) : alarmEventText(*event, names));
            progress.noteItem();
        }
    }
    return stop.hasCome() ? Outcome::Fine : progress.outcome();
}

void addList(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ListOptions>();
    CLI::App& verb =
        program.addVerb(noun, {"list", "Lists the alarms, the active ones first", "dorn alarm list --active"},
                        [options](Console& console) { return list(*options, console); });
    verb.add_flag("--active", options->isActiveWanted, "Only those that nobody has cleared");
    verb.add_flag("--past", options->isPastWanted, "Only those that are over");
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

void addClear(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ClearOptions>();
    CLI::App& verb = program.addVerb(noun, {"clear", "Says that a fault is over", "dorn alarm clear 3"},
                                     [options](Console& console) { return clear(*options, console); });
    CLI::Option* const number = verb.add_option("ALARM", options->number, "Number of the alarm, as listed");
    verb.add_flag("--all", options->isAllWanted, "All active alarms")->excludes(number);
}

void addWatch(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<WatchOptions>();
    CLI::App& verb = program.addVerb(
        noun, {"watch", "Prints what becomes of alarms as it happens, until Ctrl-C", "dorn alarm watch --count 1"},
        [options](Console& console) { return watch(*options, console); });
    addWatchLimits(verb, options->limits);
    verb.add_flag("--json", options->asJson, "Prints a JSON object a line");
}

} // namespace

void addAlarmNoun(Program& program)
{
    CLI::App& noun = program.addNoun("alarm", "The alarms of the node");
    addList(program, noun);
    addClear(program, noun);
    addWatch(program, noun);
}

} // namespace dorn::tool
