// SPDX-License-Identifier: MIT
#include "messages/AllocationCount.hpp"

#include <atomic>
#include <cstddef>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace dorn::benchmarks {
namespace {

constinit std::atomic<bool> isCounting{false};
constinit std::atomic<std::uint32_t> allocations{0};

void note()
{
    if (isCounting.load(std::memory_order_relaxed)) {
        allocations.fetch_add(1, std::memory_order_relaxed);
    }
}

} // namespace

void startCountingAllocations()
{
    allocations.store(0);
    isCounting.store(true);
}

std::uint32_t stopCountingAllocations()
{
    isCounting.store(false);
    return allocations.load();
}

} // namespace dorn::benchmarks

extern "C" {

void* malloc(std::size_t size)
{
    dorn::benchmarks::note();
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    dorn::benchmarks::note();
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    dorn::benchmarks::note();
    return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    dorn::benchmarks::note();
    return __libc_memalign(alignment, size);
}
}
