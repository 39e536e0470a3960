// SPDX-License-Identifier: MIT
/// @file ImageFuzz.cpp
/// Any bytes as a firmware image: every reader gives one of its results, and they agree with each other.
#include "AaCpu.h"
#include "FuzzBoard.hpp"
#include "Require.hpp"
#include "binary.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>
#include <syslog.h>
#include <zlib.h>

namespace {

constexpr std::uint32_t ownId = 0x3A01;

using dorn::fuzz::FuzzBoard;
using dorn::fuzz::require;

bool isOneOf(std::int32_t result, std::initializer_list<std::int32_t> results)
{
    return std::find(results.begin(), results.end(), result) != results.end();
}

/// Where the trailer begins; 0 when there is none.
std::uint32_t beginningIn(const std::string& image)
{
    std::uint32_t beginning = 0;
    if (image.size() < sizeof beginning) {
        return 0;
    }
    std::memcpy(&beginning, image.data() + image.size() - sizeof beginning, sizeof beginning);
    AaCpuBitSwapByteOrder32(&beginning);
    return beginning < image.size() ? beginning : 0;
}

void checkTrailer(const std::string& image)
{
    std::uint32_t beginning = 0;
    char* trailer = nullptr;
    const std::uint32_t result = get_trailer("/image.bin", &beginning, &trailer);
    require((result == BINARY_OK) == (beginningIn(image) != 0));
    if (result == BINARY_OK) {
        require(image.substr(beginning) == std::string(trailer, image.size() - beginning));
    }
    std::free(trailer);
}

void checkCopy(const FuzzBoard& board, const std::string& image)
{
    const std::int32_t result = binary_copy_without_trailer("/image.bin", "/payload");
    require(isOneOf(result, {BINARY_COPY_OK, BINARY_COPY_NO_OFFSET_WORD, BINARY_COPY_OFFSET_INVALID}));
    require(result != BINARY_COPY_OK || board.read("/payload") == image.substr(0, beginningIn(image)));
}

void checkVersion(std::int32_t wholeness)
{
    std::uint32_t version = 1;
    const std::int32_t result = binary_version("/image.bin", ownId, 1, &version);
    require(isOneOf(result, {BINARY_VERSION_OK, BINARY_VERSION_TRAILER_NOT_READ, BINARY_VERSION_XML_INVALID,
                             BINARY_VERSION_NO_TRAILER, BINARY_VERSION_NOT_COMPATIBLE}));
    require(result == BINARY_VERSION_OK || version == 0);
    const bool isRead = wholeness == BINARY_OK || wholeness == BINARY_CRC_MISMATCH;
    require(isRead == isOneOf(result, {BINARY_VERSION_OK, BINARY_VERSION_NOT_COMPATIBLE}));
}

} // namespace

// The lines of the readers are nobody's business here.
extern "C" void syslog(int /*priority*/, const char* /*format*/, ...) {}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzBoard board;
    const std::string image(reinterpret_cast<const char*>(data), size);
    board.write("/image.bin", image);

    checkTrailer(image);
    checkCopy(board, image);
    const std::int32_t wholeness = binary_crc("/image.bin");
    require(isOneOf(wholeness, {BINARY_OK, BINARY_TRAILER_XML_INVALID, BINARY_FILE_FAILED,
                                BINARY_TRAILER_OFFSET_INVALID, BINARY_CRC_MISMATCH}));
    checkVersion(wholeness);
    const std::int32_t validity = binary_validate("/image.bin", ownId);
    require(wholeness == BINARY_OK ? isOneOf(validity, {BINARY_OK, BINARY_HWSWID_NOT_FOUND}) : validity == wholeness);

    const std::uint32_t beginning = beginningIn(image);
    std::uint32_t crc = 0;
    require(calculate_crc("/image.bin", beginning, &crc) == BINARY_OK);
    require(crc == crc32(0, reinterpret_cast<const Bytef*>(image.data()), beginning));
    return 0;
}
