// SPDX-License-Identifier: MIT
#include "binary/ItemReader.hpp"

#include <algorithm>
#include <new>
#include <optional>

namespace vel::hwapi::firmware {
namespace {

/// @return how many whole items were read; nothing when that failed.
std::optional<std::size_t> readWhole(AaFile& file, std::span<ItemReader::Item> items)
{
    const std::int32_t bytes = AaFileRead(&file, items.data(), static_cast<std::uint32_t>(items.size_bytes()));
    return bytes < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(bytes) / sizeof(ItemReader::Item));
}

/// Reads the items before the one that fails.
std::size_t readOneByOne(AaFile& file, std::span<ItemReader::Item> items)
{
    std::size_t count = 0;
    while (count < items.size() && readWhole(file, items.subspan(count, 1)) == 1) {
        ++count;
    }
    return count;
}

} // namespace

ItemReader::ItemReader(AaFile& file) : m_file(file), m_block(new (std::nothrow) Item[itemsPerBlock]) {}

std::size_t ItemReader::read(std::span<Item> items)
{
    const std::int32_t begin = AaFileGetPosition(&m_file);
    if (const std::optional<std::size_t> count = readWhole(m_file, items)) {
        return *count;
    }
    // Some of them may be readable.
    const bool isBack = begin >= 0 && AaFileSetPosition(&m_file, begin, EAaFileOrigin_Begin) == 0;
    return isBack ? readOneByOne(m_file, items) : 0;
}

std::span<const ItemReader::Item> ItemReader::next(std::size_t most)
{
    const std::span<Item> items(m_block.get(), std::min(most, itemsPerBlock));
    const std::size_t count = m_hasEnded ? 0 : read(items);
    if (count < items.size()) {
        m_hasEnded = true;
        std::fill(items.begin() + static_cast<std::ptrdiff_t>(count), items.end(),
                  count > 0 ? items[count - 1] : m_last);
    }
    m_last = items.back();
    return items;
}

} // namespace vel::hwapi::firmware
