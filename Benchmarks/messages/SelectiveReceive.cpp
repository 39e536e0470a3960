// SPDX-License-Identifier: MIT
/// @file SelectiveReceive.cpp
/// Registers what it costs to take a message that does not stand at the front.
#include "messages/EuEnd.hpp"

#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <stdexcept>

namespace {

using namespace dorn::benchmarks;

constexpr TAaSysComMsgId otherId = 0x5201;
constexpr TAaSysComMsgId wantedId = 0x5202;
constexpr std::array<std::uint16_t, 2> wantedOnly{1, wantedId};
constexpr int others = 1000;

/// An EU that sends to itself.
class Self {
public:
    Self() : m_cpid(AaSysComUserRegister(0, AaProEuCurrent())) {}
    ~Self()
    {
        takeAll();
        AaSysComUserDeregister(m_cpid);
    }
    Self(const Self&) = delete;
    Self& operator=(const Self&) = delete;

    void send(TAaSysComMsgId id, int count = 1)
    {
        for (; count > 0; --count) {
            void* message = AaSysComMsgCreate(id, 64, AaSysComSicadGet(m_cpid, AaSysComGetOwnNid()));
            AaSysComMsgSend(&message);
        }
    }
    static void takeWanted()
    {
        void* message = AaSysComMsgReceiveSelective(AA_NO_WAIT, wantedOnly.data());
        if (!message) {
            throw std::runtime_error("the wanted message is not there");
        }
        AaSysComMsgDestroy(&message);
    }
    static void takeAll()
    {
        while (void* message = AaSysComMsgReceive(AA_NO_WAIT)) {
            AaSysComMsgDestroy(&message);
        }
    }

private:
    TAaSysComCpid m_cpid;
};

/// 1,001 messages have come since the last receive; the wanted one is the first or the last of them.
void takeFromFreshQueue(benchmark::State& state, bool isBehind)
{
    Self self;
    for (auto _ : state) {
        self.send(isBehind ? otherId : wantedId, isBehind ? others : 1);
        self.send(isBehind ? wantedId : otherId, isBehind ? 1 : others);
        const auto begin = std::chrono::steady_clock::now();
        Self::takeWanted();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(taken.count());
        Self::takeAll();
    }
}
BENCHMARK_CAPTURE(takeFromFreshQueue, front, false)->Name("selective/fresh/front")->UseManualTime();
BENCHMARK_CAPTURE(takeFromFreshQueue, behind, true)->Name("selective/fresh/behind1000")->UseManualTime();

/// Others have been passed over before, and stay; the wanted message is sent and taken.
void takeArriving(benchmark::State& state, int passedOver)
{
    Self self;
    self.send(otherId, passedOver);
    for (auto _ : state) {
        self.send(wantedId);
        Self::takeWanted();
    }
}
BENCHMARK_CAPTURE(takeArriving, front, 0)->Name("selective/arriving/front");
BENCHMARK_CAPTURE(takeArriving, behind, others)->Name("selective/arriving/behind1000");

} // namespace
