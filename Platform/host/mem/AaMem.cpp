// SPDX-License-Identifier: MIT
#include "AaMem.h"

#include "AaError.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

constexpr std::uint32_t liveMark = 0x4D454D21;
constexpr std::uint32_t freedMark = 0x66726565;

/// Stands in front of every block; as large as the strictest alignment, so that the block behind it has it too.
struct alignas(std::max_align_t) BlockHeader {
    std::atomic<std::uint32_t> references;
    std::uint32_t mark;
};

/// @return the header of @p block; a block that is none, or none any more, is an error in the program.
BlockHeader& headerOf(void* block)
{
    auto& header = *(static_cast<BlockHeader*>(block) - 1);
    AaErrorAssertion(header.mark == liveMark);
    return header;
}

} // namespace

void* AaMemMalloc(uint32_t size)
{
    const std::size_t whole = sizeof(BlockHeader) + std::size_t{size};
    void* const memory = whole > size ? std::malloc(whole) : nullptr; // on 32 bits the sum may not fit
    if (!memory) {
        return nullptr;
    }
    return new (memory) BlockHeader{1, liveMark} + 1;
}

void* AaMemMallocDbg(uint32_t size, const char* /*file*/, uint32_t /*line*/)
{
    return AaMemMalloc(size);
}

void* AaMemRef(void* block)
{
    if (block) {
        headerOf(block).references.fetch_add(1, std::memory_order_relaxed);
    }
    return block;
}

void AaMemUnRef(void* block)
{
    if (!block) {
        return;
    }
    BlockHeader& header = headerOf(block);
    if (header.references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        header.mark = freedMark;
        std::free(&header);
    }
}

void AaMemUnRefDbg(void* block, const char* /*file*/, uint32_t /*line*/)
{
    AaMemUnRef(block);
}
