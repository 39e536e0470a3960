// SPDX-License-Identifier: MIT
#include "fault/FaultStore.hpp"

#include "BoardTest.hpp"
#include "node/PerNode.hpp"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace dorn::board {
namespace {

constexpr DriverFunction reboot("ddal_watchdog_reboot");
constexpr DriverFunction strerror("ddal_strerror");

class FaultStoreTest : public testkit::NodeTest {
protected:
    FaultStore m_store{host::PerNode<host::RunDirectory>::get()};
};

TEST(DriverFunctionTest, FunctionsAreFoundByTheirNames)
{
    for (std::size_t number = 0; number < driverFunctionNames.size(); ++number) {
        const auto function = DriverFunction::named(driverFunctionNames[number]);
        ASSERT_TRUE(function);
        EXPECT_EQ(function->number(), number);
        EXPECT_EQ(function->name(), driverFunctionNames[number]);
    }
    EXPECT_EQ(DriverFunction::named("ddal_"), std::nullopt);
    EXPECT_EQ(DriverFunction::named(""), std::nullopt);
}

TEST_F(FaultStoreTest, NothingFailsUntold)
{
    EXPECT_EQ(m_store.take(reboot), std::nullopt);
    EXPECT_TRUE(m_store.list().empty());
}

TEST_F(FaultStoreTest, AsManyCallsFailAsWereTold)
{
    m_store.set(reboot, -5, 2);

    EXPECT_EQ(m_store.take(reboot), -5);
    EXPECT_EQ(m_store.take(strerror), std::nullopt);
    EXPECT_EQ(m_store.take(reboot), -5);
    EXPECT_EQ(m_store.take(reboot), std::nullopt);
}

TEST_F(FaultStoreTest, SomeCallsMayWorkBefore)
{
    m_store.set(reboot, -5, 1, 2);
    EXPECT_EQ(m_store.list().at(0).after, 2U);

    EXPECT_EQ(m_store.take(reboot), std::nullopt);
    EXPECT_EQ(m_store.take(reboot), std::nullopt);
    EXPECT_EQ(m_store.list().at(0).after, 0U);
    EXPECT_EQ(m_store.take(reboot), -5);
    EXPECT_EQ(m_store.take(reboot), std::nullopt);
}

TEST_F(FaultStoreTest, NewOrderForgetsWhichCallsWereToWork)
{
    m_store.set(reboot, -5, 1, 2);
    m_store.set(reboot, -6, 1);

    EXPECT_EQ(m_store.take(reboot), -6);
}

TEST_F(FaultStoreTest, AlwaysHasNoEnd)
{
    m_store.set(reboot, 9, FaultStore::always);
    for (int call = 0; call < 1000; ++call) {
        ASSERT_EQ(m_store.take(reboot), 9);
    }
    EXPECT_EQ(m_store.list().at(0).left, FaultStore::always);
    EXPECT_EQ(m_store.list().at(0).given, 1000U);
}

TEST_F(FaultStoreTest, ListTellsWhatIsLeftAndWhatWasGiven)
{
    m_store.set(strerror, INT32_MIN, 3);
    m_store.set(reboot, 1, 1);
    m_store.take(strerror);
    m_store.take(reboot);

    const std::vector<DriverFault> faults = m_store.list();

    ASSERT_EQ(faults.size(), 2U);
    EXPECT_EQ(faults[0].function.name(), "ddal_strerror");
    EXPECT_EQ(faults[0].code, INT32_MIN);
    EXPECT_EQ(faults[0].left, 2U);
    EXPECT_EQ(faults[0].given, 1U);
    EXPECT_EQ(faults[1].function.name(), "ddal_watchdog_reboot");
    EXPECT_EQ(faults[1].left, 0U);
    EXPECT_EQ(faults[1].given, 1U);
}

TEST_F(FaultStoreTest, NewOrderTakesThePlaceOfTheOld)
{
    m_store.set(reboot, 1, 5);
    m_store.take(reboot);
    m_store.set(reboot, 2, 1);

    EXPECT_EQ(m_store.list().at(0).given, 0U);
    EXPECT_EQ(m_store.take(reboot), 2);
    EXPECT_EQ(m_store.take(reboot), std::nullopt);
}

TEST_F(FaultStoreTest, ClearedFunctionFailsNoMore)
{
    m_store.set(reboot, 1, 5);
    m_store.clear(reboot);

    EXPECT_EQ(m_store.take(reboot), std::nullopt);
    EXPECT_TRUE(m_store.list().empty());
}

TEST_F(FaultStoreTest, OtherUsersOfTheNodeSeeIt)
{
    FaultStore other(host::PerNode<host::RunDirectory>::get());
    m_store.set(reboot, 4, 1);

    EXPECT_EQ(other.take(reboot), 4);
    EXPECT_EQ(m_store.take(reboot), std::nullopt);
}

TEST_F(FaultStoreTest, CallsOfAllThreadsTogetherAreCountedExactly)
{
    constexpr std::uint32_t times = 1000;
    m_store.set(reboot, 1, times);
    std::atomic<std::uint32_t> failed{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (std::uint32_t call = 0; call < times; ++call) {
                failed += m_store.take(reboot) ? 1U : 0U;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(failed.load(), times);
    EXPECT_EQ(m_store.list().at(0).given, times);
}

} // namespace
} // namespace dorn::board
