// SPDX-License-Identifier: MIT
#include "gateway/Status.hpp"

#include <gmock/gmock.h>
#include <set>
#include <string>

namespace dorn::gateway::test {
namespace {

using namespace std::chrono_literals;

GatewayStatus someStatus()
{
    GatewayStatus status;
    status.node = 0x0101;
    status.pid = 4711;
    status.age = 12345ms;
    status.epoch = ~std::uint64_t{0};
    status.refused[RefusalReason::UnknownKey] = 3;
    status.refused[RefusalReason::LocalFrame] = 4;
    LinkStatus link;
    link.node = 0x0102;
    link.host = "board-b.example";
    link.port = 65535;
    link.state = LinkState::Up;
    link.fault = LinkFault::Garbage;
    link.inState = 99s;
    link.roundTrip = 123us;
    link.ups = 1;
    link.peerEpoch = 2;
    link.accepted = 3;
    link.confirmed = 4;
    link.waiting = 5;
    link.waitingBytes = 6;
    link.received = 7;
    link.delivered = 8;
    link.pending = 9;
    link.dropped[DropReason::QueueFull] = 10;
    link.dropped[DropReason::Forged] = 11;
    status.links = {link, LinkStatus{}};
    status.links[1].host = "::1";
    return status;
}

TEST(GatewayStatusTest, StatusIsReadAsItWasWritten)
{
    EXPECT_EQ(parseStatus(statusText(someStatus())), someStatus());
}

TEST(GatewayStatusTest, TextThatIsNoStatusIsNone)
{
    EXPECT_FALSE(parseStatus(""));
    EXPECT_FALSE(parseStatus("gateway-status-2 1 2 3"));
    EXPECT_FALSE(parseStatus("gateway-status-1"));
    EXPECT_FALSE(parseStatus(statusText(someStatus()) + "garbage"));
}

TEST(GatewayStatusTest, TextCutAnywhereIsNone)
{
    const std::string whole = statusText(someStatus());
    for (std::size_t size = 0; size + 1 < whole.size(); ++size) {
        EXPECT_FALSE(parseStatus(whole.substr(0, size))) << size;
    }
}

TEST(GatewayStatusTest, EnumeratorBeyondTheLastIsNone)
{
    std::string text = statusText(someStatus());
    const std::size_t place = text.find(" 3 8 "); // state up, fault garbage
    ASSERT_NE(place, std::string::npos);
    text[place + 1] = '4';
    EXPECT_FALSE(parseStatus(text));
}

template <class Value>
void expectNames(std::size_t count)
{
    std::set<std::string_view> names;
    for (std::size_t index = 0; index < count; ++index) {
        names.insert(nameOf(static_cast<Value>(index)));
    }
    EXPECT_EQ(names.size(), count);
    EXPECT_FALSE(names.contains("?"));
    EXPECT_EQ(nameOf(static_cast<Value>(count)), "?");
}

TEST(GatewayStatusTest, EveryEnumeratorHasAName)
{
    expectNames<LinkState>(linkStateCount);
    expectNames<LinkFault>(linkFaultCount);
    expectNames<DropReason>(dropReasonCount);
    expectNames<RefusalReason>(refusalReasonCount);
    EXPECT_EQ(nameOf(LinkState::Up), "up");
    EXPECT_EQ(nameOf(LinkFault::KeyRefused), "key refused");
    EXPECT_EQ(nameOf(DropReason::SenderRestarted), "sender restarted");
    EXPECT_EQ(nameOf(RefusalReason::LocalFrame), "local frame");
}

} // namespace
} // namespace dorn::gateway::test
