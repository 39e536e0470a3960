// SPDX-License-Identifier: MIT
#include "NoMemory.hpp"

#include <cstdlib>
#include <new>

namespace {

thread_local bool hasNoMemory = false;

} // namespace

void* operator new(std::size_t size)
{
    void* const block = hasNoMemory ? nullptr : std::malloc(size > 0 ? size : 1);
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return hasNoMemory ? nullptr : std::malloc(size > 0 ? size : 1);
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

namespace dorn::gateway::test {

NoMemory::NoMemory()
{
    hasNoMemory = true;
}

NoMemory::~NoMemory()
{
    hasNoMemory = false;
}

} // namespace dorn::gateway::test
