// SPDX-License-Identifier: MIT
/// @file ItemReader.hpp
/// Reads a file item by item, many at a time.
#pragma once

#include "AaFile.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace vel::hwapi::firmware {

/// Gives what single reads into one and the same item would, if nobody looked at their results. A read that fails or
/// gives only a part of the item leaves the item before it in place, or 0 where there is none. After a failure the file
/// is read on; after its end it is not.
class ItemReader {
public:
    using Item = std::uint32_t;

    /// @param file is read from its position on and outlives the reader
    explicit ItemReader(AaFile& file);

    /// Whether there was memory.
    bool isUsable() const { return m_block != nullptr; }

    /// The next items, at least one and @p most at most. Valid until the next call. @p most is not 0.
    std::span<const Item> next(std::size_t most);

private:
    /// Reads items at once; in place of those behind the end of the file stands the one before them.
    /// @return false when that failed, and then nothing is known of the items.
    bool read(std::span<Item> items);
    void readOneByOne(std::span<Item> items);

    /// Small enough for a processor's cache, large enough that a call weighs nothing.
    static constexpr std::size_t itemsPerBlock = 8192;

    AaFile& m_file;
    std::unique_ptr<Item[]> m_block;
    Item m_last = 0;
    bool m_hasEnded = false;
};

} // namespace vel::hwapi::firmware
