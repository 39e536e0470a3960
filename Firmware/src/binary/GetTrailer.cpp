// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaCpu.h"
#include "binary/OwnedFile.hpp"

#include <cstdlib>
#include <memory>
#include <syslog.h>

using vel::hwapi::firmware::OwnedFile;

namespace {

struct Freer {
    void operator()(char* text) const { std::free(text); }
};

} // namespace

std::uint32_t get_trailer(const char* fileName, std::uint32_t* trailerBeginning, char** trailer)
{
    *trailer = nullptr;
    *trailerBeginning = 0;
    const OwnedFile file(AaFileOpen(fileName, "r"));
    if (!file) {
        syslog(LOG_INFO, "%s(): Could not open file: %s", __func__, fileName);
        return BINARY_FILE_FAILED;
    }
    syslog(LOG_INFO, "%s(): File '%s' opened", __func__, fileName);
    const std::int32_t size = AaFileGetSize(file.get());
    syslog(LOG_INFO, "%s(): FileSize: %d, 0x%x", __func__, size, static_cast<unsigned>(size));

    std::uint32_t beginning = 0;
    if (AaFileSetPosition(file.get(), -static_cast<std::int32_t>(sizeof beginning), EAaFileOrigin_End) != 0) {
        syslog(LOG_INFO, "%s(): Could not read file: %s", __func__, fileName);
        return BINARY_FILE_FAILED;
    }
    if (AaFileRead(file.get(), &beginning, sizeof beginning) != sizeof beginning) {
        syslog(LOG_INFO, "%s(): Error in reading file: %s", __func__, fileName);
        return BINARY_FILE_FAILED;
    }
    AaCpuBitSwapByteOrder32(&beginning);
    const std::uint32_t length = static_cast<std::uint32_t>(size) - beginning;
    *trailerBeginning = beginning;
    syslog(LOG_INFO, "%s(): Trailer begins from offset: %d, 0x%x", __func__, static_cast<std::int32_t>(beginning),
           beginning);
    syslog(LOG_INFO, "%s(): Trailer length: %d, 0x%x", __func__, static_cast<std::int32_t>(length), length);
    if (beginning == 0 || std::int64_t{size} <= std::int64_t{beginning}) {
        syslog(LOG_INFO, "%s(): Invalid File length '%s': trailer length does not match", __func__, fileName);
        return BINARY_TRAILER_OFFSET_INVALID;
    }

    if (AaFileSetPosition(file.get(), static_cast<std::int32_t>(beginning), EAaFileOrigin_Begin) != 0) {
        syslog(LOG_INFO, "%s(): Could not read file: %s", __func__, fileName);
        return BINARY_FILE_FAILED;
    }
    const bool isTooLong = length > BINARY_TRAILER_LENGTH_MAX;
    std::unique_ptr<char, Freer> text(isTooLong ? nullptr : static_cast<char*>(std::malloc(length + 1U)));
    if (!text) {
        return BINARY_FILE_FAILED;
    }
    if (AaFileRead(file.get(), text.get(), length) != static_cast<std::int32_t>(length)) {
        syslog(LOG_INFO, "%s(): Error in reading file: %s", __func__, fileName);
        return BINARY_FILE_FAILED;
    }
    text.get()[length] = '\0';
    *trailer = text.release();
    return BINARY_OK;
}
