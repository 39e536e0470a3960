// SPDX-License-Identifier: MIT
#include "rioDio.h"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"
#include "rioDio/Transfer.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <numeric>

namespace {

using namespace vel::hwapi::swdl;

constexpr ssize_t failed = RIO_VALIDATION_FAILED;

/// A block of the device's memory that is to be as in the file.
struct Block {
    std::uint16_t device;
    ssize_t number; ///< from 1
    std::uint64_t address;
    ssize_t size;
};

void warn(const Block& block, const char* what)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL, "validateSrioWrite, [0x%X] %s failed",
                   unsigned{block.device}, what);
}

ssize_t countDifferences(const void* expected, const void* found, ssize_t size)
{
    const auto bytes = static_cast<std::size_t>(size);
    if (std::memcmp(expected, found, bytes) == 0) { // as nearly always, and faster than counting
        return 0;
    }
    const auto* const from = static_cast<const unsigned char*>(expected);
    return std::transform_reduce(from, from + bytes, static_cast<const unsigned char*>(found), ssize_t{0},
                                 std::plus<>(), std::not_equal_to<>());
}

ssize_t readAndCompare(const Block& block, std::int32_t handle, const void* expected)
{
    const OwnedMemory found = allocate(block.size);
    if (!found) {
        warn(block, "AaMemMalloc(2)");
        return failed;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_SWDL,
                   "validateSrioWrite, Reading %zd. block from SRIO device 0x%X, address 0x%llx, size %zd",
                   block.number, unsigned{block.device}, static_cast<unsigned long long>(block.address), block.size);
    if (ddal_rio_copy_from_fd(handle, block.address, found.get(), static_cast<std::uint32_t>(block.size)) != DDAL_OK) {
        warn(block, "ddal_rio_copy_from()");
        return failed;
    }
    return countDifferences(expected, found.get(), block.size);
}

ssize_t compareWithDevice(const Block& block, const void* expected)
{
    std::int32_t handle = -1;
    if (!openHandle(block.device, handle)) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL,
                       "validateSrioWrite, Failed to open handle for rio transfer (read)");
        return failed;
    }
    const ssize_t count = readAndCompare(block, handle, expected);
    if (ddal_rio_copy_close_fd(handle) != DDAL_OK) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL,
                       "validateSrioWrite, Failed to close transfer handle");
        return failed;
    }
    return count;
}

/// Compares the next block of the file.
ssize_t compareBlock(const Block& block, AaFile* file)
{
    const OwnedMemory expected = allocate(block.size);
    if (!expected) {
        warn(block, "AaMemMalloc(1)");
        return failed;
    }
    if (AaFileRead(file, expected.get(), static_cast<std::uint32_t>(block.size)) != block.size) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, ERadHwapi_SWDL, "validateSrioWrite, [0x%X] bytes == size failed",
                       unsigned{block.device});
        return failed;
    }
    return compareWithDevice(block, expected.get());
}

ssize_t compareBlocks(std::uint16_t device, std::uint64_t address, AaFile* file, ssize_t size)
{
    ssize_t count = 0;
    for (std::int64_t done = 0; done < size && count == 0; done += blockSize) { // 64 bits: the sum may exceed the size
        const Block block{device, static_cast<ssize_t>(done / blockSize + 1),
                          address + static_cast<std::uint64_t>(done),
                          static_cast<ssize_t>(std::min<std::int64_t>(blockSize, size - done))};
        count = compareBlock(block, file);
    }
    return count;
}

ssize_t compareFile(std::uint16_t device, std::uint64_t address, const char* filename)
{
    const OwnedFile file(AaFileOpen(filename, "r"));
    if (!file) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL, "validateSrioWrite, [0x%X] AaFileOpen() failed",
                       unsigned{device});
        return failed;
    }
    const ssize_t size = AaFileGetSize(file.get());
    if (size < 0) {
        return failed;
    }
    if (size == 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL, "validateSrioWrite, %s file zero length",
                       filename);
    }
    return compareBlocks(device, address, file.get(), size);
}

} // namespace

int32_t validateSrioWrite(uint16_t device, uint64_t address, const char* filename)
{
    if (!filename) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL, "validateSrioWrite, filename == NULL");
        return RIO_VALIDATION_FAILED;
    }
    const ssize_t count = compareFile(device, address, filename);
    if (count != 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, ERadHwapi_SWDL,
                       "validateSrioWrite, [0x%X] SRIO write failed, corrupted %zd bytes", unsigned{device}, count);
    }
    return static_cast<std::int32_t>(count);
}
