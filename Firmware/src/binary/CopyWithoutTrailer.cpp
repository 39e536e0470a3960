// SPDX-License-Identifier: MIT
#include "binary.h"

#include "binary/CopyPayload.hpp"
#include "binary/OwnedFile.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace vel::hwapi::firmware {
namespace {

std::int32_t copyBytes(AaFile* from, AaFile* to, std::uint32_t size)
{
    std::array<std::byte, 1024> buffer;
    while (size != 0) {
        const auto asked = static_cast<std::int32_t>(std::min<std::size_t>(size, buffer.size()));
        const std::int32_t count = AaFileRead(from, buffer.data(), static_cast<std::uint32_t>(asked));
        if (count <= 0 || count > asked) {
            return BINARY_COPY_NOT_READ;
        }
        if (AaFileWrite(to, buffer.data(), static_cast<std::uint32_t>(count)) != count) {
            return BINARY_COPY_NOT_WRITTEN;
        }
        size -= static_cast<std::uint32_t>(count);
    }
    return BINARY_COPY_OK;
}

} // namespace

std::int32_t copyPayload(const char* source, const char* destination, NewFileOnly isNewOnly)
{
    const OwnedFile from(AaFileOpen(source, "r"));
    if (!from) {
        return BINARY_COPY_SOURCE_NOT_OPENED;
    }
    if (AaFileSetPosition(from.get(), 0, EAaFileOrigin_End) != 0) {
        return BINARY_COPY_NO_END;
    }
    const std::int32_t size = AaFileGetPosition(from.get());
    if (size == -1) {
        return BINARY_COPY_NO_SIZE;
    }
    std::uint32_t beginning = 0; // of the trailer; a little-endian word, as the boards' processors have it
    if (AaFileSetPosition(from.get(), -static_cast<std::int32_t>(sizeof beginning), EAaFileOrigin_End) != 0) {
        return BINARY_COPY_NO_OFFSET_WORD;
    }
    if (AaFileRead(from.get(), &beginning, sizeof beginning) != sizeof beginning) {
        return BINARY_COPY_OFFSET_NOT_READ;
    }
    if (std::int64_t{size} <= std::int64_t{beginning}) {
        return BINARY_COPY_OFFSET_INVALID;
    }
    if (AaFileSetPosition(from.get(), 0, EAaFileOrigin_Begin) != 0) {
        return BINARY_COPY_NO_BEGIN;
    }
    OwnedFile to(AaFileOpen(destination, isNewOnly == NewFileOnly::Yes ? "wx" : "w"));
    if (!to) {
        return BINARY_COPY_DESTINATION_NOT_OPENED;
    }
    const std::int32_t result = copyBytes(from.get(), to.get(), beginning);
    const bool isStored = AaFileClose(to.release()) == 0; // closing stores what the platform has kept back
    return result == BINARY_COPY_OK && !isStored ? static_cast<std::int32_t>(BINARY_COPY_NOT_WRITTEN) : result;
}

} // namespace vel::hwapi::firmware

std::int32_t binary_copy_without_trailer(const char* source, const char* destination)
{
    using namespace vel::hwapi::firmware;
    return copyPayload(source, destination, NewFileOnly::No);
}
