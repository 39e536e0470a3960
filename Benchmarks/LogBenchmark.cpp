// SPDX-License-Identifier: MIT
/// @file LogBenchmark.cpp
/// What a log line costs, next to spdlog's own loggers with the same fields.
#include "AaConfigRad.h"
#include "AaSysLog.h"
#include "TestNode.hpp"
#include "log/LogName.hpp"

#include <atomic>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::uint32_t feature = 0x20013;

/// Time, severity, process name and id, thread, feature, text; what does not change is not looked up either.
std::string samePattern()
{
    return "%Y-%m-%dT%H:%M:%S.%fZ %l Bench[" + std::to_string(getpid()) + "] %t CLKS %v";
}

/// A node whose lines go where @p log says, in place of "PATH" into a file of the node.
class LogNode {
public:
    explicit LogNode(std::string log)
    {
        if (const std::size_t place = log.find("PATH"); place != std::string::npos) {
            log.replace(place, 4, m_node.boardRoot() + "/lines.log");
        }
        setenv("DORN_LOG", log.c_str(), 1);
        dorn::host::nameLog("Bench");
        AaConfigRadRegisterDomain(feature >> 16U, "HWA", [] {
            AaConfigRadSetMaxTagCount(feature >> 16U, feature + 1);
            AaConfigRadSetDefault(feature, "CLKS", 0);
        });
    }
    std::string file(const std::string& name) const { return m_node.boardRoot() + "/" + name; }

private:
    dorn::testkit::TestNode m_node;
};

void lineThatIsOff(benchmark::State& state)
{
    const LogNode node("file");
    int value = 0;
    for (auto _ : state) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, feature, "link %d of %s is up, delay %u ns", ++value, "cpri", 3U);
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(lineThatIsOff);

void lineWithoutFeatureThatIsOff(benchmark::State& state)
{
    const LogNode node("file");
    int value = 0;
    for (auto _ : state) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Debug, "link %d of %s is up, delay %u ns", ++value, "cpri", 3U);
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(lineWithoutFeatureThatIsOff);

void peerAtomicLoadAndBranch(benchmark::State& state)
{
    std::atomic<int> level{3};
    benchmark::DoNotOptimize(&level);
    int value = 0;
    for (auto _ : state) {
        if (level.load(std::memory_order_relaxed) <= 1) {
            std::printf("link %d of %s is up, delay %u ns", ++value, "cpri", 3U);
        }
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(peerAtomicLoadAndBranch);

void printLines(benchmark::State& state, const char* log)
{
    static std::optional<LogNode> node;
    if (state.thread_index() == 0) {
        node.emplace(log);
    }
    int value = 0;
    for (auto _ : state) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "link %d of %s is up, delay %u ns", ++value, "cpri",
                       3U);
    }
    if (state.thread_index() == 0) {
        node.reset();
    }
}

void lineToRunDirectory(benchmark::State& state)
{
    printLines(state, "file");
}
BENCHMARK(lineToRunDirectory)->Threads(1)->Threads(2);

void spdlogLines(benchmark::State& state, spdlog::level::level_enum flushLevel)
{
    static std::optional<LogNode> node;
    static std::shared_ptr<spdlog::logger> logger;
    if (state.thread_index() == 0) {
        node.emplace("none");
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(node->file("spdlog.log"));
        logger = std::make_shared<spdlog::logger>("Bench", std::move(sink));
        logger->set_formatter(
            std::make_unique<spdlog::pattern_formatter>(samePattern(), spdlog::pattern_time_type::utc));
        logger->flush_on(flushLevel);
    }
    int value = 0;
    for (auto _ : state) {
        logger->warn("link {} of {} is up, delay {} ns", ++value, "cpri", 3U);
    }
    if (state.thread_index() == 0) {
        logger.reset();
        node.reset();
    }
}

void peerSpdlogBasicFileSink(benchmark::State& state)
{
    spdlogLines(state, spdlog::level::off);
}
BENCHMARK(peerSpdlogBasicFileSink)->Threads(1)->Threads(2);

void lineToFile(benchmark::State& state)
{
    printLines(state, "file:PATH");
}
BENCHMARK(lineToFile);

void peerSpdlogFlushingEveryLine(benchmark::State& state)
{
    spdlogLines(state, spdlog::level::trace);
}
BENCHMARK(peerSpdlogFlushingEveryLine);

} // namespace

BENCHMARK_MAIN();
