// SPDX-License-Identifier: MIT
#include "binary/ItemReader.hpp"

#include <algorithm>
#include <new>

namespace vel::hwapi::firmware {

ItemReader::ItemReader(AaFile& file) : m_file(file), m_block(new (std::nothrow) Item[itemsPerBlock]) {}

bool ItemReader::read(std::span<Item> items)
{
    const std::int32_t bytes =
        m_hasEnded ? 0 : AaFileRead(&m_file, items.data(), static_cast<std::uint32_t>(items.size_bytes()));
    if (bytes < 0) {
        return false;
    }
    if (const std::size_t count = static_cast<std::size_t>(bytes) / sizeof(Item); count < items.size()) {
        m_hasEnded = true;
        std::fill(items.begin() + static_cast<std::ptrdiff_t>(count), items.end(),
                  count > 0 ? items[count - 1] : m_last);
    }
    m_last = items.back();
    return true;
}

void ItemReader::readOneByOne(std::span<Item> items)
{
    for (Item& item : items) {
        if (!read({&item, 1})) {
            item = m_last;
        }
    }
}

std::span<const ItemReader::Item> ItemReader::next(std::size_t most)
{
    const std::span<Item> items(m_block.get(), std::min(most, itemsPerBlock));
    const std::int32_t begin = AaFileGetPosition(&m_file);
    if (!read(items)) {
        // Some of them may be readable. Where there is no way back they are read from where the failure has left off.
        AaFileSetPosition(&m_file, begin, EAaFileOrigin_Begin);
        readOneByOne(items);
    }
    return items;
}

} // namespace vel::hwapi::firmware
