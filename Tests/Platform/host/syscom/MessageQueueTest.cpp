// SPDX-License-Identifier: MIT
#include "syscom/MessageQueue.hpp"

#include "Bound.hpp"

#include <array>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <span>
#include <sys/eventfd.h>
#include <unistd.h>

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

/// Brings a message each time it is served; always readable once it has been raised.
class Stream : public WaitSource {
public:
    Stream(MessageQueue& queue, TAaSysComMsgId id) : m_queue(queue), m_id(id)
    {
        m_queue.waitSet().add(m_descriptor, *this);
    }
    ~Stream() override { close(m_descriptor); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    void raise() const { eventfd_write(m_descriptor, 1); }
    int served() const { return m_served; }
    void onReadable() override
    {
        m_queue.appendArrived(makeMessage(m_id));
        if (++m_served == 100) {
            then();
        }
    }

    std::function<void()> then = [] {};

private:
    MessageQueue& m_queue;
    TAaSysComMsgId m_id;
    int m_descriptor = eventfd(0, EFD_CLOEXEC);
    int m_served = 0;
};

TEST(MessageQueueTest, SelectiveReceiveIsNotHeldUpByAStreamThatItPassesOver)
{
    MessageQueue queue;
    queue.open(owner);
    Stream passedOver(queue, 1);
    const Stream wanted(queue, 2);
    passedOver.then = [&] { wanted.raise(); };
    passedOver.raise();

    const std::array<std::uint16_t, 1> ids{2};
    const std::span<const std::uint16_t> filter(ids);
    Message* const message = queue.receive(Clock::get().monotonic() + testkit::generousBound, &filter);

    ASSERT_TRUE(message);
    EXPECT_EQ(message->header.id, 2U);
    EXPECT_LT(passedOver.served(), 300);
    Message::destroy(message);
}

} // namespace
} // namespace dorn::host::test
