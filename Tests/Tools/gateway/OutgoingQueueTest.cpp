// SPDX-License-Identifier: MIT
#include "gateway/OutgoingQueue.hpp"

#include "NoMemory.hpp"

#include <algorithm>
#include <gmock/gmock.h>
#include <numeric>

namespace dorn::gateway::test {
namespace {

using testing::ElementsAre;

constexpr std::size_t plenty = std::size_t{1} << 30;
constexpr OutgoingQueue::Limits roomy{1000, plenty};

/// Puts messages whose id is their number.
std::size_t push(OutgoingQueue& queue, std::uint32_t number, std::size_t size = 0)
{
    return queue.push({number, 1, 2, static_cast<std::uint16_t>(size)}, WireBytes(size));
}

std::vector<std::uint32_t> idsOf(const OutgoingQueue::Packed& packed)
{
    std::vector<std::uint32_t> ids;
    for (std::span<const std::byte> rest = packed.records; !rest.empty();) {
        ids.push_back(takeRecord(rest).header.id);
    }
    EXPECT_EQ(ids.size(), packed.count);
    return ids;
}

/// Sends the next parcel. @return its messages
std::vector<std::uint32_t> send(OutgoingQueue& queue, std::uint64_t number)
{
    const OutgoingQueue::Packed packed = queue.front();
    EXPECT_EQ(packed.number, number);
    const std::vector<std::uint32_t> ids = idsOf(packed);
    queue.sent();
    return ids;
}

TEST(OutgoingQueueTest, EmptyQueueHasNothingToSend)
{
    const OutgoingQueue queue(roomy);

    EXPECT_FALSE(queue.canSend());
    EXPECT_FALSE(queue.hasUnsent());
    EXPECT_EQ(queue.messages(), 0U);
    EXPECT_EQ(queue.bytes(), 0U);
}

TEST(OutgoingQueueTest, WhatHasCollectedGoesInOneParcel)
{
    OutgoingQueue queue(roomy);
    push(queue, 1);
    push(queue, 2);
    push(queue, 3);

    EXPECT_THAT(send(queue, 1), ElementsAre(1, 2, 3));
    EXPECT_FALSE(queue.canSend());
    push(queue, 4);
    EXPECT_THAT(send(queue, 2), ElementsAre(4));
}

TEST(OutgoingQueueTest, ParcelIsFullAtItsTarget)
{
    OutgoingQueue queue(roomy);
    push(queue, 1, 40000);
    push(queue, 2, 25000);
    push(queue, 3, 65535);
    push(queue, 4, 65535);

    EXPECT_THAT(send(queue, 1), ElementsAre(1, 2));
    EXPECT_THAT(send(queue, 2), ElementsAre(3));
    EXPECT_THAT(send(queue, 3), ElementsAre(4));
}

TEST(OutgoingQueueTest, OldestIsDroppedWhenThereAreTooMany)
{
    OutgoingQueue queue({3, plenty});
    EXPECT_EQ(push(queue, 1), 0U);
    EXPECT_EQ(push(queue, 2), 0U);
    EXPECT_EQ(push(queue, 3), 0U);
    EXPECT_EQ(push(queue, 4), 1U);
    EXPECT_EQ(push(queue, 5), 1U);

    EXPECT_EQ(queue.messages(), 3U);
    for (std::uint32_t number = 3; number <= 5; ++number) {
        EXPECT_THAT(send(queue, number - 2), ElementsAre(number));
        EXPECT_EQ(queue.confirm(number - 1), 1U);
    }
}

TEST(OutgoingQueueTest, AsManyAsNeededAreDroppedForBytes)
{
    OutgoingQueue queue({100, 1000});
    for (std::uint32_t number = 1; number <= 5; ++number) {
        EXPECT_EQ(push(queue, number, 184), 0U);
    }
    EXPECT_EQ(queue.bytes(), 1000U);

    EXPECT_EQ(push(queue, 6, 384), 2U);

    EXPECT_EQ(queue.bytes(), 1000U);
    EXPECT_THAT(send(queue, 1), ElementsAre(3, 4, 5, 6));
}

TEST(OutgoingQueueTest, MessageThatNeverFitsIsDroppedItself)
{
    OutgoingQueue queue({100, 1000});
    push(queue, 1);

    EXPECT_EQ(push(queue, 2, 2000), 2U);

    EXPECT_EQ(queue.messages(), 0U);
    EXPECT_EQ(queue.bytes(), 0U);
    EXPECT_FALSE(queue.canSend());
}

TEST(OutgoingQueueTest, WhatHasBeenSentIsNotDropped)
{
    OutgoingQueue queue({3, plenty});
    push(queue, 1);
    push(queue, 2);
    EXPECT_THAT(send(queue, 1), ElementsAre(1));
    EXPECT_EQ(push(queue, 3), 0U);

    EXPECT_EQ(push(queue, 4), 1U);

    EXPECT_EQ(queue.messages(), 3U);
    EXPECT_EQ(queue.confirm(2), 1U);
    EXPECT_THAT(send(queue, 2), ElementsAre(3));
}

/// Small messages fill a window by their count long before they do by bytes.
TEST(OutgoingQueueTest, OldestOfAStreamThatNobodyConfirmsAreDroppedNotItsNewest)
{
    OutgoingQueue queue({100, plenty});
    std::vector<std::uint32_t> inFlight;
    std::uint64_t next = 1;
    for (std::uint32_t number = 1; number <= 1000; ++number) {
        push(queue, number);
        while (queue.canSend()) {
            const std::vector<std::uint32_t> parcel = send(queue, next++);
            inFlight.insert(inFlight.end(), parcel.begin(), parcel.end());
        }
    }

    EXPECT_EQ(inFlight.size(), 25U);
    EXPECT_EQ(queue.messages(), 100U);
    EXPECT_EQ(queue.confirm(next), 25U);
    std::vector<std::uint32_t> survivors;
    while (queue.canSend()) {
        const std::vector<std::uint32_t> parcel = send(queue, next++);
        survivors.insert(survivors.end(), parcel.begin(), parcel.end());
        queue.confirm(next);
    }
    std::vector<std::uint32_t> newest(75);
    std::iota(newest.begin(), newest.end(), 926U);
    EXPECT_EQ(survivors, newest);
}

TEST(OutgoingQueueTest, QuarterOfTheQueueMayBeInFlightAndAQuarterOfThatInAParcel)
{
    EXPECT_EQ((OutgoingQueue::Limits{65536, plenty}.windowMessages()), 16384U);
    EXPECT_EQ((OutgoingQueue::Limits{65536, plenty}.parcelMessages()), 4096U);
    EXPECT_EQ((OutgoingQueue::Limits{3, plenty}.windowMessages()), 1U);
    EXPECT_EQ((OutgoingQueue::Limits{3, plenty}.parcelMessages()), 1U);
    OutgoingQueue queue({100, plenty});
    for (std::uint32_t number = 1; number <= 7; ++number) {
        push(queue, number);
    }
    EXPECT_EQ(queue.front().count, 6U);
}

TEST(OutgoingQueueTest, OldestCanBeDroppedForOthers)
{
    OutgoingQueue queue(roomy);
    push(queue, 1, 84);
    send(queue, 1);
    push(queue, 2, 4);
    push(queue, 3, 14);
    EXPECT_EQ(queue.unsentBytes(), 50U);

    EXPECT_EQ(queue.dropOldest(), 20U);

    EXPECT_EQ(queue.unsentBytes(), 30U);
    EXPECT_EQ(queue.bytes(), 130U);
    EXPECT_THAT(send(queue, 2), ElementsAre(3));
}

TEST(OutgoingQueueTest, QueueStaysAsItWasWhereMemoryRunsOut)
{
    OutgoingQueue queue(roomy);
    for (std::uint32_t number = 1; number <= 3; ++number) {
        {
            const NoMemory noMemory;
            EXPECT_THROW(queue.push({number + 10, 1, 2, 0}, {}), std::bad_alloc);
        }
        EXPECT_EQ(queue.messages(), number - 1);
        EXPECT_EQ(queue.canSend(), number > 1);
        push(queue, number);
    }
    EXPECT_THAT(send(queue, 1), ElementsAre(1, 2, 3));
}

TEST(OutgoingQueueTest, ConfirmedParcelsMakeRoom)
{
    OutgoingQueue queue(roomy);
    push(queue, 1, 84);
    send(queue, 1);
    push(queue, 2, 84);
    send(queue, 2);
    push(queue, 3, 84);
    send(queue, 3);

    EXPECT_EQ(queue.confirm(3), 2U);

    EXPECT_EQ(queue.messages(), 1U);
    EXPECT_EQ(queue.bytes(), 100U);
    EXPECT_EQ(queue.confirm(3), 0U);
    EXPECT_EQ(queue.confirm(1), 0U);
    EXPECT_EQ(queue.confirm(4), 1U);
    EXPECT_EQ(queue.messages(), 0U);
}

TEST(OutgoingQueueTest, ConfirmationOfWhatWasNeverSentIsNotBelieved)
{
    OutgoingQueue queue(roomy);
    push(queue, 1);
    send(queue, 1);
    push(queue, 2);

    EXPECT_EQ(queue.confirm(3), 0U);
    EXPECT_EQ(queue.confirm(~std::uint64_t{0}), 0U);

    EXPECT_EQ(queue.messages(), 2U);
}

TEST(OutgoingQueueTest, OnlyAWindowIsSentUnconfirmed)
{
    const OutgoingQueue::Limits limits{100, 400000};
    EXPECT_EQ(limits.window(), 100000U);
    OutgoingQueue queue(limits);
    for (std::uint32_t number = 1; number <= 4; ++number) {
        push(queue, number, 60000);
    }

    send(queue, 1);
    send(queue, 2);
    EXPECT_FALSE(queue.canSend());
    EXPECT_EQ(queue.confirm(2), 1U);
    EXPECT_TRUE(queue.canSend());
}

TEST(OutgoingQueueTest, WindowIsAtMostFourMebibytes)
{
    EXPECT_EQ((OutgoingQueue::Limits{1, plenty, 70000}.window()), 70000U);
    EXPECT_EQ((OutgoingQueue::Limits{1, plenty}.window()), std::size_t{4} << 20);
}

TEST(OutgoingQueueTest, NextSessionSendsAgainWhatDidNotArrive)
{
    OutgoingQueue queue(roomy);
    for (std::uint32_t number = 1; number <= 3; ++number) {
        push(queue, number);
        send(queue, number);
    }
    push(queue, 4);
    std::size_t confirmed = 0;

    EXPECT_EQ(queue.resume(2, confirmed), 0U);

    EXPECT_EQ(confirmed, 1U);
    EXPECT_THAT(send(queue, 2), ElementsAre(2));
    EXPECT_THAT(send(queue, 3), ElementsAre(3));
    EXPECT_THAT(send(queue, 4), ElementsAre(4));
    EXPECT_EQ(queue.confirm(5), 3U);
}

TEST(OutgoingQueueTest, ParcelStaysAsItIsWhenItIsSentAgain)
{
    OutgoingQueue queue(roomy);
    push(queue, 1);
    send(queue, 1);
    push(queue, 2);
    std::size_t confirmed = 0;
    queue.resume(1, confirmed);

    EXPECT_THAT(send(queue, 1), ElementsAre(1));
    EXPECT_THAT(send(queue, 2), ElementsAre(2));
}

TEST(OutgoingQueueTest, EverythingHasArrivedWhenTheNextIsExpected)
{
    OutgoingQueue queue(roomy);
    push(queue, 1);
    send(queue, 1);
    std::size_t confirmed = 0;

    EXPECT_EQ(queue.resume(2, confirmed), 0U);

    EXPECT_EQ(confirmed, 1U);
    EXPECT_FALSE(queue.canSend());
    EXPECT_EQ(queue.messages(), 0U);
}

TEST(OutgoingQueueTest, NumberOfAnotherStreamGivesUpWhatWasSent)
{
    OutgoingQueue queue(roomy);
    push(queue, 1);
    send(queue, 1);
    queue.confirm(2);
    push(queue, 2);
    send(queue, 2);
    push(queue, 3);
    std::size_t confirmed = 0;

    EXPECT_EQ(queue.resume(1, confirmed), 1U);

    EXPECT_EQ(confirmed, 0U);
    EXPECT_THAT(send(queue, 1), ElementsAre(3));
}

TEST(OutgoingQueueTest, ParcelThatCouldNotBeSentIsTheNextStill)
{
    OutgoingQueue queue(roomy);
    push(queue, 1);
    EXPECT_EQ(queue.front().number, 1U);
    push(queue, 2);

    EXPECT_THAT(send(queue, 1), ElementsAre(1));
    EXPECT_THAT(send(queue, 2), ElementsAre(2));
}

TEST(OutgoingQueueTest, ClearTellsWhatWasSentFromWhatWasNot)
{
    OutgoingQueue queue(roomy);
    push(queue, 1);
    push(queue, 2);
    send(queue, 1);
    push(queue, 3);

    const OutgoingQueue::Dropped dropped = queue.clear();

    EXPECT_EQ(dropped.unconfirmed, 2U);
    EXPECT_EQ(dropped.unsent, 1U);
    EXPECT_EQ(queue.messages(), 0U);
    EXPECT_EQ(queue.bytes(), 0U);
    push(queue, 4);
    EXPECT_THAT(send(queue, 1), ElementsAre(4));
}

TEST(OutgoingQueueTest, CountsHoldUnderDroppingAndSending)
{
    OutgoingQueue queue({50, 4000});
    std::size_t dropped = 0;
    std::size_t confirmed = 0;
    std::uint64_t next = 1;
    std::vector<std::uint32_t> ids;
    for (std::uint32_t number = 1; number <= 10000; ++number) {
        dropped += push(queue, number, number * 7 % 300);
        if (number % 11 == 0 && queue.canSend()) {
            const std::vector<std::uint32_t> parcel = send(queue, next++);
            ids.insert(ids.end(), parcel.begin(), parcel.end());
        }
        if (number % 37 == 0) {
            confirmed += queue.confirm(next);
        }
        ASSERT_LE(queue.messages(), 50U);
        ASSERT_LE(queue.bytes(), 4000U);
        ASSERT_EQ(dropped + confirmed + queue.messages(), number);
    }
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
    EXPECT_GT(dropped, 0U);
    EXPECT_GT(confirmed, 0U);
}

} // namespace
} // namespace dorn::gateway::test
