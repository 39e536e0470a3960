// SPDX-License-Identifier: MIT
#include "answers/GatewayText.hpp"

#include "text/Table.hpp"
#include "text/Values.hpp"

#include <array>
#include <cinttypes>
#include <cstdio>

namespace dorn::tool {
namespace {

using namespace gateway;

std::string epochText(std::uint64_t epoch)
{
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "0x%016" PRIX64, epoch);
    return text.data();
}

double milliseconds(host::Nanoseconds duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

std::string roundTripText(const LinkStatus& link)
{
    if (!link.roundTrip) {
        return "-";
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3f ms", milliseconds(*link.roundTrip));
    return text.data();
}

std::string stateText(const LinkStatus& link)
{
    std::string text(nameOf(link.state));
    if (link.state != LinkState::Up && link.fault != LinkFault::None) {
        text.append(", ").append(nameOf(link.fault));
    }
    return text;
}

std::string waitingText(const LinkStatus& link)
{
    return std::to_string(link.waiting) + (link.waiting == 0 ? "" : " (" + sizeText(link.waitingBytes) + ")");
}

std::string placeText(const LinkStatus& link)
{
    const bool isIpv6 = link.host.find(':') != std::string::npos;
    return (isIpv6 ? "[" + link.host + "]" : link.host) + ":" + std::to_string(link.port);
}

/// The reasons of one half of a sum, from @p first up to but without @p end.
struct DropReasons {
    DropReason first;
    std::size_t end;
};
constexpr DropReasons outgoing{DropReason::QueueFull, static_cast<std::size_t>(DropReason::NoReceiver)};
constexpr DropReasons incoming{DropReason::NoReceiver, dropReasonCount};
static_assert(outgoing.end == 3 && incoming.end == 7, "each reason belongs to what is accepted or to what is received");

/// "queue full 3, no receiver 1"; empty when all counts are 0.
template <class Reason, std::size_t count>
std::string countsText(const Counts<Reason, count>& counts, std::size_t first = 0, std::size_t end = count)
{
    std::string text;
    for (std::size_t index = first; index < end; ++index) {
        const auto reason = static_cast<Reason>(index);
        if (counts[reason] != 0) {
            text.append(text.empty() ? "" : ", ").append(nameOf(reason)).append(" ");
            text.append(std::to_string(counts[reason]));
        }
    }
    return text;
}

template <class Reason, std::size_t count>
Json countsJson(const Counts<Reason, count>& counts, std::size_t first = 0, std::size_t end = count)
{
    Json json = Json::object();
    for (std::size_t index = first; index < end; ++index) {
        const auto reason = static_cast<Reason>(index);
        json[std::string(nameOf(reason))] = counts[reason];
    }
    return json;
}

Json droppedJson(const LinkStatus& link, const DropReasons& reasons)
{
    return countsJson(link.dropped, static_cast<std::size_t>(reasons.first), reasons.end);
}

Cell droppedCell(const LinkStatus& link, const DropReasons& reasons)
{
    const std::string text = countsText(link.dropped, static_cast<std::size_t>(reasons.first), reasons.end);
    return {text.empty() ? "-" : text, text.empty() ? Colour::None : Colour::Yellow};
}

Json linkJson(const LinkStatus& link, host::Nanoseconds now)
{
    return {{"node", link.node},
            {"host", link.host},
            {"port", link.port},
            {"state", nameOf(link.state)},
            {"fault", link.fault == LinkFault::None ? Json(nullptr) : Json(nameOf(link.fault))},
            {"since", timeText(now - link.inState)},
            {"roundTripMilliseconds", link.roundTrip ? Json(milliseconds(*link.roundTrip)) : Json(nullptr)},
            {"ups", link.ups},
            {"peerEpoch", link.peerEpoch == 0 ? Json(nullptr) : Json(epochText(link.peerEpoch))},
            {"accepted", link.accepted},
            {"sent", link.confirmed},
            {"waiting", link.waiting},
            {"waitingBytes", link.waitingBytes},
            {"droppedOut", droppedJson(link, outgoing)},
            {"received", link.received},
            {"delivered", link.delivered},
            {"pending", link.pending},
            {"droppedIn", droppedJson(link, incoming)}};
}

} // namespace

std::string gatewayText(const GatewayStatus& status, host::Nanoseconds now, const Console& console)
{
    std::string text = "gateway of node " + hexNumber(status.node, 4) + ": process " + std::to_string(status.pid) +
                       ", since " + shortTimeText(now - status.age) + ", epoch " + epochText(status.epoch) + "\n";
    Table table({"NODE", "PLACE", "STATE", "SINCE", "ROUND TRIP", "ACCEPTED", "SENT", "WAITING", "DROPPED OUT",
                 "RECEIVED", "DELIVERED", "PENDING", "DROPPED IN"});
    for (const LinkStatus& link : status.links) {
        table.add({hexNumber(link.node, 4),
                   placeText(link),
                   {stateText(link), link.state == LinkState::Up ? Colour::Green : Colour::Red},
                   shortTimeText(now - link.inState),
                   roundTripText(link),
                   std::to_string(link.accepted),
                   std::to_string(link.confirmed),
                   waitingText(link),
                   droppedCell(link, outgoing),
                   std::to_string(link.received),
                   std::to_string(link.delivered),
                   std::to_string(link.pending),
                   droppedCell(link, incoming)});
    }
    if (!status.links.empty()) {
        text += table.text(console);
    }
    const std::string refused = countsText(status.refused);
    return text + (refused.empty() ? "" : "refused: " + refused + "\n");
}

Json gatewayJson(const GatewayStatus& status, host::Nanoseconds now)
{
    Json links = Json::array();
    for (const LinkStatus& link : status.links) {
        links.push_back(linkJson(link, now));
    }
    return {{"node", status.node},
            {"pid", status.pid},
            {"since", timeText(now - status.age)},
            {"epoch", epochText(status.epoch)},
            {"refused", countsJson(status.refused)},
            {"links", links}};
}

std::string downText(const LinkStatus& link)
{
    return "node " + hexNumber(link.node, 4) + " is not up: " + stateText(link);
}

} // namespace dorn::tool
