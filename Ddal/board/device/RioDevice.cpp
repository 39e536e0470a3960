// SPDX-License-Identifier: MIT
#include "device/RioDevice.hpp"

#include "port/FilePort.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::board {
namespace {

std::string hexText(std::uint64_t number)
{
    char text[2 + 16 + 1];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(number));
    return text;
}

RioMemory memoryOf(const BoardNode& node, const std::string& deviceName)
{
    const std::vector<std::uint32_t> cells = node.cells("reg", 4);
    const std::uint64_t address = std::uint64_t{cells[0]} << 32 | cells[1];
    const std::uint64_t size = std::uint64_t{cells[2]} << 32 | cells[3];
    if (size == 0 || size > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max()) ||
        address > std::numeric_limits<std::uint64_t>::max() - size) {
        node.failAt("reg", "has the size " + hexText(size) + ", which no memory at " + hexText(address) + " can have");
    }
    return {address, size, node.textIfAny("label"), StateFile(deviceName + "-" + hexText(address) + ".memory")};
}

/// Makes a memory's file as large as the memory: no room is taken by what has not been written.
void makeWhole(const RioMemory& memory, int descriptor)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        memory.file.fail("cannot be seen", errno);
    }
    if (static_cast<std::uint64_t>(status.st_size) < memory.size) {
        const int result = host::FilePort::get().truncate(descriptor, static_cast<off_t>(memory.size));
        if (result < 0) {
            memory.file.fail("cannot be made as large as the memory", -result);
        }
    }
}

} // namespace

std::uint64_t RioMemory::bytesOnDisk() const
{
    constexpr std::uint64_t blockSize = 512; // of st_blocks, whatever the file system
    const host::Descriptor descriptor = file.open();
    struct stat status {};
    return descriptor && fstat(descriptor.get(), &status) == 0
               ? static_cast<std::uint64_t>(status.st_blocks) * blockSize
               : 0;
}

RioDevice::RioDevice(std::uint32_t port, const BoardNode& node)
    : m_port(port), m_id(node.number()), m_label(node.textIfAny("label"))
{
    const std::string name = "rapidio-" + std::to_string(port) + "-device-" + std::to_string(m_id);
    for (const BoardNode& memory : node.numberedChildren()) {
        m_memories.push_back(memoryOf(memory, name));
    }
}

void RioDevice::write(std::uint64_t address, const void* data, std::uint32_t size) const
{
    const RioMemory& memory = memoryAt(address, size);
    const host::Descriptor descriptor = memory.file.openOrMake();
    makeWhole(memory, descriptor.get());
    if (lseek(descriptor.get(), static_cast<off_t>(address - memory.address), SEEK_SET) < 0) {
        memory.file.fail("cannot be written", errno);
    }
    memory.file.write(descriptor.get(), data, size);
}

void RioDevice::read(std::uint64_t address, void* data, std::uint32_t size) const
{
    const RioMemory& memory = memoryAt(address, size);
    const host::Descriptor descriptor = memory.file.open();
    auto* to = static_cast<char*>(data);
    auto offset = static_cast<off_t>(address - memory.address);
    std::size_t left = size;
    while (descriptor && left != 0) {
        const ssize_t count = pread(descriptor.get(), to, left, offset);
        if (count < 0 && errno != EINTR) {
            memory.file.fail("cannot be read", errno);
        }
        if (count == 0) {
            break;
        }
        const std::size_t got = count < 0 ? 0 : static_cast<std::size_t>(count);
        to += got;
        offset += static_cast<off_t>(got);
        left -= got;
    }
    std::memset(to, 0, left);
}

const RioMemory& RioDevice::memoryAt(std::uint64_t address, std::uint32_t size) const
{
    const auto found = std::find_if(m_memories.begin(), m_memories.end(), [&](const RioMemory& memory) {
        return address >= memory.address && address - memory.address <= memory.size &&
               size <= memory.size - (address - memory.address);
    });
    if (found == m_memories.end()) {
        throw BoardFailure(DDAL_ERROR_BAD_ADDRESS, "device " + hexText(m_id) + " has no memory for " +
                                                       std::to_string(size) + " bytes at " + hexText(address));
    }
    return *found;
}

} // namespace dorn::board
