// SPDX-License-Identifier: MIT
/// @file FlashRecord.hpp
/// What stands beside an image in flash: what it is, and from when on it is in use.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace dorn::board {

struct FlashRecord {
    std::uint32_t resets = 0;             ///< how often the board had been reset when it was flashed
    std::string versionBefore;            ///< that was in use then: one line
    std::uint32_t image = 0;              ///< number of the file that holds it, 0 or 1
    std::uint64_t size = 0;               ///< bytes that it has when it is whole
    std::optional<std::uint32_t> version; ///< its own; nothing when it gave none

    bool operator==(const FlashRecord&) const = default;
};

/// The record of a flash area; nothing when there is none, or none that can be understood. @throws BoardFailure when it
/// cannot be read.
std::optional<FlashRecord> readFlashRecord(const std::string& area);

/// Replaces the record of a flash area. The caller holds its lock. @throws BoardFailure
void writeFlashRecord(const std::string& area, const FlashRecord& record);

} // namespace dorn::board
