// SPDX-License-Identifier: MIT
#include "OutOfMemory.hpp"

#include <cstdlib>
#include <new>

bool dorn::test::memoryIsOut = false;

void* operator new(std::size_t size)
{
    void* const block = dorn::test::memoryIsOut ? nullptr : std::malloc(size);
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}
