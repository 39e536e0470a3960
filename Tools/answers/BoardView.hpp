// SPDX-License-Identifier: MIT
/// @file BoardView.hpp
/// All that is known of a board at one moment.
#pragma once

#include "description/DescribedBoard.hpp"
#include "device/FlashArea.hpp"
#include "device/RioDevice.hpp"
#include "device/SfpCage.hpp"
#include "port/Clock.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dorn::tool {

/// A unit or a module.
struct IdentityView {
    std::uint32_t number; ///< of the unit, or of the port that leads to the module
    std::string unitId;
    std::optional<std::uint32_t> hwSwId; ///< of a unit
    std::string productionCode;
    std::string serialNumber;
};

struct SlotView {
    std::uint32_t number;
    std::uint32_t size;
    std::optional<board::FlashedImage> flashed;
};

struct BootLoaderView {
    std::int32_t startLocation;
    std::string version;
    SlotView flash;
};

struct FpgaView {
    std::uint32_t id;
    std::string label;
    std::uint32_t version;
    std::vector<SlotView> slots;
};

struct MemoryView {
    std::uint64_t address;
    std::uint64_t size;
    std::string label;
    std::uint64_t bytesOnDisk;
};

struct RioDeviceView {
    std::uint32_t id;
    std::string label;
    std::vector<MemoryView> memories;
};

struct RioPortView {
    std::uint32_t number;
    std::uint16_t ownId;
    std::vector<RioDeviceView> devices;
};

struct FileSystemView {
    std::uint32_t id;
    std::string label;
    std::string mountPoint;
    std::uint32_t mode;
};

struct CageView {
    std::uint32_t port;
    std::string label;
    std::optional<board::SfpModule> module;
};

struct ProcessorView {
    std::string dieId;
    std::string dieIdQuality;
};

/// What a board does not have is missing or empty.
struct BoardView {
    std::string description; ///< path
    std::string model;
    std::uint32_t boardCode;
    std::uint32_t resets;
    std::optional<host::Nanoseconds> lastReset;
    bool hasWatchdog;
    std::optional<ProcessorView> processor;
    std::vector<std::uint32_t> capability; ///< of the transceivers
    std::vector<IdentityView> units;
    std::vector<IdentityView> modules;
    std::optional<BootLoaderView> bootLoader;
    std::vector<FpgaView> fpgas;
    std::vector<RioPortView> rioPorts;
    std::vector<FileSystemView> fileSystems;
    std::vector<CageView> cages;
};

/// Looks at everything once. @throws board::BoardFailure when the description or a state file cannot be used.
BoardView viewOf(const board::DescribedBoard& board);

} // namespace dorn::tool
