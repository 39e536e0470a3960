// SPDX-License-Identifier: MIT
#include "answers/MessageText.hpp"

#include "syscom/MessageTap.hpp"
#include "syscom/Node.hpp"
#include "text/Table.hpp"

#include <cstring>

namespace dorn::tool {
namespace {

using host::cpidOf;
using host::nodeOf;

constexpr const char* dumpIndent = "    ";

std::string countText(std::size_t count, const std::string& one)
{
    return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

std::string senderName(const SeenMessage& message, const Names& names)
{
    const TAaSysComCpid cpid = cpidOf(message.sender);
    std::string name = cpid != 0 ? names.ofCpid(cpid) : "";
    return name.empty() ? names.ofPid(message.pid) : name;
}

} // namespace

Party partyAt(TAaSysComSicad address, const Names& names)
{
    return {nodeOf(address) == names.ownNode ? names.ofCpid(cpidOf(address)) : "", address};
}

std::string partyText(const Party& party, TAaSysComNid ownNode)
{
    std::string text = printable(party.name);
    if (cpidOf(party.address) != 0) {
        const TAaSysComNid node = nodeOf(party.address);
        text += text.empty() ? "" : " ";
        text += node == ownNode ? "" : hexNumber(node, 4) + ":";
        text += hexNumber(cpidOf(party.address), 4);
    }
    return text;
}

Json partyJson(const Party& party)
{
    return {{"name", party.name}, {"node", nodeOf(party.address)}, {"cpid", cpidOf(party.address)}};
}

std::optional<SeenMessage> readTapRecord(BytesView record)
{
    host::TapRecord head{};
    if (record.size() < sizeof head) {
        return std::nullopt;
    }
    std::memcpy(&head, record.data(), sizeof head);
    const BytesView payload = record.subspan(sizeof head);
    if (head.header.magic != host::FrameHeader::magicNumber || payload.size() > head.header.payloadSize) {
        return std::nullopt;
    }
    return SeenMessage{host::Nanoseconds(head.wall),
                       head.pid,
                       head.lost,
                       head.header.id,
                       head.header.sender,
                       head.header.receiver,
                       head.header.payloadSize,
                       Bytes(payload.begin(), payload.end())};
}

bool MessageFilter::accepts(const SeenMessage& message) const
{
    const bool hasId = !id || message.id == *id;
    const bool hasCpid = !cpid || cpidOf(message.sender) == *cpid || cpidOf(message.receiver) == *cpid;
    return hasId && hasCpid;
}

std::string missedText(const SeenMessage& message, const Names& names)
{
    const std::string name = names.ofPid(message.pid);
    return timeText(message.wall) + " " + countText(message.missed, "message") + " of " +
           (name.empty() ? "process " + std::to_string(message.pid) : printable(name)) + " missed";
}

Json missedJson(const SeenMessage& message, const Names& names)
{
    return {{"time", timeText(message.wall)},
            {"missed", message.missed},
            {"name", names.ofPid(message.pid)},
            {"pid", message.pid}};
}

std::string messageText(const SeenMessage& message, const Names& names, bool isDumped)
{
    Party sender{senderName(message, names), message.sender};
    if (sender.name.empty()) {
        sender.name = "process " + std::to_string(message.pid);
    }
    const Party receiver = partyAt(message.receiver, names);
    std::string text = timeText(message.wall) + " " + hexNumber(message.id, 4) + " " +
                       partyText(sender, names.ownNode) + " -> " + partyText(receiver, names.ownNode) + " " +
                       countText(message.length, "byte");
    if (isDumped) {
        std::string dump = "\n" + hexDump(message.payload, dumpIndent);
        dump.pop_back();
        text += dump;
        if (message.payload.size() < message.length) {
            text += "\n" + (dumpIndent + countText(message.length - message.payload.size(), "more byte"));
        }
    }
    return text;
}

Json messageJson(const SeenMessage& message, const Names& names, bool isDumped)
{
    Json sender = partyJson({senderName(message, names), message.sender});
    sender["pid"] = message.pid;
    Json json{{"time", timeText(message.wall)},
              {"id", message.id},
              {"sender", sender},
              {"receiver", partyJson(partyAt(message.receiver, names))},
              {"length", message.length}};
    if (isDumped) {
        json["payload"] = hexText(message.payload);
    }
    return json;
}

std::string replyText(const Reply& reply, TAaSysComNid ownNode)
{
    return hexNumber(reply.id, 4) + " from " + partyText(reply.sender, ownNode) + ", " +
           countText(reply.payload.size(), "byte") + "\n" + hexDump(reply.payload, dumpIndent);
}

Json replyJson(const Reply& reply)
{
    return {{"id", reply.id},
            {"sender", partyJson(reply.sender)},
            {"length", reply.payload.size()},
            {"payload", hexText(reply.payload)}};
}

} // namespace dorn::tool
