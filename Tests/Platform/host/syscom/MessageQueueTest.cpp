// SPDX-License-Identifier: MIT
#include "syscom/MessageQueue.hpp"

#include <gtest/gtest.h>

namespace dorn::host::test {
namespace {

constexpr TAaProEuId owner = 7;

Message* makeMessage(TAaSysComMsgId id)
{
    Message* const message = Message::create(id, 0, 0, 0);
    message->targetEu = owner;
    return message;
}

TEST(MessageQueueTest, WhatWasSentWithinTheProcessBeforeAnArrivalStaysInFrontOfIt)
{
    MessageQueue queue;
    queue.open(owner);
    ASSERT_EQ(queue.push(makeMessage(1)), MessageQueue::PushResult::Ok);
    queue.appendArrived(makeMessage(2)); // as when both have come while the owner slept
    ASSERT_EQ(queue.push(makeMessage(3)), MessageQueue::PushResult::Ok);

    for (const TAaSysComMsgId id : {1U, 2U, 3U}) {
        Message* const message = queue.receive(Deadline(0), nullptr);
        ASSERT_TRUE(message);
        EXPECT_EQ(message->header.id, id);
        Message::destroy(message);
    }
}

} // namespace
} // namespace dorn::host::test
