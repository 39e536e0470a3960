// SPDX-License-Identifier: MIT
#include "answers/BoardText.hpp"

#include "ddal_boot.h"
#include "ddal_ffs.h"
#include "text/Table.hpp"
#include "text/Values.hpp"

#include <array>
#include <cstdio>

namespace dorn::tool {
namespace {

constexpr std::array<const char*, 3> startLocations{"primary", "backup", "uImage"};
static_assert(startLocations.size() == DDAL_BOOT_UIMAGE + 1);
constexpr std::array<const char*, 3> mountModes{"not-mounted", "read-only", "read-write"};
static_assert(mountModes.size() == DDAL_FFS_READ_WRITE + 1);

std::string addressText(std::uint64_t address)
{
    std::array<char, 20> text{};
    std::snprintf(text.data(), text.size(), "0x%010llX", static_cast<unsigned long long>(address));
    return text.data();
}

std::string orDash(const std::string& text)
{
    return text.empty() ? "-" : printable(text);
}

/// The table behind an empty line; nothing when there are no rows.
template <class View>
std::string section(std::vector<std::string> headings, const std::vector<View>& views,
                    void (*addRows)(Table&, const View&), const Console& console)
{
    if (views.empty()) {
        return "";
    }
    Table table(std::move(headings));
    for (const View& view : views) {
        addRows(table, view);
    }
    return "\n" + table.text(console);
}

std::string headText(const BoardView& board)
{
    std::string text = orDash(board.model) + ", board code " + std::to_string(board.boardCode) + "\n";
    text += "described by " + printable(board.description) + "\n";
    if (board.processor) {
        text +=
            "die " + printable(board.processor->dieId) + ", quality " + printable(board.processor->dieIdQuality) + "\n";
    }
    if (!board.capability.empty()) {
        text += "transceivers";
        for (const std::uint32_t word : board.capability) {
            text += " " + hexNumber(word, 8);
        }
        text += "\n";
    }
    text += board.hasWatchdog ? "watchdog, " : "no watchdog, ";
    text += board.resets == 1 ? "1 reset" : std::to_string(board.resets) + " resets";
    return text + (board.lastReset ? ", the last " + shortTimeText(*board.lastReset) : "") + "\n";
}

void addUnit(Table& table, const IdentityView& unit)
{
    table.add({std::to_string(unit.number), printable(unit.unitId), hexNumber(unit.hwSwId.value_or(0), 8),
               printable(unit.productionCode), printable(unit.serialNumber)});
}

void addModule(Table& table, const IdentityView& module)
{
    table.add({std::to_string(module.number), printable(module.unitId), printable(module.productionCode),
               printable(module.serialNumber)});
}

/// "64 bytes, version 0x00030000, from the next reset on", "32 bytes, not whole"
Cell flashedCell(const SlotView& slot)
{
    if (!slot.flashed) {
        return "-";
    }
    std::string text = std::to_string(slot.flashed->size) + " bytes";
    if (!slot.flashed->isWhole) {
        return {text + ", not whole", Colour::Red};
    }
    if (slot.flashed->version) {
        text += ", version " + hexNumber(*slot.flashed->version, 8);
    }
    return slot.flashed->isPending ? Cell(text + ", from the next reset on", Colour::Yellow) : Cell(text);
}

void addFpga(Table& table, const FpgaView& fpga)
{
    const std::string name = hexNumber(fpga.id, 1);
    for (const SlotView& slot : fpga.slots) {
        table.add({name, orDash(fpga.label), hexNumber(fpga.version, 8), std::to_string(slot.number),
                   std::to_string(slot.size), flashedCell(slot)});
    }
    if (fpga.slots.empty()) {
        table.add({name, orDash(fpga.label), hexNumber(fpga.version, 8), "-", "-", "-"});
    }
}

std::string bootLoaderText(const std::optional<BootLoaderView>& loader, const Console& console)
{
    if (!loader) {
        return "";
    }
    Table table({"BOOT LOADER", "VERSION", "ROOM", "FLASHED"});
    table.add({startLocationText(loader->startLocation), printable(loader->version), std::to_string(loader->flash.size),
               flashedCell(loader->flash)});
    return "\n" + table.text(console);
}

void addPort(Table& table, const RioPortView& port)
{
    const std::string number = std::to_string(port.number);
    table.add({number, hexNumber(port.ownId, 4), "this board", "-", "-", "-", "-"});
    for (const RioDeviceView& device : port.devices) {
        for (const MemoryView& memory : device.memories) {
            table.add({number, hexNumber(device.id, 4), orDash(device.label), orDash(memory.label),
                       addressText(memory.address), std::to_string(memory.size), std::to_string(memory.bytesOnDisk)});
        }
        if (device.memories.empty()) {
            table.add({number, hexNumber(device.id, 4), orDash(device.label), "-", "-", "-", "-"});
        }
    }
}

void addFileSystem(Table& table, const FileSystemView& fileSystem)
{
    table.add(
        {std::to_string(fileSystem.id),
         orDash(fileSystem.label),
         printable(fileSystem.mountPoint),
         {mountModeText(fileSystem.mode), fileSystem.mode == DDAL_FFS_READ_WRITE ? Colour::Yellow : Colour::None}});
}

void addCage(Table& table, const CageView& cage)
{
    if (!cage.module) {
        table.add({std::to_string(cage.port), orDash(cage.label), "-", "-", "-", "-", "-"});
        return;
    }
    table.add({std::to_string(cage.port), orDash(cage.label), printable(cage.module->vendorName),
               printable(cage.module->partNumber), printable(cage.module->serialNumber),
               std::to_string(cage.module->wavelength) + " nm", std::to_string(cage.module->bitRate) + " Mbd"});
}

} // namespace

std::string boardText(const BoardView& board, const Console& console)
{
    return headText(board) +
           section({"UNIT", "ID", "HW/SW ID", "PRODUCTION CODE", "SERIAL NUMBER"}, board.units, addUnit, console) +
           section({"MODULE", "ID", "PRODUCTION CODE", "SERIAL NUMBER"}, board.modules, addModule, console) +
           bootLoaderText(board.bootLoader, console) +
           section({"FPGA", "NAME", "VERSION", "SLOT", "ROOM", "FLASHED"}, board.fpgas, addFpga, console) +
           section({"RAPIDIO", "ID", "DEVICE", "MEMORY", "ADDRESS", "SIZE", "ON DISK"}, board.rioPorts, addPort,
                   console) +
           section({"FILE SYSTEM", "NAME", "MOUNT POINT", "MODE"}, board.fileSystems, addFileSystem, console) +
           section({"SFP", "NAME", "VENDOR", "PART", "SERIAL NUMBER", "WAVELENGTH", "BIT RATE"}, board.cages, addCage,
                   console);
}

std::string startLocationText(std::int32_t location)
{
    const auto index = static_cast<std::size_t>(location);
    return location >= 0 && index < startLocations.size() ? startLocations[index] : std::to_string(location);
}

std::string mountModeText(std::uint32_t mode)
{
    return mode < mountModes.size() ? mountModes[mode] : std::to_string(mode);
}

} // namespace dorn::tool
