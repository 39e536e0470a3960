// SPDX-License-Identifier: MIT
#include "raml/FreshProcess.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace dorn::benchmarks {
namespace {

[[noreturn]] void throwErrno(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

double peakKibSoFar()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss);
}

Effort effortOf(const std::function<void()>& work)
{
    const double peakBefore = peakKibSoFar();
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    return {time.count(), peakKibSoFar() - peakBefore};
}

} // namespace

Effort inFreshProcess(const std::function<void()>& work)
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throwErrno("pipe");
    }
    malloc_trim(0); // or the child would have what this process has used and freed
    const pid_t child = fork();
    if (child < 0) {
        throwErrno("fork");
    }
    if (child == 0) {
        const Effort effort = effortOf(work);
        _exit(write(ends[1], &effort, sizeof effort) == sizeof effort ? 0 : 1);
    }
    close(ends[1]);
    Effort effort{};
    const ssize_t count = read(ends[0], &effort, sizeof effort);
    close(ends[0]);
    waitpid(child, nullptr, 0);
    if (count != sizeof effort) {
        throw std::system_error(ECHILD, std::generic_category(), "the work has failed");
    }
    return effort;
}

void measureInFreshProcesses(benchmark::State& state, std::size_t items, const std::function<void()>& work)
{
    double peakKib = 0;
    for (auto _ : state) {
        const Effort effort = inFreshProcess(work);
        state.SetIterationTime(effort.seconds);
        peakKib = std::max(peakKib, effort.peakKib);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items));
    state.counters["peak_kib"] = peakKib;
}

} // namespace dorn::benchmarks
