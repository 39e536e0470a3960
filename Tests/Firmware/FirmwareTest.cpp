// SPDX-License-Identifier: MIT
#include "FirmwareTest.hpp"

#include "../TestKit/OpenDescriptors.hpp"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>

namespace {

std::atomic<std::size_t> leastFailing{0};

} // namespace

extern "C" {
void* __real_malloc(std::size_t size);                                        // NOLINT: the linker's name
void* __wrap_malloc(std::size_t size) __attribute__((alloc_size(1), malloc)); // NOLINT: the linker's name

void* __wrap_malloc(std::size_t size) // NOLINT: the linker's name
{
    const std::size_t least = leastFailing.load(std::memory_order_relaxed);
    return least != 0 && size >= least ? nullptr : __real_malloc(size);
}
}

namespace dorn::test {

LargeAllocationsFail::LargeAllocationsFail(std::size_t size)
{
    leastFailing.store(size);
}

LargeAllocationsFail::~LargeAllocationsFail()
{
    leastFailing.store(0);
}

FirmwareTest::FirmwareTest() : m_descriptors(testkit::openDescriptors()) {}

void FirmwareTest::TearDown()
{
    EXPECT_EQ(testkit::openDescriptors(), m_descriptors);
}

std::vector<std::string> trailerLines(const std::string& image)
{
    std::uint32_t offset = 0;
    std::memcpy(&offset, image.data() + image.size() - sizeof offset, sizeof offset);
    std::array<char, 200> size{};
    std::snprintf(size.data(), size.size(), "info get_trailer(): FileSize: %zu, 0x%zx", image.size(), image.size());
    std::array<char, 200> begin{};
    std::snprintf(begin.data(), begin.size(), "info get_trailer(): Trailer begins from offset: %d, 0x%x",
                  static_cast<int>(offset), offset);
    const auto length = static_cast<unsigned>(image.size()) - offset;
    std::array<char, 200> rest{};
    std::snprintf(rest.data(), rest.size(), "info get_trailer(): Trailer length: %d, 0x%x", static_cast<int>(length),
                  length);
    return {"info get_trailer(): File '/ffs/run/boot/image.bin' opened", size.data(), begin.data(), rest.data()};
}

std::vector<std::string> joined(const std::vector<std::vector<std::string>>& parts)
{
    std::vector<std::string> all;
    for (const std::vector<std::string>& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::string decimalAndHex(std::uint32_t value)
{
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%d (0x%x)", static_cast<int>(value), value);
    return text.data();
}

std::string crcLine(std::uint32_t crc)
{
    return "info calculate_crc(): CRC32 calculated from file: " + decimalAndHex(crc);
}

} // namespace dorn::test
