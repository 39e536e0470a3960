// SPDX-License-Identifier: MIT
#include "binary.h"

#include "binary/ItemReader.hpp"
#include "binary/OwnedFile.hpp"

#include <cstddef>
#include <span>
#include <syslog.h>
#include <zlib.h>

using vel::hwapi::firmware::ItemReader;
using vel::hwapi::firmware::OwnedFile;

namespace {

constexpr std::uint32_t itemSize = sizeof(ItemReader::Item);

uLong addBytes(uLong crc, const void* bytes, std::size_t size)
{
    return crc32(crc, static_cast<const Bytef*>(bytes), static_cast<uInt>(size));
}

uLong addItems(uLong crc, ItemReader& reader, std::uint32_t count)
{
    while (count != 0) {
        const std::span<const ItemReader::Item> items = reader.next(count);
        crc = addBytes(crc, items.data(), items.size_bytes());
        count -= static_cast<std::uint32_t>(items.size());
    }
    return crc;
}

/// Adds the 1 to 3 bytes behind the last whole item.
uLong addRemainder(uLong crc, AaFile& file, std::uint32_t size, const char* function)
{
    syslog(LOG_INFO, "%s(): bytes remaining: %d (0x%x)", function, static_cast<std::int32_t>(size), size);
    ItemReader::Item data = 0;
    AaFileRead(&file, &data, size); // the bytes that the file does not have stay 0
    syslog(LOG_INFO, "%s(): remaining data: %d (0x%x)", function, static_cast<std::int32_t>(data), data);
    return addBytes(crc, &data, size);
}

} // namespace

std::uint32_t calculate_crc(const char* fileName, std::uint32_t payloadLength, std::uint32_t* crc)
{
    *crc = 0;
    const OwnedFile file(AaFileOpen(fileName, "r"));
    if (!file) {
        syslog(LOG_INFO, "%s(): Could not open file: %s", __func__, fileName);
        return BINARY_FILE_FAILED;
    }
    const uLong start = crc32(0, nullptr, 0);
    if (AaFileSetPosition(file.get(), 0, EAaFileOrigin_Begin) != 0) {
        syslog(LOG_INFO, "%s(): Could not set file ptr position in file", __func__);
        return BINARY_FILE_FAILED;
    }
    ItemReader reader(*file);
    if (!reader.isUsable()) {
        return BINARY_FILE_FAILED;
    }
    uLong sum = addItems(start, reader, payloadLength / itemSize);
    if (const std::uint32_t remainder = payloadLength % itemSize; remainder != 0) {
        sum = addRemainder(sum, *file, remainder, __func__);
    }
    *crc = static_cast<std::uint32_t>(sum);
    syslog(LOG_INFO, "%s(): CRC32 calculated from file: %d (0x%x)", __func__, static_cast<std::int32_t>(*crc), *crc);
    return BINARY_OK;
}
