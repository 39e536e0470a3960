// SPDX-License-Identifier: MIT
#include "gateway/QueueRoom.hpp"

#include <gtest/gtest.h>

namespace dorn::gateway::test {
namespace {

/// A queue whose messages have ten bytes each.
struct TestQueue final : QueueTenant {
    std::size_t queuedBytes() const override { return onTheWay + unsent; }
    std::size_t droppableBytes() const override { return unsent; }
    std::size_t giveWay() override
    {
        unsent -= 10;
        return 10;
    }
    std::size_t onTheWay = 0;
    std::size_t unsent = 0;
};

class QueueRoomTest : public testing::Test {
protected:
    QueueRoomTest()
    {
        m_room.add(m_first);
        m_room.add(m_second);
    }
    void push(TestQueue& queue)
    {
        queue.unsent += 10;
        m_room.note(10);
    }

    QueueRoom m_room{100};
    TestQueue m_first;
    TestQueue m_second;
};

TEST_F(QueueRoomTest, FullestQueueGivesWay)
{
    for (int count = 0; count < 7; ++count) {
        push(m_first);
    }
    for (int count = 0; count < 3; ++count) {
        push(m_second);
    }
    EXPECT_EQ(m_first.unsent, 70U);

    push(m_second);
    push(m_second);

    EXPECT_EQ(m_first.unsent, 50U);
    EXPECT_EQ(m_second.unsent, 50U);
}

TEST_F(QueueRoomTest, WhatHasBeenConfirmedTakesNoRoom)
{
    for (int count = 0; count < 50; ++count) {
        push(m_first);
        m_first.unsent = 0;
        push(m_second);
        m_second.unsent = 20;
    }
    EXPECT_EQ(m_second.unsent, 20U);
    for (int count = 0; count < 8; ++count) {
        push(m_first);
    }
    EXPECT_EQ(m_first.unsent, 80U);
}

TEST_F(QueueRoomTest, WhatIsOnItsWayStays)
{
    m_first.onTheWay = 200;
    m_room.note(200);
    push(m_second);

    EXPECT_EQ(m_first.onTheWay, 200U);
    EXPECT_EQ(m_second.unsent, 0U);
}

} // namespace
} // namespace dorn::gateway::test
