// SPDX-License-Identifier: MIT
#include "config/RadWatch.hpp"

#include "ChildProcess.hpp"
#include "NodeTest.hpp"

#include <vector>

namespace dorn::host {
namespace {

using test::ChildProcess;

class RadWatchTest : public testkit::NodeTest {
protected:
    static RadStore& store() { return PerNode<RadStore>::get(); }
    static Deadline soon() { return Clock::get().after(20'000'000); }
    static void registerLamps() { ASSERT_EQ(store().registerDomain({3, "Lamps", {{"RED", 7}, {"GREEN", 0}}}), ""); }
};

TEST_F(RadWatchTest, PresentValuesAreNoChanges)
{
    registerLamps();
    AaConfigRadSetValue(0x30000, 8);
    RadWatch watch(store());
    EXPECT_TRUE(watch.waitForChanges(Nanoseconds(0)).empty());
}

TEST_F(RadWatchTest, EveryChangedParameterIsToldOnce)
{
    registerLamps();
    RadWatch watch(store());

    AaConfigRadSetValue(0x30001, 1);
    AaConfigRadSetValue(0x30000, 2);
    AaConfigRadSetValue(0x30001, 3);
    const std::vector<RadParameter> changes = watch.waitForChanges(soon());

    ASSERT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes[0].id, 0x30000U);
    EXPECT_EQ(changes[0].value, 2U);
    EXPECT_EQ(changes[1].id, 0x30001U);
    EXPECT_EQ(changes[1].value, 3U);
    EXPECT_TRUE(watch.waitForChanges(Nanoseconds(0)).empty());
}

TEST_F(RadWatchTest, SameValueAgainIsNoChange)
{
    registerLamps();
    RadWatch watch(store());
    AaConfigRadSetValue(0x30000, 7);
    EXPECT_TRUE(watch.waitForChanges(Clock::get().after(1000)).empty());
}

TEST_F(RadWatchTest, DomainThatIsRegisteredLaterIsTold)
{
    RadWatch watch(store());
    registerLamps();
    const std::vector<RadParameter> changes = watch.waitForChanges(soon());
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes[0].name, "RED");
    EXPECT_EQ(changes[1].name, "GREEN");
}

TEST_F(RadWatchTest, SleepingWatchIsWokenByAnotherProcess)
{
    ChildProcess service([](ChildProcess::Parent& parent) {
        registerLamps();
        parent.tell();
        parent.await();
        AaConfigRadSetValue(0x30001, 5);
    });
    ASSERT_TRUE(service.await());
    RadWatch watch(store());

    service.tell();
    const std::vector<RadParameter> changes = watch.waitForChanges(soon());

    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].id, 0x30001U);
    EXPECT_EQ(changes[0].value, 5U);
    EXPECT_TRUE(service.hasSucceeded());
}

} // namespace
} // namespace dorn::host
