// SPDX-License-Identifier: MIT
#include "TagWait.hpp"

#include "AaConfigTag.h"
#include "FailNth.hpp"
#include "NodeTest.hpp"

#include <chrono>
#include <thread>

namespace dorn::testkit {
namespace {

class TagWaitTest : public NodeTest {};

TEST_F(TagWaitTest, ValueThatIsThereEndsTheWait)
{
    AaConfigTagSetString("site.name", "Harbour");
    AaConfigTagSetU32("site.vlan", 500);

    EXPECT_TRUE(waitForTag("site.name", "Harbour"));
    EXPECT_TRUE(waitForTag("site.vlan", 500U));
}

TEST_F(TagWaitTest, SetEndsTheWait)
{
    std::jthread setter([] {
        AaConfigTagSetString("site.name", "another");
        AaConfigTagSetString("site.name", "Harbour");
    });

    EXPECT_TRUE(waitForTag("site.name", "Harbour"));
}

TEST_F(TagWaitTest, AnotherValueDoesNot)
{
    AaConfigTagSetU16("site.vlan", 500);

    EXPECT_FALSE(waitForTag("site.vlan", 500U, std::chrono::milliseconds(0))) << "it has 2 bytes";
    EXPECT_FALSE(waitForTag("site.name", "Harbour", std::chrono::milliseconds(0))) << "it does not exist";
}

TEST_F(TagWaitTest, SeveralWaitForOneTag)
{
    bool isSecondMet = false;
    {
        std::jthread other([&] { isSecondMet = waitForTag("site.name", "second"); });
        std::jthread setter([] { AaConfigTagSetString("site.name", "first"); });
        EXPECT_TRUE(waitForTag("site.name", "first"));
        AaConfigTagSetString("site.name", "second");
    }
    EXPECT_TRUE(isSecondMet);
}

TEST_F(TagWaitTest, ItsCallsAreNotCounted)
{
    const CountCalls<AaConfigTagGet> reads;
    const CountCalls<AaConfigTagRegister> registrations;
    AaConfigTagSetString("site.name", "Harbour");

    EXPECT_TRUE(waitForTag("site.name", "Harbour"));

    EXPECT_EQ(reads.count(), 0U);
    EXPECT_EQ(registrations.count(), 0U);
}

} // namespace
} // namespace dorn::testkit
