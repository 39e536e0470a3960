// SPDX-License-Identifier: MIT
#include "hwapiMsgQueue.h"
#include "RecordingPlatform.hpp"

#include "AaSysCom.h"

#include <gmock/gmock.h>

extern "C" void* receiveInC(std::int32_t timeout);
extern "C" void* receiveSelectiveInC(std::int32_t timeout, std::uint16_t id);

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HwapiMsgQueueTest : public testing::Test {
protected:
    dorn::test::RecordingPlatform m_platform;
};

TEST_F(HwapiMsgQueueTest, BeginAndEndOfAQueueAskNothingOfThePlatform)
{
    hwapiMsgQueueCreateAccessMutex();
    hwapiMsgQueueInit();
    hwapiMsgQueueDestroy();

    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(HwapiMsgQueueTest, ReceiveGivesTheNextMessage)
{
    m_platform.queueMessage(0x1234);

    void* message = hwapiMsgQueueReceive(-1);

    EXPECT_EQ(AaSysComMsgGetId(message), 0x1234U);
    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgReceive(-1)"));
    AaSysComMsgDestroy(&message);
}

TEST_F(HwapiMsgQueueTest, ReceiveGivesNullWhenTheTimeHasPassed)
{
    EXPECT_EQ(hwapiMsgQueueReceive(2500), nullptr);
    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgReceive(2500)"));
}

TEST_F(HwapiMsgQueueTest, SelectiveReceiveHandsTheFilterOn)
{
    m_platform.queueMessage(4018);
    const std::uint16_t filter[] = {2, 4018, 4020};

    void* message = hwapiMsgQueueReceiveSelective(10000000, filter);

    EXPECT_EQ(AaSysComMsgGetId(message), 4018U);
    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgReceiveSelective(10000000, 2 4018 4020)"));
    AaSysComMsgDestroy(&message);
}

TEST_F(HwapiMsgQueueTest, SelectiveReceiveGivesNullWhenTheTimeHasPassed)
{
    const std::uint16_t filter[] = {1, 4018};

    EXPECT_EQ(hwapiMsgQueueReceiveSelective(0, filter), nullptr);
}

TEST_F(HwapiMsgQueueTest, FunctionsAreCalledFromC)
{
    EXPECT_EQ(receiveInC(0), nullptr);
    EXPECT_EQ(receiveSelectiveInC(10, 4018), nullptr);

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgReceive(0)", "AaSysComMsgReceiveSelective(10, 1 4018)"));
}

} // namespace
