// SPDX-License-Identifier: MIT
#include "gateway/Receivers.hpp"

#include "NoMemory.hpp"
#include "NodeTest.hpp"
#include "TestNet.hpp"

#include <cstring>
#include <gmock/gmock.h>
#include <memory>
#include <numeric>

namespace dorn::gateway::test {
namespace {

constexpr TAaSysComCpid someCpid = 0x0300;
constexpr std::size_t payloadSize = 2000;
constexpr std::size_t keptSize = payloadSize + 88; ///< what one takes while it is kept

class ReceiversTest : public testkit::NodeTest {
protected:
    /// Delivers messages with numbers from @p first on.
    void deliver(DeliveryAccount& account, TAaSysComCpid cpid, std::uint32_t first, std::uint32_t count = 1)
    {
        for (std::uint32_t number = first; number < first + count; ++number) {
            std::memcpy(m_payload.data(), &number, sizeof number);
            const Record record{{0x55, addressAt(0, 1), addressAt(1, cpid), payloadSize}, m_payload};
            m_receivers.deliver(account, {&record, 1});
        }
    }
    /// Delivers until the receiver's socket takes no more. @return how many it has taken
    std::uint32_t fill(DeliveryAccount& account, TAaSysComCpid cpid)
    {
        const std::uint64_t before = account.pending;
        std::uint32_t number = 0;
        while (account.pending == before && number < 10000) { // or what it keeps is dropped at once
            deliver(account, cpid, number++);
        }
        return number - 1;
    }
    /// What a receiver gets when it reads all there is.
    std::vector<std::uint32_t> readAll(CpidReceiver& receiver, std::size_t count)
    {
        std::vector<std::uint32_t> numbers;
        while (numbers.size() < count) {
            m_waitSet.wait(host::Deadline(0));
            if (const std::optional<Arrived> one = receiver.take(std::chrono::milliseconds(0))) {
                numbers.push_back(one->number());
            } else if (std::chrono::steady_clock::now() > m_end) {
                break;
            }
        }
        return numbers;
    }

