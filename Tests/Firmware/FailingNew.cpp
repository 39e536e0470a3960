// SPDX-License-Identifier: MIT
#include "FailingNew.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

constinit std::atomic<std::size_t> callsLeft{0};    ///< up to the one that fails; 0: none does
constinit std::atomic<std::size_t> leastFailing{0}; ///< bytes; 0: none fail for their size

bool isToFail(std::size_t size)
{
    if (const std::size_t least = leastFailing.load(); least != 0 && size >= least) {
        return true;
    }
    std::size_t left = callsLeft.load();
    while (left != 0 && !callsLeft.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1;
}

} // namespace

void* operator new(std::size_t size)
{
    void* const block = isToFail(size) ? nullptr : std::malloc(size);
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return isToFail(size) ? nullptr : std::malloc(size);
}

// The library's own call the ones above; those of a sanitizer do not.
void* operator new[](std::size_t size)
{
    return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept
{
    return operator new(size, tag);
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept
{
    operator delete(block);
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

namespace dorn::test {

FailingNew::FailingNew(std::size_t nth)
{
    callsLeft.store(nth);
}

FailingNew::~FailingNew()
{
    callsLeft.store(0);
}

bool FailingNew::hasFailed() const
{
    return callsLeft.load() == 0;
}

FailingLargeNew::FailingLargeNew(std::size_t size)
{
    leastFailing.store(size);
}

FailingLargeNew::~FailingLargeNew()
{
    leastFailing.store(0);
}

} // namespace dorn::test
