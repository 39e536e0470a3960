// SPDX-License-Identifier: MIT
// Memory that changes hands, and byte order.
#include "AaCpu.h"
#include "AaMem.h"
#include "Check.hpp"
#include "Rules.hpp"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace dorn::conformance {
namespace {

bool isAligned(const void* block)
{
    return std::bit_cast<std::uintptr_t>(block) % alignof(std::max_align_t) == 0;
}

void expectUsable(void* block, std::size_t size, const std::string& what)
{
    expect(block != nullptr, what + " gave null");
    expect(isAligned(block), what + " gave a block that is not aligned for every type");
    std::memset(block, 0x5A, size);
}

void mallocIsUsable()
{
    for (const uint32_t size : {1U, 7U, 64U, 4096U, 1000000U}) {
        void* const block = AaMemMalloc(size);
        expectUsable(block, size, "AaMemMalloc(" + std::to_string(size) + ")");
        AaMemUnRef(block);
    }
}

void mallocDbgIsUsable()
{
    void* const block = AaMemMallocDbg(100, "file.cpp", 12);
    expectUsable(block, 100, "AaMemMallocDbg(100)");
    AaMemUnRefDbg(block, "file.cpp", 13);
    void* const other = AaMemMallocDbg(100, "file.cpp", 14);
    expectUsable(other, 100, "AaMemMallocDbg(100)");
    AaMemUnRef(other);
}

void refKeepsTheBlock()
{
    auto* const block = static_cast<char*>(AaMemMalloc(1000));
    expectUsable(block, 1000, "AaMemMalloc(1000)");
    expect(AaMemRef(block) == block, "AaMemRef() did not return the block");
    expect(AaMemRef(block) == block, "AaMemRef() did not return the block");
    AaMemUnRef(block);
    AaMemUnRefDbg(block, "file.cpp", 1);
    // Blocks of the same size would be given the memory if it were free.
    std::array<void*, 16> others{};
    for (void*& other : others) {
        other = AaMemMalloc(1000);
        expect(other != block, "a block that has a reference left was given out again");
        expectUsable(other, 1000, "AaMemMalloc(1000)");
        std::memset(other, 0, 1000);
    }
    for (int index = 0; index < 1000; ++index) {
        expectEqual(int{block[index]}, 0x5A, "a byte of a block that has a reference left");
    }
    for (void* const other : others) {
        AaMemUnRef(other);
    }
    AaMemUnRef(block);
}

std::size_t residentBytes()
{
    unsigned long total = 0;
    unsigned long resident = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    const bool isRead = file && std::fscanf(file, "%lu %lu", &total, &resident) == 2; // NOLINT(cert-err34-c)
    if (file) {
        std::fclose(file);
    }
    if (!isRead) {
        skip("/proc/self/statm does not tell how much memory the process has");
    }
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool keepsFreedMemory = true;
#else
constexpr bool keepsFreedMemory = false;
#endif

void lastReferenceFrees()
{
    if (keepsFreedMemory) {
        skip("sanitizers keep memory that has been freed");
    }
    constexpr uint32_t blockSize = 1024 * 1024;
    constexpr int rounds = 128;
    const std::size_t before = residentBytes();
    for (int round = 0; round < rounds; ++round) {
        void* const block = AaMemMalloc(blockSize);
        expectUsable(block, blockSize, "AaMemMalloc() of a mebibyte, while one at a time is in use,");
        AaMemRef(block);
        AaMemUnRef(block);
        round % 2 == 0 ? AaMemUnRef(block) : AaMemUnRefDbg(block, "file.cpp", 1);
    }
    const std::size_t grown = residentBytes() - std::min(before, residentBytes());
    expect(grown < std::size_t{blockSize} * rounds / 4,
           "after 128 blocks of a mebibyte, one at a time, the process has " + std::to_string(grown / 1024) +
               " KiB more");
}

void nullIsPassedOver()
{
    AaMemUnRef(nullptr);
    AaMemUnRefDbg(nullptr, "file.cpp", 1);
    expect(AaMemRef(nullptr) == nullptr, "AaMemRef(null) did not return null");
}

void littleEndianWordIsConverted()
{
    constexpr std::array<unsigned char, 4> bytes{0x78, 0x56, 0x34, 0x12};
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data(), sizeof word);
    AaCpuBitSwapByteOrder32(&word);
    expectEqual(word, 0x12345678U, "the little-endian word 78 56 34 12");
}

void nullWordIsPassedOver()
{
    AaCpuBitSwapByteOrder32(nullptr);
}

constexpr std::array rules{
    Rule{"memory.malloc.is-usable", "AaMem.h", "AaMemMalloc AaMemUnRef",
         "AaMemMalloc() gives a block of the size, aligned for any type", mallocIsUsable},
    Rule{"memory.malloc-dbg.is-usable", "AaMem.h", "AaMemMallocDbg AaMemUnRefDbg",
         "AaMemMallocDbg() and AaMemUnRefDbg() do what the functions without file and line do", mallocDbgIsUsable},
    Rule{"memory.reference-keeps-the-block", "AaMem.h", "AaMemMalloc AaMemRef AaMemUnRef AaMemUnRefDbg",
         "AaMemRef() returns the block and adds a reference: it stays until each has been given up", refKeepsTheBlock},
    Rule{"memory.last-reference-frees", "AaMem.h", "AaMemMalloc AaMemRef AaMemUnRef AaMemUnRefDbg",
         "Giving up the last reference frees the block", lastReferenceFrees},
    Rule{"memory.null-is-passed-over", "AaMem.h", "AaMemRef AaMemUnRef AaMemUnRefDbg", "Null is passed over",
         nullIsPassedOver},
    Rule{"cpu.little-endian-word-is-converted", "AaCpu.h", "AaCpuBitSwapByteOrder32",
         "AaCpuBitSwapByteOrder32() converts a little-endian word to the processor's byte order, in place",
         littleEndianWordIsConverted},
    Rule{"cpu.null-is-passed-over", "AaCpu.h", "AaCpuBitSwapByteOrder32", "Null is passed over", nullWordIsPassedOver},
};

} // namespace

Rules memoryRules()
{
    return rules;
}

} // namespace dorn::conformance
