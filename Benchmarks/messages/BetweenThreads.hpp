// SPDX-License-Identifier: MIT
/// @file BetweenThreads.hpp
/// Messages between two threads of one process.
#pragma once

#include "messages/Traffic.hpp"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <string>
#include <thread>

namespace dorn::benchmarks {

/// An end in the thread that makes it and a partner in a thread of its own. `End(size)` makes an end that waits for its
/// partner, and `partner()`, called in the other thread, that one.
template <class End>
class ThreadPair {
public:
    explicit ThreadPair(std::size_t size) : m_end(size)
    {
        m_partner = std::thread([this] {
            End other = m_end.partner();
            serve(other);
        });
        m_end.receive();
    }
    ~ThreadPair()
    {
        m_end.send({Ask::Stop});
        m_partner.join();
    }
    ThreadPair(const ThreadPair&) = delete;
    ThreadPair& operator=(const ThreadPair&) = delete;

    End& end() { return m_end; }

private:
    End m_end;
    std::thread m_partner;
};

constexpr std::size_t payloadBetweenThreads = 64;

/// Measures round trips as "inProcess/roundTrip/<name>".
template <class End>
bool registerRoundTripBetweenThreads(const std::string& name)
{
    benchmark::RegisterBenchmark(("inProcess/roundTrip/" + name).c_str(), [](benchmark::State& state) {
        ThreadPair<End> pair(payloadBetweenThreads);
        measureRoundTrips(state, pair.end());
    })->UseRealTime();
    return true;
}

/// Measures the rate of messages in one direction as "inProcess/oneWay/<name>".
template <class End>
bool registerRateBetweenThreads(const std::string& name)
{
    benchmark::RegisterBenchmark(("inProcess/oneWay/" + name).c_str(), [](benchmark::State& state) {
        ThreadPair<End> pair(payloadBetweenThreads);
        measureRate(state, pair.end(), Partner::Thread);
    })->UseRealTime();
    return true;
}

} // namespace dorn::benchmarks
