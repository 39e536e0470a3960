// SPDX-License-Identifier: MIT
// Registered dispatchers live as long as the process, longer than any test's platform: they are made, never started.
#include "EventDispatcher.hpp"
#include "RecordingPlatform.hpp"

#include <gmock/gmock.h>

#include <array>
#include <barrier>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vel::hwapi::common {
namespace {

class EventDispatcherRegistryTest : public testing::Test {
protected:
    dorn::test::RecordingPlatform m_platform;
};

TEST_F(EventDispatcherRegistryTest, RegisteredDispatcherIsTheSameEachTime)
{
    EventDispatcher* const first = EventDispatcher::Get(7);

    EXPECT_NE(first, nullptr);
    EXPECT_EQ(EventDispatcher::Get(7), first);
    EXPECT_NE(EventDispatcher::Get(8), first);
}

TEST_F(EventDispatcherRegistryTest, UnregisteredDispatchersAreAlwaysNew)
{
    const std::unique_ptr<EventDispatcher> first(EventDispatcher::Get());
    const std::unique_ptr<EventDispatcher> second(EventDispatcher::Get());

    EXPECT_NE(first, second);
    EXPECT_NE(EventDispatcher::Get(7), first.get());
}

TEST_F(EventDispatcherRegistryTest, RegistryMayBeAskedByManyThreads)
{
    m_platform.onCall = [](const std::string&) { std::this_thread::yield(); }; // let others in while one is made
    constexpr unsigned firstId = 1000;
    constexpr unsigned ids = 500;
    std::array<std::vector<EventDispatcher*>, 4> found;
    std::barrier start(static_cast<std::ptrdiff_t>(found.size()));
    std::vector<std::thread> threads;
    for (auto& dispatchers : found) {
        threads.emplace_back([&] {
            for (unsigned id = firstId; id < firstId + ids; ++id) {
                start.arrive_and_wait(); // all ask for a new one at once
                dispatchers.push_back(EventDispatcher::Get(id));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    for (const auto& dispatchers : found) {
        EXPECT_EQ(dispatchers, found.front());
    }
    EXPECT_THAT(m_platform.calls("AaSemTake"), testing::IsEmpty()); // none was made in vain and destroyed
}

} // namespace
} // namespace vel::hwapi::common
