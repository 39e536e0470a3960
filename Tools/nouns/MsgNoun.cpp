// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "AaPro.h"
#include "Program.hpp"
#include "answers/MessageText.hpp"
#include "node/NodeMessages.hpp"
#include "node/NodePlace.hpp"
#include "node/PerNode.hpp"
#include "syscom/MessageTap.hpp"
#include "syscom/Node.hpp"
#include "text/Values.hpp"
#include "waiting/TimeLimit.hpp"
#include "waiting/Watch.hpp"

#include <CLI/CLI.hpp>
#include <cstring>
#include <memory>

namespace dorn::tool {
namespace {

constexpr const char* awaited = "the node's messages";

struct SendOptions {
    std::string receiver;
    std::string id;
    std::string payload;
    std::string text;
    std::string node;
    std::string patience;
    bool asJson = false;
};

struct WatchOptions {
    std::string id;
    std::string cpid;
    bool isDumped = false;
    bool asJson = false;
    WatchLimits limits;
};

/// A communication point to which the node's messages are shown.
class WatchPoint {
public:
    WatchPoint()
    {
        if (!tap().addWatcher(m_point.cpid())) {
            throw Failure("the messages of " + NodePlace().nodeName() + " are watched " +
                          std::to_string(host::MessageTap::maxWatchers) + " times already; end one of the watches");
        }
    }
    ~WatchPoint() { tap().removeWatcher(m_point.cpid()); }
    WatchPoint(const WatchPoint&) = delete;
    WatchPoint& operator=(const WatchPoint&) = delete;

private:
    static host::MessageTap& tap() { return host::PerNode<host::MessageTap>::get(); }

