// SPDX-License-Identifier: MIT
/// @file BetweenProcesses.hpp
/// Messages between two processes: this one and a partner, which is the same program started anew, so that it takes
/// over nothing of what has been opened here.
#pragma once

#include "messages/Traffic.hpp"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <string>
#include <sys/types.h>

namespace dorn::benchmarks {

/// How a partner process serves one kind of end. Made at namespace level, so that runAsPartner() finds it.
class PartnerKind {
public:
    using Serve = void (*)(const std::string& address, std::size_t size);
    PartnerKind(const char* name, Serve serve);
};

/// Serves as a partner process if the command line says so.
/// @return whether it did; the program is to end then.
bool runAsPartner(int argc, char** argv);

/// A running partner process.
class PartnerProcess {
public:
    /// @param kind name of a PartnerKind
    /// @throws std::system_error when it cannot be started.
    PartnerProcess(const std::string& kind, const std::string& address, std::size_t size);
    /// Waits until it has ended.
    ~PartnerProcess();
    void signal(int number) const;
    PartnerProcess(const PartnerProcess&) = delete;
    PartnerProcess& operator=(const PartnerProcess&) = delete;

private:
    pid_t m_process = -1;
};

/// An end here and a partner in another process. `End(size)` makes an end that waits for its partner, and
/// `End(address, size)` with its address(), in the other process, that one.
template <class End>
class ProcessPair {
public:
    ProcessPair(const std::string& kind, std::size_t size) : m_end(size), m_partner(kind, m_end.address(), size)
    {
        m_end.receive();
    }
    ~ProcessPair() { m_end.send({Ask::Stop}); }
    ProcessPair(const ProcessPair&) = delete;
    ProcessPair& operator=(const ProcessPair&) = delete;

    End& end() { return m_end; }

private:
    End m_end;
    PartnerProcess m_partner;
};

/// Measures "processes/roundTrip/<name>" and "processes/oneWay/<name>". @p name lives as long as the program.
template <class End>
bool registerBetweenProcesses(const char* name)
{
    static const PartnerKind kind(name, [](const std::string& address, std::size_t size) {
        End end(address, size);
        serve(end);
    });
    const auto roundTrip = [name](benchmark::State& state) {
        ProcessPair<End> pair(name, static_cast<std::size_t>(state.range(0)));
        measureRoundTrips(state, pair.end());
    };
    const auto oneWay = [name](benchmark::State& state) {
        ProcessPair<End> pair(name, static_cast<std::size_t>(state.range(0)));
        measureRate(state, pair.end(), Partner::Process);
    };
    const std::string suffix = std::string("/") + name;
    benchmark::RegisterBenchmark(("processes/roundTrip" + suffix).c_str(), roundTrip)
        ->Arg(64)
        ->Arg(4096)
        ->UseRealTime();
    benchmark::RegisterBenchmark(("processes/oneWay" + suffix).c_str(), oneWay)->Arg(64)->Arg(4096)->UseRealTime();
    return true;
}

} // namespace dorn::benchmarks
