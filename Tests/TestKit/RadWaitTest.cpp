// SPDX-License-Identifier: MIT
#include "RadWait.hpp"

#include "ManualClock.hpp"
#include "NodeTest.hpp"

#include <atomic>
#include <thread>

namespace dorn::testkit {
namespace {

constexpr std::uint16_t domain = 77;
constexpr TAaConfigRadId parameter = domain << 16 | 1;
constexpr Bound shortBound(1);

void declare()
{
    AaConfigRadSetMaxTagCount(domain, parameter + 1);
    AaConfigRadSetDefault(parameter, "Parameter", 5);
}

class RadWaitTest : public NodeTest {};

TEST_F(RadWaitTest, ValueThatIsThereIsSeenAtOnce)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(domain, "Test", declare), 0);

    EXPECT_TRUE(waitForRad(parameter, 5));
}

TEST_F(RadWaitTest, ValueThatAnotherThreadSetsIsSeen)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(domain, "Test", declare), 0);
    const std::jthread setter([] { AaConfigRadSetValue(parameter, 6); });

    EXPECT_TRUE(waitForRad(parameter, 6));
}

TEST_F(RadWaitTest, DomainThatIsRegisteredLaterIsSeen)
{
    const std::jthread registrar([] { AaConfigRadRegisterDomain(domain, "Test", declare); });

    EXPECT_TRUE(waitForRad(parameter, 5));
}

TEST_F(RadWaitTest, WaitIsBounded)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(domain, "Test", declare), 0);

    EXPECT_FALSE(waitForRad(parameter, 6, shortBound));
}

TEST_F(RadWaitTest, WaitForAParameterThatDoesNotExistIsBounded)
{
    ASSERT_EQ(AaConfigRadRegisterDomain(domain, "Test", declare), 0);

    EXPECT_FALSE(waitForRad(parameter + 1, 0, shortBound));
    EXPECT_FALSE(waitForRad((domain + 1) << 16, 0, shortBound));
}

TEST_F(RadWaitTest, BoundIsRealTimeWhateverTheClock)
{
    const ManualClock clock;
    ASSERT_EQ(AaConfigRadRegisterDomain(domain, "Test", declare), 0);

    EXPECT_FALSE(waitForRad(parameter, 6, shortBound));
}

TEST_F(RadWaitTest, ConditionIsAskedAgainWhenStirred)
{
    std::atomic<bool> isMet{false};
    std::atomic<bool> isAsked{false};
    const std::jthread stirrer([&] {
        isAsked.wait(false);
        isMet = true;
        stirRadWaits();
    });

    EXPECT_TRUE(waitForRadChange([&] {
        isAsked = true;
        isAsked.notify_all();
        return isMet.load();
    }));
}

} // namespace
} // namespace dorn::testkit