    CommunicationPoint m_point;
};

/// What `msg send` has been told, understood.
struct Letter {
    TAaSysComMsgId id = 0;
    std::optional<TAaSysComCpid> cpid; ///< nothing: the service is told by its name
    TAaSysComNid node = 0;
    Bytes payload;
    std::optional<host::Nanoseconds> patience;
};

Letter letterOf(const SendOptions& options)
{
    Letter letter;
    if (readNumber(options.receiver)) {
        letter.cpid = parseUnsigned<TAaSysComCpid>("CPID", options.receiver);
    }
    if (!options.id.empty()) {
        letter.id = parseUnsigned<TAaSysComMsgId>("--id", options.id);
    }
    letter.payload = options.text.empty() ? parseHex("--payload", options.payload) : bytesOf(options.text);
    if (letter.payload.size() > AA_SYS_COM_MAX_PAYLOAD) {
        throw UsageError("a message has at most " + std::to_string(AA_SYS_COM_MAX_PAYLOAD) +
                         " payload bytes, this one " + std::to_string(letter.payload.size()));
    }
    if (!options.patience.empty()) {
        letter.patience = parseSeconds("--wait-reply", options.patience);
    }
    if (!options.node.empty()) {
        letter.node = parseUnsigned<std::uint16_t>("--node", options.node);
    }
    return letter;
}

std::string reasonOf(std::int32_t status, TAaSysComSicad receiver)
{
    const std::string node = "node " + hexNumber(host::nodeOf(receiver), 4);
    const std::string cpid = "cpid " + hexNumber(host::cpidOf(receiver), 4);
    switch (status) {
    case EAaSysComStatus_NoReceiver:
        return "nobody holds " + cpid + " on " + node + "; 'dorn service list' shows who is there";
    case EAaSysComStatus_NoRoute:
        return node + " cannot be reached from " + NodePlace().nodeName();
    case EAaSysComStatus_QueueFull:
        return "the queue of " + cpid + " stays full: who holds it does not take its messages";
    default:
        return "memory or descriptors have run out";
    }
}

TAaSysComSicad addressOf(const Letter& letter, const SendOptions& options, NameBook& names)
{
    const TAaSysComCpid cpid = letter.cpid ? *letter.cpid : names.cpidOf(options.receiver);
    if (cpid == 0) {
        throw Failure("no service '" + options.receiver + "' lives on " + NodePlace().nodeName() +
                      "; give a cpid or a name that 'dorn service list' shows");
    }
    return AaSysComSicadGet(cpid, options.node.empty() ? ownNode() : letter.node);
}

void sendTo(TAaSysComSicad receiver, const Letter& letter)
{
    void* message = AaSysComMsgCreate(letter.id, static_cast<std::uint16_t>(letter.payload.size()), receiver);
    if (message && !letter.payload.empty()) {
        std::memcpy(AaSysComMsgGetPayload(message), letter.payload.data(), letter.payload.size());
    }
    const std::int32_t status = message ? AaSysComMsgSend(&message) : std::int32_t{EAaSysComStatus_NoResources};
    if (status != EAaSysComStatus_Ok) {
        throw Failure("not sent: " + reasonOf(status, receiver));
    }
}

Reply awaitReply(const Letter& letter, const SendOptions& options, NameBook& names)
{
    const host::Deadline until = host::Clock::get().monotonic() + *letter.patience;
    const MessageHandle message = receive(until);
    if (!message) {
        throw Failure("sent, but no reply came within " + options.patience + " s");
    }
    const TAaSysComSicad sender = AaSysComMsgGetSender(message.get());
    const BytesView payload = payloadOf(message.get());
    return {AaSysComMsgGetId(message.get()), {names.ofAddress(sender), sender}, Bytes(payload.begin(), payload.end())};
}

Outcome send(const SendOptions& options, Console& console)
{
    const Letter letter = letterOf(options);
    const NodePlace node;
    node.require(NodePart::Messages);
    std::unique_ptr<NameBook> names;
    std::unique_ptr<CommunicationPoint> point;
    answerOf(awaited, [&] {
        names = std::make_unique<NameBook>(node);
        point = std::make_unique<CommunicationPoint>();
        sendTo(addressOf(letter, options, *names), letter);
    });
    if (letter.patience) {
        const Reply reply = awaitReply(letter, options, *names);
        console.print(options.asJson ? jsonText(replyJson(reply)) : replyText(reply, ownNode()));
    }
    return Outcome::Fine;
}

MessageFilter filterOf(const WatchOptions& options)
{
    MessageFilter filter;
    if (!options.id.empty()) {
        filter.id = parseUnsigned<TAaSysComMsgId>("--id", options.id);
    }
    if (!options.cpid.empty()) {
        filter.cpid = parseUnsigned<TAaSysComCpid>("--cpid", options.cpid);
    }
    return filter;
}

void show(const SeenMessage& message, const Names& names, const WatchOptions& options, Console& console)
{
    console.printLine(options.asJson ? jsonLine(messageJson(message, names, options.isDumped))
                                     : messageText(message, names, options.isDumped));
}

void showMissed(const SeenMessage& message, const Names& names, const WatchOptions& options, Console& console)
{
    console.printLine(options.asJson ? jsonLine(missedJson(message, names)) : missedText(message, names));
}

Outcome watch(const WatchOptions& options, Console& console)
{
    const MessageFilter filter = filterOf(options);
    WatchProgress progress(options.limits, console);
    const NodePlace node;
    node.require(NodePart::Messages);
    std::unique_ptr<NameBook> book;
    std::unique_ptr<WatchPoint> point;
    answerOf(awaited, [&] {
        book = std::make_unique<NameBook>(node);
        point = std::make_unique<WatchPoint>();
    });
    const Names names = book->names();
    const StopRequest stop([eu = AaProEuCurrent()] { AaSysComEuWakeUp(eu); });
    while (progress.wantsMore() && !stop.hasCome()) {
        const MessageHandle record = receive(progress.until());
        if (!record || AaSysComMsgGetId(record.get()) != host::MessageTap::recordId) {
            continue;
        }
        const std::optional<SeenMessage> message = readTapRecord(payloadOf(record.get()));
        if (message && message->missed != 0) {
            showMissed(*message, names, options, console);
        }
        if (message && filter.accepts(*message)) {
            show(*message, names, options, console);
            progress.noteItem();
        }
    }
    return stop.hasCome() ? Outcome::Fine : progress.outcome();
}

void addSend(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<SendOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {"send", "Sends a message, and prints the reply if one is waited for",
                                      "dorn msg send ClimateS --id 0x2111 --payload 07000000 --wait-reply 1",
                                      "dorn service list --names"},
                                     [options](Console& console) { return send(*options, console); });
    verb.add_option("CPID", options->receiver, "Who gets it: a cpid, or the name of a service")->required();
    verb.add_option("--id", options->id, "Message id; 0 without it")->type_name("N");
    CLI::Option* const payload =
        verb.add_option("--payload", options->payload, "Payload in hexadecimal digits")->type_name("BYTES");
    verb.add_option("--text", options->text, "Payload as text")->type_name("TEXT")->excludes(payload);
    verb.add_option("--node", options->node, "Node of the receiver; this one without it")->type_name("N");
    CLI::Option* const wait =
        verb.add_option("--wait-reply", options->patience, "Waits so many seconds for a reply")->type_name("S");
    verb.add_flag("--json", options->asJson, "Prints the reply as JSON")->needs(wait);
}

void addWatch(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<WatchOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {"watch", "Prints the messages of the node as they are sent, until Ctrl-C",
                                      "dorn msg watch --cpid 0x0212 --hex"},
                                     [options](Console& console) { return watch(*options, console); });
    verb.add_option("--id", options->id, "Only messages with this id")->type_name("N");
    verb.add_option("--cpid", options->cpid, "Only messages from or to this cpid")->type_name("N");
    verb.add_flag("--hex", options->isDumped, "Prints the payloads");
    addWatchLimits(verb, options->limits);
    verb.add_flag("--json", options->asJson, "Prints a JSON object a line");
}

} // namespace

void addMsgNoun(Program& program)
{
    CLI::App& noun = program.addNoun("msg", "The messages of the node");
    addSend(program, noun);
    addWatch(program, noun);
}

} // namespace dorn::tool
