// SPDX-License-Identifier: MIT
#include "fault/RioFaultStore.hpp"

#include "BoardTest.hpp"
#include "node/PerNode.hpp"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace dorn::board {
namespace {

using std::chrono::milliseconds;

constexpr RioAddress dsp{0, 0x10};
constexpr RioAddress otherDsp{0, 0x11};
constexpr RioAddress otherPort{1, 0x10};

class RioFaultStoreTest : public testkit::NodeTest {
protected:
    RioFaultStore m_store{host::PerNode<host::RunDirectory>::get()};
};

TEST_F(RioFaultStoreTest, NothingGoesWrongUntold)
{
    EXPECT_FALSE(m_store.takeCorruption(dsp));
    EXPECT_EQ(m_store.delayOf(dsp), milliseconds(0));
    EXPECT_TRUE(m_store.list().empty());
}

TEST_F(RioFaultStoreTest, AsManyCopiesAreSpoiltAsWereTold)
{
    m_store.corrupt(dsp, 2);

    EXPECT_FALSE(m_store.takeCorruption(otherDsp));
    EXPECT_FALSE(m_store.takeCorruption(otherPort));
    EXPECT_TRUE(m_store.takeCorruption(dsp));
    EXPECT_TRUE(m_store.takeCorruption(dsp));
    EXPECT_FALSE(m_store.takeCorruption(dsp));

    const std::vector<RioFault> faults = m_store.list();
    ASSERT_EQ(faults.size(), 1U);
    EXPECT_EQ(faults[0].device, dsp);
    EXPECT_EQ(faults[0].corruptLeft, 0U);
    EXPECT_EQ(faults[0].corrupted, 2U);
}

TEST_F(RioFaultStoreTest, AlwaysHasNoEnd)
{
    m_store.corrupt(otherPort, RioFaultStore::always);
    for (int copy = 0; copy < 1000; ++copy) {
        ASSERT_TRUE(m_store.takeCorruption(otherPort));
    }
    EXPECT_EQ(m_store.list().at(0).device, otherPort);
    EXPECT_EQ(m_store.list().at(0).corruptLeft, RioFaultStore::always);
}

TEST_F(RioFaultStoreTest, DeviceMayBeSlowAndCorruptAtOnce)
{
    m_store.slow(dsp, milliseconds(250));
    m_store.corrupt(dsp, 1);

    EXPECT_EQ(m_store.delayOf(dsp), milliseconds(250));
    EXPECT_EQ(m_store.delayOf(otherDsp), milliseconds(0));
    EXPECT_TRUE(m_store.takeCorruption(dsp));
    ASSERT_EQ(m_store.list().size(), 1U);
    EXPECT_EQ(m_store.list()[0].delay, milliseconds(250));
}

TEST_F(RioFaultStoreTest, HealedDeviceWorksAndCanBeToldAgain)
{
    m_store.slow(dsp, milliseconds(250));
    m_store.corrupt(dsp, RioFaultStore::always);

    m_store.heal(dsp);
    m_store.heal(otherDsp);

    EXPECT_FALSE(m_store.takeCorruption(dsp));
    EXPECT_EQ(m_store.delayOf(dsp), milliseconds(0));
    EXPECT_TRUE(m_store.list().empty());
    m_store.corrupt(dsp, 1);
    EXPECT_EQ(m_store.list().at(0).corrupted, 0U);
    EXPECT_TRUE(m_store.takeCorruption(dsp));
}

TEST_F(RioFaultStoreTest, DevicesAreLimited)
{
    for (std::uint32_t device = 0; device < RioFaultStore::most; ++device) {
        m_store.corrupt({0, device}, 1);
    }

    const auto [code, text] = failureOf([this] { m_store.slow({0, 1000}, milliseconds(1)); });

    EXPECT_EQ(code, DDAL_ERROR_NO_RESOURCE);
    EXPECT_EQ(text, "only 64 RapidIO devices can be told what goes wrong with them");
    m_store.slow({0, 63}, milliseconds(1));
    EXPECT_EQ(m_store.delayOf({0, 63}), milliseconds(1));
}

TEST_F(RioFaultStoreTest, OtherProcessesAreTold)
{
    const RioFaultStore other(host::PerNode<host::RunDirectory>::get());
    m_store.slow(dsp, milliseconds(7));
    EXPECT_EQ(other.delayOf(dsp), milliseconds(7));
}

TEST_F(RioFaultStoreTest, ThreadsShareTheCopiesOut)
{
    m_store.corrupt(dsp, 1000);
    std::atomic<unsigned> spoilt{0};
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&] {
                for (int copy = 0; copy < 400; ++copy) {
                    spoilt += m_store.takeCorruption(dsp) ? 1 : 0;
                }
            });
        }
    }
    EXPECT_EQ(spoilt.load(), 1000U);
}

} // namespace
} // namespace dorn::board
