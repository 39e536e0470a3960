// SPDX-License-Identifier: MIT
// Recipes: recording what a service says, and playing it to the next version of it.
#include "AaConfigRad.h"
#include "KioskTest.hpp"
#include "Traffic.hpp"

#include <gmock/gmock.h>

namespace kiosk {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

class RecipesTrafficTest : public KioskTest {
protected:
    /// A customer's questions and the kiosk's answers.
    Traffic recorded()
    {
        Peer customer(0x0300);
        TrafficRecorder recorder(m_running->address());
        for (const std::uint32_t paper : {1U, 2U}) {
            customer.send<PriceReqMsg>(m_running->address(), {paper});
            customer.expect<PriceRespMsg>();
        }
        m_running->sync();
        return recorder.stop();
    }
};

TEST_F(RecipesTrafficTest, KioskSaysWhatItHasSaid)
{
    open();
    m_node.writeBoardFile("/ram/traffic", textOf(recorded()));

    replay(trafficOf(m_node.readBoardFile("/ram/traffic")), m_running->address());
}

TEST_F(RecipesTrafficTest, AnotherAnswerIsFound)
{
    open();
    const Traffic traffic = recorded();
    AaConfigRadSetValue(discountParameter, 50);

    EXPECT_THAT([&] { replay(traffic, m_running->address()); },
                ThrowsMessage<std::runtime_error>(
                    HasSubstr("message 2, 0x1012 from 0xf010211 to 0xf010300 has the payload 0100000064000000 and had "
                              "01000000c8000000")));
}

TEST_F(RecipesTrafficTest, RecordingHasEveryMessageOfTheServiceAndNoOther)
{
    open();
    const Traffic traffic = recorded();

    ASSERT_EQ(traffic.size(), 4U);
    EXPECT_EQ(traffic[0], (SentMessage{0x0F010300, m_running->address(), PriceReqMsg::ID, std::string("\1\0\0\0", 4)}));
    EXPECT_EQ(traffic[1].sender, m_running->address());
    EXPECT_EQ(traffic[3].id, PriceRespMsg::ID);
}

TEST(TrafficTextTest, TextIsReadAsItWasWritten)
{
    const Traffic traffic{{0xF010300, 0xF010211, 0x1011, std::string("\0\xFF", 2)}, {0, 0xF010211, 0xFFFFFFFF, ""}};

    EXPECT_EQ(textOf(traffic), "f010300 f010211 1011 00ff\n0 f010211 ffffffff \n");
    EXPECT_EQ(trafficOf(textOf(traffic)), traffic);
}

TEST(TrafficTextTest, OtherTextIsRefused)
{
    for (const char* const text : {"hello", "1 2", "1 2 3 f", "1 2 3 0g", "1 2 3 -1"}) {
        EXPECT_THAT([&] { trafficOf(text); }, ThrowsMessage<std::runtime_error>(HasSubstr("traffic: "))) << text;
    }
}

} // namespace
} // namespace kiosk