    const std::chrono::steady_clock::time_point m_end = std::chrono::steady_clock::now() + testkit::generousBound;
    const TestNet m_net{2};
    std::vector<std::byte> m_payload{payloadSize};
    GatewayOptions m_options{
        .receiverMessages = 1000, .receiverBytes = 30 * keptSize, .allReceiversBytes = 50 * keptSize};
    host::WaitSet m_waitSet;
    DeliveryAccount m_account{.node = nodeId(0), .dropped = {}};
    Receivers m_receivers{m_net.directory(1), m_options, m_waitSet};
};

TEST_F(ReceiversTest, ReceiverThatDoesNotReadHasItsShareOfBytes)
{
    const CpidReceiver lazy(m_net.directory(1), someCpid);
    const std::uint32_t taken = fill(m_account, someCpid);
    deliver(m_account, someCpid, taken + 1, 100);

    EXPECT_EQ(m_account.pending, 30U);
    EXPECT_EQ(m_receivers.keptBytes(), 30 * keptSize);
    EXPECT_EQ(m_account.dropped[DropReason::ReceiverFull], 71U);
}

TEST_F(ReceiversTest, TheGreediestGiveWayWhereAllTakeTooMuch)
{
    const CpidReceiver first(m_net.directory(1), someCpid);
    const CpidReceiver second(m_net.directory(1), someCpid + 1);
    CpidReceiver busy(m_net.directory(1), someCpid + 2);
    DeliveryAccount ofBusy{.node = nodeId(5), .dropped = {}};
    for (const TAaSysComCpid cpid : {someCpid, TAaSysComCpid{someCpid + 1}}) {
        deliver(m_account, cpid, fill(m_account, cpid), 100);
    }
    EXPECT_EQ(m_account.pending, 50U);
    EXPECT_EQ(m_receivers.keptBytes(), 50 * keptSize);

    const std::uint32_t taken = fill(ofBusy, someCpid + 2); // for a moment it does not come to reading
    deliver(ofBusy, someCpid + 2, taken + 1, 9);

    EXPECT_EQ(ofBusy.pending, 10U);
    EXPECT_EQ(ofBusy.dropped.sum(), 0U);
    EXPECT_EQ(m_account.pending, 40U);
    EXPECT_EQ(m_receivers.keptBytes(), 50 * keptSize);
    std::vector<std::uint32_t> numbers(taken + 10);
    std::iota(numbers.begin(), numbers.end(), 0U);
    EXPECT_EQ(readAll(busy, numbers.size()), numbers);
    EXPECT_EQ(ofBusy.delivered, numbers.size());
    EXPECT_EQ(ofBusy.pending, 0U);
}

TEST_F(ReceiversTest, CpidThatNobodyHoldsIsLookedForOnceUntilTheNextTick)
{
    deliver(m_account, someCpid, 0);
    CpidReceiver receiver(m_net.directory(1), someCpid);
    deliver(m_account, someCpid, 1);
    EXPECT_EQ(m_account.dropped[DropReason::NoReceiver], 2U);

    m_receivers.tick(host::Clock::get().monotonic());
    deliver(m_account, someCpid, 2);

    EXPECT_EQ(m_account.delivered, 1U);
    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 2U);
}

TEST_F(ReceiversTest, MessageThatCannotBeKeptForWantOfMemoryIsDroppedAndCounted)
{
    const CpidReceiver lazy(m_net.directory(1), someCpid);
    const std::uint32_t taken = fill(m_account, someCpid);
    {
        const NoMemory noMemory;
        deliver(m_account, someCpid, taken + 1);
    }
    deliver(m_account, someCpid, taken + 2);

    EXPECT_EQ(m_account.pending, 2U);
    EXPECT_EQ(m_account.dropped[DropReason::ReceiverFull], 1U);
}

TEST_F(ReceiversTest, MessageForAReceiverThatThereIsNoMemoryForIsDroppedAndCounted)
{
    CpidReceiver receiver(m_net.directory(1), someCpid);
    {
        const NoMemory noMemory;
        deliver(m_account, someCpid, 0, 3);
    }
    EXPECT_EQ(m_account.dropped[DropReason::ReceiverFull], 3U);
    deliver(m_account, someCpid, 3);

    EXPECT_EQ(m_account.delivered, 1U);
    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 3U);
}

TEST_F(ReceiversTest, ReceiverThatCannotBeConnectedToForWantOfMemoryIsTriedAgain)
{
    auto receiver = std::make_unique<CpidReceiver>(m_net.directory(1), someCpid);
    const std::uint32_t taken = fill(m_account, someCpid);
    m_waitSet.wait(host::Deadline(0)); // so that it needs no memory for what it waits for
    receiver.reset();
    receiver = std::make_unique<CpidReceiver>(m_net.directory(1), someCpid);
    {
        const NoMemory noMemory;
        m_waitSet.wait(host::Deadline(0)); // the connection has ended: there would be a new one
    }
    EXPECT_EQ(m_account.pending, 1U);

    m_receivers.tick(m_receivers.deadline());

    EXPECT_EQ(m_account.pending, 0U);
    EXPECT_EQ(receiver->take().value_or(Arrived{}).number(), taken);
}

TEST_F(ReceiversTest, WhatIsTakenBeforeTheEndIsHandedOver)
{
    CpidReceiver receiver(m_net.directory(1), someCpid);
    const std::uint32_t taken = fill(m_account, someCpid);
    deliver(m_account, someCpid, taken + 1, 4);
    EXPECT_EQ(m_account.pending, 5U);
    EXPECT_EQ(receiver.takeAll(taken).size(), taken);

    m_receivers.flushAll();

    EXPECT_EQ(m_account.pending, 0U);
    EXPECT_EQ(m_account.delivered, taken + 5);
    EXPECT_EQ(receiver.takeAll(5).back().number(), taken + 4);
}

} // namespace
} // namespace dorn::gateway::test
