// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaCpu.h"
#include "binary/OwnedFile.hpp"

#include <cstdlib>
#include <memory>
#include <syslog.h>

using vel::hwapi::firmware::OwnedFile;

namespace {

constexpr const char* function = "get_trailer";

struct Freer {
    void operator()(char* text) const { std::free(text); }
};

/// Reads where the trailer begins, and how long it is. @return #BINARY_OK, or what is wrong with the file
std::uint32_t findTrailer(AaFile& file, const char* fileName, std::uint32_t& beginning, std::uint32_t& length)
{
    const std::int32_t size = AaFileGetSize(&file);
    syslog(LOG_INFO, "%s(): FileSize: %d, 0x%x", function, size, static_cast<unsigned>(size));

    std::uint32_t word = 0;
    if (AaFileSetPosition(&file, -static_cast<std::int32_t>(sizeof word), EAaFileOrigin_End) != 0) {
        syslog(LOG_INFO, "%s(): Could not read file: %s", function, fileName);
        return BINARY_FILE_FAILED;
    }
    if (AaFileRead(&file, &word, sizeof word) != sizeof word) {
        syslog(LOG_INFO, "%s(): Error in reading file: %s", function, fileName);
        return BINARY_FILE_FAILED;
    }
    AaCpuBitSwapByteOrder32(&word);
    beginning = word;
    length = static_cast<std::uint32_t>(size) - beginning;
    syslog(LOG_INFO, "%s(): Trailer begins from offset: %d, 0x%x", function, static_cast<std::int32_t>(beginning),
           beginning);
    syslog(LOG_INFO, "%s(): Trailer length: %d, 0x%x", function, static_cast<std::int32_t>(length), length);
    if (beginning == 0 || std::int64_t{size} <= std::int64_t{beginning}) {
        syslog(LOG_INFO, "%s(): Invalid File length '%s': trailer length does not match", function, fileName);
        return BINARY_TRAILER_OFFSET_INVALID;
    }
    return BINARY_OK;
}

/// Reads the trailer's text. @return #BINARY_OK, or #BINARY_FILE_FAILED with @p trailer as it was
std::uint32_t readTrailer(AaFile& file, const char* fileName, std::uint32_t beginning, std::uint32_t length,
                          char** trailer)
{
    if (AaFileSetPosition(&file, static_cast<std::int32_t>(beginning), EAaFileOrigin_Begin) != 0) {
        syslog(LOG_INFO, "%s(): Could not read file: %s", function, fileName);
        return BINARY_FILE_FAILED;
    }
    const bool isTooLong = length > BINARY_TRAILER_LENGTH_MAX;
    std::unique_ptr<char, Freer> text(isTooLong ? nullptr : static_cast<char*>(std::malloc(length + 1U)));
    if (!text) {
        return BINARY_FILE_FAILED;
    }
    if (AaFileRead(&file, text.get(), length) != static_cast<std::int32_t>(length)) {
        syslog(LOG_INFO, "%s(): Error in reading file: %s", function, fileName);
        return BINARY_FILE_FAILED;
    }
    text.get()[length] = '\0';
    *trailer = text.release();
    return BINARY_OK;
}

} // namespace

std::uint32_t get_trailer(const char* fileName, std::uint32_t* trailerBeginning, char** trailer)
{
    *trailer = nullptr;
    *trailerBeginning = 0;
    const OwnedFile file(AaFileOpen(fileName, "r"));
    if (!file) {
        syslog(LOG_INFO, "%s(): Could not open file: %s", function, fileName);
        return BINARY_FILE_FAILED;
    }
    syslog(LOG_INFO, "%s(): File '%s' opened", function, fileName);
    std::uint32_t length = 0;
    const std::uint32_t found = findTrailer(*file, fileName, *trailerBeginning, length);
    return found == BINARY_OK ? readTrailer(*file, fileName, *trailerBeginning, length, trailer) : found;
}
