// SPDX-License-Identifier: MIT
// Tags under load: other processes set them while they are observed, left and waited for.
#include "TagWatcher.hpp"

#include "AaConfigTag.h"
#include "NodeTest.hpp"
#include "Process.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace vel::hwapi::common {
namespace {

using dorn::test::comesTrue;
using dorn::test::TagWatcher;
using dorn::testkit::NodeTest;
using dorn::testkit::Process;

class ServiceTagsStressTest : public NodeTest {
protected:
    ServiceTagsStressTest() { AaConfigEarlyStartup(); }

    TagWatcher m_service;
};

TEST_F(ServiceTagsStressTest, TagsMayBeObservedAndLeftWhileOthersSetThem)
{
    Process first(DORN_TAG_PROGRAM, {"flood", "x", "1", "9"});
    Process second(DORN_TAG_PROGRAM, {"flood", "y", "1", "9"});
    std::atomic<bool> isLeft{true};
    std::atomic<int> afterLeaving{0};
    std::atomic<int> heard{0};
    m_service.onChange = [&](const std::string& tag, unsigned int value) {
        EXPECT_TRUE(tag == "x" || tag == "y");
        EXPECT_TRUE(value >= 1 && value <= 9);
        ++heard;
        afterLeaving += isLeft.load() ? 1 : 0;
    };

    for (int round = 0; round < 200 || heard.load() < 500; ++round) {
        isLeft.store(false);
        m_service.SetObservedTag("x");
        m_service.SetObservedTag("y");
        m_service.UnSetObservedTag("x");
        m_service.UnSetObservedTag("y");
        isLeft.store(true);
    }

    EXPECT_EQ(afterLeaving.load(), 0);
}

TEST_F(ServiceTagsStressTest, EveryoneWhoWaitsIsReleasedInTheEnd)
{
    constexpr int threads = 6;
    constexpr int rounds = 50;
    Process first(DORN_TAG_PROGRAM, {"flood", "x", "1", "3"});
    Process second(DORN_TAG_PROGRAM, {"flood", "y", "1", "3"});
    m_service.SetObservedTag("x");
    std::atomic<int> released{0};
    std::vector<std::thread> waiters;

    for (unsigned int index = 0; index < threads; ++index) {
        waiters.emplace_back([&, index] {
            for (unsigned int round = 0; round < rounds; ++round) {
                m_service.WaitForConfigTag(index % 2 == 0 ? "x" : "y", 1 + (index + round) % 3);
                ++released;
            }
        });
    }

    EXPECT_TRUE(comesTrue([&] { return released.load() == threads * rounds; }));
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
}

class ServiceTagsLivesStressTest : public NodeTest {};

TEST_F(ServiceTagsLivesStressTest, ServicesMayComeAndGoWhileTheirTagsAreSet)
{
    Process setter(DORN_TAG_PROGRAM, {"flood", "x", "1", "1"});
    for (int life = 0; life < 50; ++life) {
        TagWatcher service;
        service.SetObservedTag("x");
        service.WaitForConfigTag("x", 1);
        ASSERT_TRUE(service.waitFor("x=1"));
    }
}

} // namespace
} // namespace vel::hwapi::common
