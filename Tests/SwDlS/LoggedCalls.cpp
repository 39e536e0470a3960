// SPDX-License-Identifier: MIT
// Wrappers of what transfers call for files, memory and devices: each call is a line of the log, between the lines that
// the transfer writes itself. A program that links them has them in place of the TestKit's.
#include "AaFile.h"
#include "AaMem.h"
#include "AaSysLog.h"
#include "ddal_rio.h"
#include "seam/SeamWrapper.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

extern "C" {
decltype(AaFileOpen) __real_AaFileOpen;
decltype(AaFileOpen) __wrap_AaFileOpen;
decltype(AaFileClose) __wrap_AaFileClose;
decltype(AaFileRead) __real_AaFileRead;
decltype(AaFileRead) __wrap_AaFileRead;
decltype(AaFileWrite) __real_AaFileWrite;
decltype(AaFileWrite) __wrap_AaFileWrite;
decltype(AaFileDirExists) __real_AaFileDirExists;
decltype(AaFileDirExists) __wrap_AaFileDirExists;
decltype(AaFileCreateDir) __real_AaFileCreateDir;
decltype(AaFileCreateDir) __wrap_AaFileCreateDir;
decltype(AaMemMalloc) __real_AaMemMalloc;
decltype(AaMemMalloc) __wrap_AaMemMalloc;
decltype(AaMemUnRef) __real_AaMemUnRef;
decltype(AaMemUnRef) __wrap_AaMemUnRef;
decltype(ddal_rio_copy_open_fd) __real_ddal_rio_copy_open_fd;
decltype(ddal_rio_copy_open_fd) __wrap_ddal_rio_copy_open_fd;
decltype(ddal_rio_copy_to_fd) __real_ddal_rio_copy_to_fd;
decltype(ddal_rio_copy_to_fd) __wrap_ddal_rio_copy_to_fd;
decltype(ddal_rio_copy_from_fd) __real_ddal_rio_copy_from_fd;
decltype(ddal_rio_copy_from_fd) __wrap_ddal_rio_copy_from_fd;
decltype(ddal_rio_copy_close_fd) __wrap_ddal_rio_copy_close_fd;
}

namespace {

using dorn::testkit::InPlatform;

/// A call of the library; what the driver calls is its own affair.
void log(const std::string& call)
{
    if (dorn::testkit::platformDepth == 0) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Vip, "%s", call.c_str());
    }
}

std::string hexText(std::uint64_t number)
{
    char text[2 + 16 + 1];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
    return text;
}

/// Gives every block a number while it is taken, the lowest that is free.
class BlockNumbers {
public:
    std::string take(void* block)
    {
        auto place = std::find(m_blocks.begin(), m_blocks.end(), nullptr);
        if (place == m_blocks.end()) {
            place = m_blocks.insert(place, nullptr);
        }
        *place = block;
        return textOf(place);
    }
    std::string giveBack(void* block)
    {
        const auto place = std::find(m_blocks.begin(), m_blocks.end(), block);
        if (place == m_blocks.end()) {
            return "unknown";
        }
        *place = nullptr;
        return textOf(place);
    }

private:
    std::string textOf(std::vector<void*>::iterator place) const
    {
        return std::to_string(place - m_blocks.begin() + 1);
    }

    std::vector<void*> m_blocks;
};

BlockNumbers& blocks()
{
    static BlockNumbers instance;
    return instance;
}

} // namespace

AaFile* __wrap_AaFileOpen(const char* path, const char* mode)
{
    log(std::string("open ") + path + " " + mode);
    return __real_AaFileOpen(path, mode);
}

std::int32_t __wrap_AaFileClose(AaFile* file)
{
    log("close");
    return __real_AaFileClose(file);
}

std::int32_t __wrap_AaFileRead(AaFile* file, void* buffer, std::uint32_t size)
{
    log("read " + hexText(size));
    return __real_AaFileRead(file, buffer, size);
}

std::int32_t __wrap_AaFileWrite(AaFile* file, const void* buffer, std::uint32_t size)
{
    log("write " + hexText(size));
    return __real_AaFileWrite(file, buffer, size);
}

TBoolean __wrap_AaFileDirExists(const char* path)
{
    log(std::string("exists ") + path);
    return __real_AaFileDirExists(path);
}

std::int32_t __wrap_AaFileCreateDir(const char* path)
{
    log(std::string("create ") + path);
    return __real_AaFileCreateDir(path);
}

void* __wrap_AaMemMalloc(std::uint32_t size)
{
    void* const block = __real_AaMemMalloc(size);
    log("take block " + blocks().take(block) + " " + hexText(size));
    return block;
}

void __wrap_AaMemUnRef(void* block)
{
    log("give back block " + blocks().giveBack(block));
    __real_AaMemUnRef(block);
}

std::int32_t __wrap_ddal_rio_copy_open_fd(std::uint32_t port, std::uint16_t deviceId, std::uint32_t mode,
                                          std::int32_t* handle)
{
    log("open handle " + hexText(port) + " " + hexText(deviceId) + " " + hexText(mode));
    const InPlatform inPlatform;
    return __real_ddal_rio_copy_open_fd(port, deviceId, mode, handle);
}

std::int32_t __wrap_ddal_rio_copy_to_fd(std::int32_t handle, std::uint64_t address, const void* buffer,
                                        std::uint32_t size)
{
    log("copy to " + hexText(address) + " " + hexText(size));
    const InPlatform inPlatform;
    return __real_ddal_rio_copy_to_fd(handle, address, buffer, size);
}

std::int32_t __wrap_ddal_rio_copy_from_fd(std::int32_t handle, std::uint64_t address, void* buffer, std::uint32_t size)
{
    log("copy from " + hexText(address) + " " + hexText(size));
    const InPlatform inPlatform;
    return __real_ddal_rio_copy_from_fd(handle, address, buffer, size);
}

std::int32_t __wrap_ddal_rio_copy_close_fd(std::int32_t handle)
{
    log("close handle");
    const InPlatform inPlatform;
    return __real_ddal_rio_copy_close_fd(handle);
}
