// SPDX-License-Identifier: MIT
#include "AaSem.h"

#include "Sanitizers.hpp"

#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

DORN_NO_MUTEX_REPORTS(); // for gives that are refused

namespace dorn::host::test {
namespace {

class ReMutexTest : public ::testing::Test {
protected:
    ~ReMutexTest() override { AaSemReMutexDestroy(&m_mutex); }

    AaSemReMutex* m_mutex = AaSemReMutexCreate();
};

TEST_F(ReMutexTest, HolderMayTakeItAgain)
{
    EXPECT_EQ(AaSemReMutexTake(m_mutex), 0);
    EXPECT_EQ(AaSemReMutexTake(m_mutex), 0);
    EXPECT_EQ(AaSemReMutexGive(m_mutex), 0);
    EXPECT_EQ(AaSemReMutexGive(m_mutex), 0);
}

TEST_F(ReMutexTest, GiveWithoutTakeIsRefused)
{
    EXPECT_EQ(AaSemReMutexGive(m_mutex), 1);
    AaSemReMutexTake(m_mutex);
    AaSemReMutexGive(m_mutex);
    EXPECT_EQ(AaSemReMutexGive(m_mutex), 1);
}

TEST_F(ReMutexTest, OtherThreadMayNotGiveIt)
{
    AaSemReMutexTake(m_mutex);
    std::thread other([this] { EXPECT_EQ(AaSemReMutexGive(m_mutex), 1); });
    other.join();

    EXPECT_EQ(AaSemReMutexGive(m_mutex), 0);
}

TEST_F(ReMutexTest, OtherThreadGetsItAfterTheLastGive)
{
    int value = 0;
    AaSemReMutexTake(m_mutex);
    AaSemReMutexTake(m_mutex);
    std::thread other([&] {
        AaSemReMutexTake(m_mutex);
        EXPECT_EQ(value, 2);
        AaSemReMutexGive(m_mutex);
    });

    value = 1;
    AaSemReMutexGive(m_mutex);
    value = 2;
    AaSemReMutexGive(m_mutex);
    other.join();
}

TEST_F(ReMutexTest, ThreadsExcludeEachOther)
{
    int value = 0;
    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count) {
        threads.emplace_back([&] {
            for (int index = 0; index < 10000; ++index) {
                AaSemReMutexTake(m_mutex);
                ++value;
                AaSemReMutexGive(m_mutex);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(value, 40000);
}

TEST_F(ReMutexTest, NullIsPassedOver)
{
    AaSemReMutex* null = nullptr;

    AaSemReMutexDestroy(nullptr);
    AaSemReMutexDestroy(&null);

    EXPECT_EQ(AaSemReMutexTake(nullptr), 1);
    EXPECT_EQ(AaSemReMutexGive(nullptr), 1);
}

TEST_F(ReMutexTest, DestroySetsTheHandleToNull)
{
    AaSemReMutexDestroy(&m_mutex);

    EXPECT_EQ(m_mutex, nullptr);
}

} // namespace
} // namespace dorn::host::test
