// SPDX-License-Identifier: MIT
// First calls from several threads at once.
#include "AutodetTest.hpp"

#include <array>
#include <barrier>
#include <thread>

namespace dorn::test {
namespace {

class ThreadsTest : public AutodetTest {
protected:
    static constexpr int threads = 8;

    /// Has every thread call @p work at the same moment.
    template <typename Work>
    static void together(Work work)
    {
        std::barrier start(threads);
        std::array<std::jthread, threads> all;
        for (int index = 0; index < threads; ++index) {
            all[static_cast<std::size_t>(index)] = std::jthread([&, index] {
                start.arrive_and_wait();
                work(index);
            });
        }
    }
};

TEST_F(ThreadsTest, AllGetTheSameAnswers)
{
    m_drivers.module = {"VIGC", "900201A.101", "M1200000002"};
    m_drivers.capability.words[0] = 0x10000000;
    m_platform.boards[0x0F010000] = 0x13;
    m_platform.cpus[0x0F010000] = 0x31;

    for (int round = 0; round < 20; ++round) {
        std::construct_at(&vel::hwapi::adet::identityCaches());
        together([](int) {
            EXPECT_EQ(ask(ApiGetLocalUnitId, 6), inBuffer("TARN", 6));
            EXPECT_EQ(ApiGetLocalUnitHwSwId(), 0xA00123U);
            EXPECT_EQ(ApiGetLocalUnitHwId(), 0xA00U);
            EXPECT_EQ(ApiGetLocalUnitType(), EUnitType_Tarn);
            EXPECT_EQ(ApiGetLocalUnitVersion(), EUnitVersion_Tarn);
            EXPECT_EQ(ask(ApiGetLocalUnitProductionCode, 13), inBuffer("900001A.101", 13));
            EXPECT_EQ(ask(ApiGetLocalUnitSerialNumber, 17), inBuffer("L1200000001", 17));
            EXPECT_EQ(ApiGetLocalTarnRatType(), ETarnRatType_TDLte);
            EXPECT_EQ(ask(ApiGetModuleId, 6), inBuffer("VIGC", 6));
            EXPECT_EQ(ApiGetModuleVersion(), EModuleVersion_Vigil_3);
            EXPECT_EQ(ask(ApiGetModuleProductionCode, 13), inBuffer("900201A.101", 13));
            EXPECT_EQ(ask(ApiGetModuleSerialNumber, 17), inBuffer("M1200000002", 17));
            EXPECT_EQ(ApiGetCurrentBoard(), 0x13);
            EXPECT_EQ(ApiGetCurrentCpu(), 0x31);
        });
    }
}

TEST_F(ThreadsTest, TextThatIsKeptIsWholeAndStays)
{
    for (int round = 0; round < 100; ++round) {
        vel::hwapi::adet::CachedText<17> cache;
        together([&cache](int index) {
            const std::string own(17, static_cast<char>('a' + index));
            cache.keep(own.data());
            const std::string_view kept = cache.get();
            EXPECT_TRUE(kept.empty() || kept == std::string(17, kept.front())) << kept;
        });
        const std::string first(cache.get());
        EXPECT_EQ(first.size(), 17U);
        cache.keep("another text that is later");
        EXPECT_EQ(cache.get(), first);
    }
}

TEST_F(ThreadsTest, UnknownValueDoesNotDisplaceAKnownOne)
{
    vel::hwapi::adet::CachedValue<int, 7> cache;
    EXPECT_EQ(cache.get(), 7);
    EXPECT_EQ(cache.getOr([&cache] {
        cache.keep(1); // another thread has been faster
        return 7;
    }),
              7);
    EXPECT_EQ(cache.get(), 1);
    EXPECT_EQ(cache.getOr([] { return 2; }), 1);
}

} // namespace
} // namespace dorn::test
