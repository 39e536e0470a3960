// SPDX-License-Identifier: MIT
#include "GatewayText.hpp"

#include "Table.hpp"
#include "Values.hpp"

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

/// "queue full 3, no receiver 1"; empty when all counts are 0.
template <class Reason, std::size_t count>
std::string countsText(const Counts<Reason, count>& counts)
{
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        const auto reason = static_cast<Reason>(index);
        if (counts[reason] != 0) {
            text.append(text.empty() ? "" : ", ").append(nameOf(reason)).append(" ");
            text.append(std::to_string(counts[reason]));
        }
    }
    return text;
}

template <class Reason, std::size_t count>
Json countsJson(const Counts<Reason, count>& counts)
{
    Json json = Json::object();
    for (std::size_t index = 0; index < count; ++index) {
        const auto reason = static_cast<Reason>(index);
        json[std::string(nameOf(reason))] = counts[reason];
    }
    return json;
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
            {"received", link.received},
            {"delivered", link.delivered},
            {"pending", link.pending},
            {"dropped", countsJson(link.dropped)}};
}

} // namespace

std::string gatewayText(const GatewayStatus& status, host::Nanoseconds now, const Console& console)
{
    std::string text = "gateway of node " + hexNumber(status.node, 4) + ": process " + std::to_string(status.pid) +
                       ", since " + shortTimeText(now - status.age) + ", epoch " + epochText(status.epoch) + "\n";
    Table table({"NODE", "PLACE", "STATE", "SINCE", "ROUND TRIP", "SENT", "WAITING", "RECEIVED", "DROPPED"});
    for (const LinkStatus& link : status.links) {
        const std::string dropped = countsText(link.dropped);
        table.add({hexNumber(link.node, 4),
                   placeText(link),
                   {stateText(link), link.state == LinkState::Up ? Colour::Green : Colour::Red},
                   shortTimeText(now - link.inState),
                   roundTripText(link),
                   std::to_string(link.confirmed),
                   waitingText(link),
                   std::to_string(link.received),
                   {dropped.empty() ? "-" : dropped, dropped.empty() ? Colour::None : Colour::Yellow}});
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
