// SPDX-License-Identifier: MIT
// Copying the payload out of an image, next to plain copies of as many bytes.
#include "binary.h"
#include "firmware/Image.hpp"
#include "port/Descriptor.hpp"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace dorn::benchmarks {
namespace {

void finish(benchmark::State& state, bool isRight)
{
    std::error_code ignored;
    if (!isRight || std::filesystem::file_size(copyPlace(), ignored) < payloadLength) {
        state.SkipWithError("nothing was copied");
    }
    std::filesystem::remove(copyPlace(), ignored);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(payloadLength));
}

void copy(benchmark::State& state)
{
    bool isRight = true;
    for (auto _ : state) {
        isRight = binary_copy_without_trailer(imagePath, copyPath) == BINARY_COPY_OK && isRight;
    }
    finish(state, isRight);
}
BENCHMARK(copy)->Name("firmware/copy/dorn")->UseRealTime();

/// Nothing but system calls, with pieces of the same size.
void loop(benchmark::State& state)
{
    bool isRight = true;
    for (auto _ : state) {
        const host::Descriptor from(open(imagePlace().c_str(), O_RDONLY | O_CLOEXEC));
        const host::Descriptor to(open(copyPlace().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        std::array<char, 1024> buffer{};
        for (std::size_t left = payloadLength; left != 0 && isRight;) {
            const ssize_t count = read(from.get(), buffer.data(), std::min(left, buffer.size()));
            isRight = count > 0 && write(to.get(), buffer.data(), static_cast<std::size_t>(count)) == count;
            left -= static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        }
    }
    finish(state, isRight);
}
BENCHMARK(loop)->Name("firmware/copy/loop")->UseRealTime();

/// The program, with its start and its large pieces.
void cp(benchmark::State& state)
{
    const std::string command = "cp '" + imagePlace() + "' '" + copyPlace() + "'";
    bool isRight = true;
    for (auto _ : state) {
        isRight = std::system(command.c_str()) == 0 && isRight; // NOLINT: what a shell would do
    }
    finish(state, isRight);
}
BENCHMARK(cp)->Name("firmware/copy/cp")->UseRealTime();

} // namespace
} // namespace dorn::benchmarks
