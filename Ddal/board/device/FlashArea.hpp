// SPDX-License-Identifier: MIT
/// @file FlashArea.hpp
/// A part of flash memory that holds one image.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dorn::board {

/// What was flashed into an area since the board's state was empty.
struct FlashedImage {
    std::uint64_t size = 0;
    bool isWhole = false;                 ///< false: the power went while it was flashed, and no device can use it
    std::optional<std::uint32_t> version; ///< that the image gave; nothing when it gave none or is not whole
    bool isPending = false;               ///< flashed after the last reset, and so not in use before the next
    std::string versionBefore;            ///< that was in use when it was flashed
    std::string path;                     ///< on the target: the state file that holds it
};

/// How much of an image gets into flash: half of it when the power goes meanwhile.
enum class FlashExtent { Whole, Half };

struct FlashRecord;

/// Holds what is written to it in a file of the board's state, with a record beside it: which version it is, and how
/// many bytes it has when it is whole.
///
/// There are two files, of which the record names the one that counts: an image is written to the other one, and the
/// new record then puts it in place. Devices take an image into use at a reset. That needs no work at the reset, which
/// may come at any moment: the record also says after which reset it was flashed, and which version was in use then.
class FlashArea {
public:
    /// @param name of the state files
    /// @param size bytes that an image may have
    /// @param versionOffset where an image of this device has its version, as 32 bits, most significant byte first;
    ///   nothing when images say nothing of it
    FlashArea(std::string name, std::uint32_t size, std::optional<std::uint32_t> versionOffset)
        : m_name(std::move(name)), m_size(size), m_versionOffset(versionOffset)
    {
    }

    std::uint32_t size() const { return m_size; }

    /// Writes the image in the file @p path of the target. @param versionInUse the device's, at this moment
    /// @throws BoardFailure; what was there before is still there then.
    void flash(const std::string& path, const std::string& versionInUse, FlashExtent extent = FlashExtent::Whole) const;

    /// What was flashed last, if anything was. @throws BoardFailure
    std::optional<FlashedImage> flashed() const;

private:
    std::optional<std::uint32_t> versionIn(int image) const;
    std::optional<FlashRecord> record() const;
    FlashedImage describe(const FlashRecord& record) const;

    std::string m_name;
    std::uint32_t m_size;
    std::optional<std::uint32_t> m_versionOffset;
};

/// The version that a device runs, as a decimal number: that of the first of its areas that holds an image in use, else
/// @p described. @throws BoardFailure
std::string versionInUse(const std::vector<FlashArea>& areas, const std::string& described);

} // namespace dorn::board
