// SPDX-License-Identifier: MIT
#include "answers/GatewayText.hpp"

#include "TestConsole.hpp"

#include <gmock/gmock.h>

namespace dorn::tool {
namespace {

using namespace std::chrono_literals;
using namespace gateway;
using ::testing::HasSubstr;
using ::testing::Not;

/// 2026-11-21T12:00:00Z
constexpr host::Nanoseconds noon = 1795262400s;

LinkStatus linkThatIsUp()
{
    LinkStatus link;
    link.node = 0x0F02;
    link.host = "192.168.10.2";
    link.port = 5670;
    link.state = LinkState::Up;
    link.fault = LinkFault::Cut; // once
    link.inState = 90s;
    link.roundTrip = 213us;
    link.ups = 2;
    link.peerEpoch = 0x0123456789ABCDEF;
    link.accepted = 130;
    link.confirmed = 120;
    link.waiting = 3;
    link.waitingBytes = 1536;
    link.received = 118;
    link.delivered = 116;
    link.pending = 1;
    link.dropped[DropReason::QueueFull] = 7;
    link.dropped[DropReason::NoReceiver] = 1;
    return link;
}

LinkStatus linkThatIsDown()
{
    LinkStatus link;
    link.node = 0x0F03;
    link.host = "fe80::1%eth0";
    link.port = 5671;
    link.state = LinkState::Waiting;
    link.fault = LinkFault::Unreachable;
    link.inState = 3600s;
    return link;
}

GatewayStatus gatewayWith(const std::vector<LinkStatus>& links)
{
    GatewayStatus status;
    status.node = 0x0F01;
    status.pid = 4711;
    status.age = 2h;
    status.epoch = 0xFEDCBA9876543210;
    status.links = links;
    return status;
}

TEST(GatewayTextTest, LinksAreATable)
{
    TestConsole console;
    GatewayStatus status = gatewayWith({linkThatIsUp(), linkThatIsDown()});
    status.refused[RefusalReason::UnknownKey] = 3;
    status.refused[RefusalReason::Stale] = 1;

    EXPECT_EQ(gatewayText(status, noon, console),
              "gateway of node 0x0F01: process 4711, since 2026-11-21T10:00:00Z, epoch 0xFEDCBA9876543210\n"
              "NODE    PLACE                STATE                 SINCE                 ROUND TRIP  ACCEPTED  "
              "SENT  WAITING      DROPPED OUT   RECEIVED  DELIVERED  PENDING  DROPPED IN\n"
              "0x0F02  192.168.10.2:5670    up                    2026-11-21T11:58:30Z  0.213 ms    130       "
              "120   3 (1.5 KiB)  queue full 7  118       116        1        no receiver 1\n"
              "0x0F03  [fe80::1%eth0]:5671  waiting, unreachable  2026-11-21T11:00:00Z  -           0         "
              "0     0            -             0         0          0        -\n"
              "refused: unknown key 3, stale 1\n");
}

TEST(GatewayTextTest, GatewayWithoutLinksIsALine)
{
    TestConsole console;

    EXPECT_EQ(gatewayText(gatewayWith({}), noon, console),
              "gateway of node 0x0F01: process 4711, since 2026-11-21T10:00:00Z, epoch 0xFEDCBA9876543210\n");
}

TEST(GatewayTextTest, LinkIsGreenOrRedAndDropsAreYellow)
{
    TestConsole console(true);

    const std::string text = gatewayText(gatewayWith({linkThatIsUp(), linkThatIsDown()}), noon, console);

    EXPECT_THAT(text, HasSubstr("\x1B[32mup\x1B[0m"));
    EXPECT_THAT(text, HasSubstr("\x1B[31mwaiting, unreachable\x1B[0m"));
    EXPECT_THAT(text, HasSubstr("\x1B[33mqueue full 7\x1B[0m"));
    EXPECT_THAT(text, HasSubstr("\x1B[33mno receiver 1\x1B[0m"));
}

TEST(GatewayTextTest, JsonHasEverything)
{
    const Json json = gatewayJson(gatewayWith({linkThatIsUp(), linkThatIsDown()}), noon);

    EXPECT_EQ(json["node"], 0x0F01);
    EXPECT_EQ(json["pid"], 4711);
    EXPECT_EQ(json["since"], "2026-11-21T10:00:00.000000Z");
    EXPECT_EQ(json["epoch"], "0xFEDCBA9876543210");
    ASSERT_EQ(json["links"].size(), 2U);
    const Json& up = json["links"][0];
    EXPECT_EQ(up["node"], 0x0F02);
    EXPECT_EQ(up["host"], "192.168.10.2");
    EXPECT_EQ(up["port"], 5670);
    EXPECT_EQ(up["state"], "up");
    EXPECT_EQ(up["fault"], "cut");
    EXPECT_EQ(up["since"], "2026-11-21T11:58:30.000000Z");
    EXPECT_DOUBLE_EQ(up["roundTripMilliseconds"].get<double>(), 0.213);
    EXPECT_EQ(up["ups"], 2);
    EXPECT_EQ(up["peerEpoch"], "0x0123456789ABCDEF");
    EXPECT_EQ(up["accepted"], 130);
    EXPECT_EQ(up["sent"], 120);
    EXPECT_EQ(up["waiting"], 3);
    EXPECT_EQ(up["waitingBytes"], 1536);
    EXPECT_EQ(up["received"], 118);
    EXPECT_EQ(up["delivered"], 116);
    EXPECT_EQ(up["pending"], 1);
    const Json& down = json["links"][1];
    EXPECT_EQ(down["state"], "waiting");
    EXPECT_EQ(down["fault"], "unreachable");
    EXPECT_TRUE(down["roundTripMilliseconds"].is_null());
    EXPECT_TRUE(down["peerEpoch"].is_null());
}

TEST(GatewayTextTest, JsonHasACountForEveryReason)
{
    GatewayStatus status = gatewayWith({linkThatIsUp()});
    status.refused[RefusalReason::Garbage] = 5;

    const Json json = gatewayJson(status, noon);

    EXPECT_EQ(json["refused"].size(), refusalReasonCount);
    EXPECT_EQ(json["refused"]["garbage"], 5);
    const Json& link = json["links"][0];
    EXPECT_EQ(link["droppedOut"], (Json{{"queue full", 7}, {"peer restarted", 0}, {"unconfirmed", 0}}));
    EXPECT_EQ(link["droppedIn"],
              (Json{{"no receiver", 1}, {"receiver full", 0}, {"sender restarted", 0}, {"forged", 0}}));
}

/// Every reason stands in the sum that it belongs to.
TEST(GatewayTextTest, BothSumsCanBeAddedUp)
{
    LinkStatus status = linkThatIsUp();
    for (std::size_t index = 0; index < dropReasonCount; ++index) {
        status.dropped[static_cast<DropReason>(index)] = std::uint64_t{1} << index;
    }
    status.accepted = status.confirmed + status.waiting + 0b111;
    status.received = status.delivered + status.pending + 0b1111000;

    const Json link = gatewayJson(gatewayWith({status}), noon)["links"][0];

    const auto sumOf = [](const Json& counts) {
        std::uint64_t sum = 0;
        for (const Json& count : counts) {
            sum += count.get<std::uint64_t>();
        }
        return sum;
    };
    EXPECT_EQ(link["accepted"],
              link["sent"].get<std::uint64_t>() + link["waiting"].get<std::uint64_t>() + sumOf(link["droppedOut"]));
    EXPECT_EQ(link["received"],
              link["delivered"].get<std::uint64_t>() + link["pending"].get<std::uint64_t>() + sumOf(link["droppedIn"]));
}

TEST(GatewayTextTest, LinkThatIsDownIsNamedWithItsFault)
{
    EXPECT_EQ(downText(linkThatIsDown()), "node 0x0F03 is not up: waiting, unreachable");
    LinkStatus untried = linkThatIsDown();
    untried.state = LinkState::Connecting;
    untried.fault = LinkFault::None;
    EXPECT_EQ(downText(untried), "node 0x0F03 is not up: connecting");
}

} // namespace
} // namespace dorn::tool
