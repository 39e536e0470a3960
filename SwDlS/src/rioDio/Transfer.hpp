// SPDX-License-Identifier: MIT
/// @file Transfer.hpp
/// What writing to a device and reading back from it share.
#pragma once

#include "AaFile.h"
#include "AaMem.h"
#include "ddal_rio.h"

#include <cstdint>
#include <memory>
#include <sys/types.h>

namespace vel::hwapi::swdl {

/// Data moves in blocks of at most so many bytes.
constexpr ssize_t blockSize = 0x10000;

/// The RapidIO port behind which the devices are.
constexpr std::uint32_t port = 0;

struct FileCloser {
    void operator()(AaFile* file) const { AaFileClose(file); }
};
using OwnedFile = std::unique_ptr<AaFile, FileCloser>;

struct MemoryReleaser {
    void operator()(void* memory) const { AaMemUnRef(memory); }
};
using OwnedMemory = std::unique_ptr<void, MemoryReleaser>;

/// Memory for a block. @return null when there is none.
inline OwnedMemory allocate(ssize_t size)
{
    return OwnedMemory(AaMemMalloc(static_cast<std::uint32_t>(size)));
}

/// Opens a copy handle, for both directions whichever is used. @return whether it is open.
inline bool openHandle(std::uint16_t device, std::int32_t& handle)
{
    return ddal_rio_copy_open_fd(port, device, DDAL_RIO_READ_WRITE, &handle) == DDAL_OK;
}

} // namespace vel::hwapi::swdl
