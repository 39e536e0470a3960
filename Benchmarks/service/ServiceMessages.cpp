// SPDX-License-Identifier: MIT
/// @file ServiceMessages.cpp
/// Registers a whole service that handles messages, and a bare EU that does the same without one.
#include "messages/BetweenThreads.hpp"
#include "messages/EuEnd.hpp"
#include "service/BenchS.hpp"

#include <benchmark/benchmark.h>
#include <thread>

namespace {

using namespace dorn::benchmarks;

constexpr std::size_t payloadSize = 64;

/// An end in the thread that makes it and a service in another as its partner.
class ServicePair {
public:
    ServicePair() : m_end(payloadSize), m_service(static_cast<TAaSysComSicad>(std::stoul(m_end.address())))
    {
        m_thread = std::thread([this] {
            char name[] = "DornBenchExe";
            char* arguments[] = {name, nullptr};
            m_service.Startup(1, arguments);
        });
        m_end.receive();
    }
    ~ServicePair()
    {
        m_end.send({Ask::Stop});
        m_thread.join();
    }
    ServicePair(const ServicePair&) = delete;
    ServicePair& operator=(const ServicePair&) = delete;

    EuEnd& end() { return m_end; }

private:
    EuEnd m_end;
    BenchS m_service;
    std::thread m_thread;
};

void measureRateOnly(benchmark::State& state, EuEnd& end)
{
    for (auto _ : state) {
        sendBatch(end);
    }
    state.SetItemsProcessed(state.iterations() * batchSize);
}

void roundTripWithService(benchmark::State& state)
{
    ServicePair pair;
    measureRoundTrips(state, pair.end());
}
BENCHMARK(roundTripWithService)->Name("service/roundTrip/service")->UseRealTime();

void roundTripWithBareEu(benchmark::State& state)
{
    ThreadPair<EuEnd> pair(payloadSize);
    measureRoundTrips(state, pair.end());
}
BENCHMARK(roundTripWithBareEu)->Name("service/roundTrip/bareEu")->UseRealTime();

void rateWithService(benchmark::State& state)
{
    ServicePair pair;
    measureRateOnly(state, pair.end());
}
BENCHMARK(rateWithService)->Name("service/oneWay/service")->UseRealTime();

void rateWithBareEu(benchmark::State& state)
{
    ThreadPair<EuEnd> pair(payloadSize);
    measureRateOnly(state, pair.end());
}
BENCHMARK(rateWithBareEu)->Name("service/oneWay/bareEu")->UseRealTime();

} // namespace
