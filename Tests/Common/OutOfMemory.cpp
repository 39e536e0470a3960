// SPDX-License-Identifier: MIT
#include "OutOfMemory.hpp"

#include <cstdlib>
#include <new>

bool dorn::test::memoryIsOut = false;
constinit std::atomic<std::size_t> dorn::test::memoryTaken{0};

void* operator new(std::size_t size)
{
    void* const block = dorn::test::memoryIsOut ? nullptr : std::malloc(size);
    if (!block) {
        throw std::bad_alloc();
    }
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
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}
