// SPDX-License-Identifier: MIT
#include "OutOfMemory.hpp"

#include <cstdlib>
#include <new>

bool dorn::test::memoryIsOut = false;
constinit std::atomic<long> dorn::test::blocksBeforeFailure{-1};
constinit std::atomic<std::size_t> dorn::test::blocksTaken{0};
constinit std::atomic<std::size_t> dorn::test::blocksGivenBack{0};
constinit std::atomic<std::size_t> dorn::test::memoryTaken{0};

namespace {

bool mayTake()
{
    if (dorn::test::memoryIsOut) {
        return false;
    }
    return dorn::test::blocksBeforeFailure < 0 || dorn::test::blocksBeforeFailure.fetch_sub(1) != 0;
}

void giveBack(void* block)
{
    if (block) {
        dorn::test::blocksGivenBack.fetch_add(1, std::memory_order_relaxed);
    }
    std::free(block);
}

} // namespace

void* operator new(std::size_t size)
{
    void* const block = mayTake() ? std::malloc(size) : nullptr;
    if (!block) {
        throw std::bad_alloc();
    }
    dorn::test::blocksTaken.fetch_add(1, std::memory_order_relaxed);
    dorn::test::memoryTaken.fetch_add(size, std::memory_order_relaxed);
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* block) noexcept
{
    giveBack(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    giveBack(block);
}
