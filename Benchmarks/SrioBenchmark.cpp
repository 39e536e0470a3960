// SPDX-License-Identifier: MIT
/// @file SrioBenchmark.cpp
/// Loading a file into a RapidIO device's memory and verifying it, next to `cp` and `cmp` of the same file. The
/// device's memory is a file of the simulated board, in the same file system.
#include "RandomNumbers.hpp"
#include "RunOnNode.hpp"
#include "TestNode.hpp"
#include "rioDio.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr std::size_t fileSize = 64U << 20;
constexpr std::uint16_t device = 0x10;
constexpr std::uint64_t address = 0x800000000;
constexpr const char* targetFile = "/ram/dsp.bin";
constexpr const char* memoryFile = "/var/lib/dorn/board/rapidio-0-device-16-0x800000000.memory";

const dorn::testkit::TestNode* node = nullptr;

std::string source()
{
    return node->boardPath(targetFile);
}

std::string copyOfSource()
{
    return node->boardPath("/ram/copy");
}

/// @return whether the program ended with status 0.
bool run(std::string program, std::string first, std::string second)
{
    char* arguments[] = {program.data(), first.data(), second.data(), nullptr};
    pid_t pid = -1;
    int status = -1;
    return posix_spawnp(&pid, program.c_str(), nullptr, nullptr, arguments, environ) == 0 &&
           waitpid(pid, &status, 0) == pid && status == 0;
}

/// Measures @p work alone; @p prepare comes before each time.
template <class Prepare, class Work>
void measure(benchmark::State& state, const Prepare& prepare, const Work& work)
{
    for (auto _ : state) {
        prepare();
        const auto begin = std::chrono::steady_clock::now();
        const bool isDone = work();
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
        if (!isDone) {
            state.SkipWithError("failed");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(fileSize) * state.iterations());
}

void writeToDevice(benchmark::State& state)
{
    measure(
        state, [] { std::filesystem::remove(node->boardPath(memoryFile)); },
        [] { return writeBinaryFileToSrio(device, address, targetFile) == ERioWrite_Done; });
}
BENCHMARK(writeToDevice)->Name("srio/write/dorn")->UseManualTime()->Unit(benchmark::kMillisecond);

void copyWithCp(benchmark::State& state)
{
    measure(
        state, [] { std::filesystem::remove(copyOfSource()); }, [] { return run("cp", source(), copyOfSource()); });
}
BENCHMARK(copyWithCp)->Name("srio/write/cp")->UseManualTime()->Unit(benchmark::kMillisecond);

void verifyDevice(benchmark::State& state)
{
    if (writeBinaryFileToSrio(device, address, targetFile) != ERioWrite_Done) {
        state.SkipWithError("the device cannot be loaded");
        return;
    }
    measure(
        state, [] {}, [] { return validateSrioWrite(device, address, targetFile) == 0; });
}
BENCHMARK(verifyDevice)->Name("srio/verify/dorn")->UseManualTime()->Unit(benchmark::kMillisecond);

void compareWithCmp(benchmark::State& state)
{
    std::filesystem::copy_file(source(), copyOfSource(), std::filesystem::copy_options::overwrite_existing);
    measure(
        state, [] {}, [] { return run("cmp", source(), copyOfSource()); });
}
BENCHMARK(compareWithCmp)->Name("srio/verify/cmp")->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return dorn::benchmarks::runOnNode(argc, argv, {}, [](const dorn::testkit::TestNode& ownNode) {
        setenv("DORN_BOARD", DORN_TARN_SINGLE, 1);
        ownNode.writeBoardFile(targetFile, dorn::benchmarks::randomBytes(fileSize));
        node = &ownNode;
    });
}
