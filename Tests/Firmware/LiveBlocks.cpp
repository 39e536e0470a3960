// SPDX-License-Identifier: MIT
#include "LiveBlocks.hpp"

#include <atomic>

namespace {

constinit std::atomic<std::ptrdiff_t> count{0};

} // namespace

extern "C" {
void* __real_malloc(std::size_t size);                                        // NOLINT: the linker's name
void __real_free(void* block);                                                // NOLINT: the linker's name
void* __wrap_malloc(std::size_t size) __attribute__((alloc_size(1), malloc)); // NOLINT: the linker's name
void __wrap_free(void* block);                                                // NOLINT: the linker's name

void* __wrap_malloc(std::size_t size) // NOLINT: the linker's name
{
    void* const block = __real_malloc(size);
    if (block) {
        count.fetch_add(1);
    }
    return block;
}

void __wrap_free(void* block) // NOLINT: the linker's name
{
    if (block) {
        count.fetch_sub(1);
    }
    __real_free(block);
}
}

namespace dorn::test {

std::ptrdiff_t liveBlocks()
{
    return count.load();
}

} // namespace dorn::test
