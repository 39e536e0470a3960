// SPDX-License-Identifier: MIT
// Checking an image, next to nothing but zlib's crc32.
#include "binary.h"
#include "firmware/Image.hpp"
#include "port/Descriptor.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>
#include <zlib.h>

namespace dorn::benchmarks {
namespace {

void finish(benchmark::State& state, bool isRight)
{
    if (!isRight) {
        state.SkipWithError("wrong result");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(payloadLength));
}

void validate(benchmark::State& state)
{
    bool isRight = true;
    for (auto _ : state) {
        isRight = binary_validate(imagePath, hwSwId) == BINARY_OK && isRight;
    }
    finish(state, isRight);
}
BENCHMARK(validate)->Name("firmware/validate/dorn")->UseRealTime();

void calculate(benchmark::State& state)
{
    bool isRight = true;
    for (auto _ : state) {
        std::uint32_t crc = 0;
        calculate_crc(imagePath, payloadLength, &crc);
        isRight = crc == payloadCrc() && isRight;
    }
    finish(state, isRight);
}
BENCHMARK(calculate)->Name("firmware/crc/dorn")->UseRealTime();

/// The same bytes of the same file.
void zlibOverReads(benchmark::State& state)
{
    constexpr std::size_t blockSize = 64U << 10;
    bool isRight = true;
    for (auto _ : state) {
        const host::Descriptor file(open(imagePlace().c_str(), O_RDONLY | O_CLOEXEC));
        std::vector<Bytef> block(blockSize);
        uLong crc = crc32(0, nullptr, 0);
        for (std::size_t left = payloadLength; left != 0;) {
            const ssize_t count = read(file.get(), block.data(), std::min(left, blockSize));
            if (count <= 0) {
                break;
            }
            crc = crc32(crc, block.data(), static_cast<uInt>(count));
            left -= static_cast<std::size_t>(count);
        }
        isRight = crc == payloadCrc() && isRight;
    }
    finish(state, isRight);
}
BENCHMARK(zlibOverReads)->Name("firmware/crc/zlibOverReads")->UseRealTime();

/// The same bytes without a file.
void zlibInMemory(benchmark::State& state)
{
    bool isRight = true;
    for (auto _ : state) {
        const uLong crc = crc32(crc32(0, nullptr, 0), reinterpret_cast<const Bytef*>(payload().data()), payloadLength);
        isRight = crc == payloadCrc() && isRight;
    }
    finish(state, isRight);
}
BENCHMARK(zlibInMemory)->Name("firmware/crc/zlibInMemory")->UseRealTime();

/// A value of /proc/self/status in KiB.
long statusKib(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == key + ":") {
            long value = 0;
            status >> value;
            return value;
        }
    }
    return -1;
}

/// What a check needs beyond what the process has anyway.
void memoryOfValidation(benchmark::State& state)
{
    bool isRight = true;
    long most = 0;
    for (auto _ : state) {
        std::ofstream("/proc/self/clear_refs") << "5"; // forgets the peak
        const long before = statusKib("VmRSS");
        isRight = binary_validate(imagePath, hwSwId) == BINARY_OK && isRight;
        most = std::max(most, statusKib("VmHWM") - before);
    }
    state.counters["peak_kib"] = static_cast<double>(most);
    finish(state, isRight);
}
BENCHMARK(memoryOfValidation)->Name("firmware/memory/dorn")->Iterations(3)->UseRealTime();

} // namespace
} // namespace dorn::benchmarks
