// SPDX-License-Identifier: MIT
#include "AllocationCount.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<unsigned> mallocs{0};
std::atomic<unsigned> news{0};

} // namespace

extern "C" {
void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size)
{
    mallocs.fetch_add(1);
    return __real_malloc(size);
}
}

void* operator new(std::size_t size)
{
    news.fetch_add(1);
    if (void* const block = __real_malloc(size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

namespace dorn::host::test {

unsigned mallocCount()
{
    return mallocs.load();
}

unsigned newCount()
{
    return news.load();
}

} // namespace dorn::host::test
