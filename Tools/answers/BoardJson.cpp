// SPDX-License-Identifier: MIT
#include "answers/BoardText.hpp"

#include "ddal_devicetree.h"
#include "text/Values.hpp"

namespace dorn::tool {
namespace {

template <class View>
Json orNull(const std::optional<View>& view, Json (*toJson)(const View&))
{
    return view ? toJson(*view) : Json(nullptr);
}

Json numberOrNull(std::optional<std::uint32_t> number)
{
    return number ? Json(*number) : Json(nullptr);
}

Json identityJson(const char* numberName, const IdentityView& identity)
{
    Json json{{numberName, identity.number}, {"unitId", identity.unitId}};
    if (identity.hwSwId) {
        json["hwSwId"] = *identity.hwSwId;
    }
    json["productionCode"] = identity.productionCode;
    json["serialNumber"] = identity.serialNumber;
    return json;
}

Json unitJson(const IdentityView& unit)
{
    return identityJson("unit", unit);
}

Json moduleJson(const IdentityView& module)
{
    return identityJson("port", module);
}

Json processorJson(const ProcessorView& processor)
{
    return {{"dieId", processor.dieId}, {"dieIdQuality", processor.dieIdQuality}};
}

Json transceiversJson(const std::vector<std::uint32_t>& capability)
{
    if (capability.empty()) {
        return nullptr;
    }
    return {{"hwCapability", capability}, {"tdLte", (capability.front() & DDAL_XCVR_TD_LTE) != 0}};
}

Json flashedJson(const board::FlashedImage& image)
{
    return {{"size", image.size},
            {"whole", image.isWhole},
            {"version", numberOrNull(image.version)},
            {"pending", image.isPending}};
}

Json slotJson(const SlotView& slot)
{
    return {{"slot", slot.number}, {"size", slot.size}, {"flashed", orNull(slot.flashed, flashedJson)}};
}

Json bootLoaderJson(const BootLoaderView& loader)
{
    return {{"startLocation", loader.startLocation},
            {"version", loader.version},
            {"size", loader.flash.size},
            {"flashed", orNull(loader.flash.flashed, flashedJson)}};
}

Json fpgaJson(const FpgaView& fpga)
{
    return {
        {"id", fpga.id}, {"label", fpga.label}, {"version", fpga.version}, {"slots", jsonArray(fpga.slots, slotJson)}};
}

Json memoryJson(const MemoryView& memory)
{
    return {{"address", memory.address},
            {"size", memory.size},
            {"label", memory.label},
            {"bytesOnDisk", memory.bytesOnDisk}};
}

Json deviceJson(const RioDeviceView& device)
{
    return {{"id", device.id}, {"label", device.label}, {"memories", jsonArray(device.memories, memoryJson)}};
}

Json portJson(const RioPortView& port)
{
    return {{"port", port.number}, {"ownId", port.ownId}, {"devices", jsonArray(port.devices, deviceJson)}};
}

Json fileSystemJson(const FileSystemView& fileSystem)
{
    return {{"id", fileSystem.id},
            {"label", fileSystem.label},
            {"mountPoint", fileSystem.mountPoint},
            {"mode", fileSystem.mode}};
}

Json sfpModuleJson(const board::SfpModule& module)
{
    return {{"vendorName", module.vendorName},
            {"partNumber", module.partNumber},
            {"serialNumber", module.serialNumber},
            {"wavelengthNanometers", module.wavelength},
            {"bitRateMbd", module.bitRate}};
}

Json cageJson(const CageView& cage)
{
    return {{"port", cage.port}, {"label", cage.label}, {"module", orNull(cage.module, sfpModuleJson)}};
}

} // namespace

Json boardJson(const BoardView& board)
{
    return {{"description", board.description},
            {"model", board.model},
            {"boardCode", board.boardCode},
            {"watchdog", board.hasWatchdog},
            {"resets", board.resets},
            {"lastReset", board.lastReset ? Json(timeText(*board.lastReset)) : Json(nullptr)},
            {"processor", orNull(board.processor, processorJson)},
            {"transceivers", transceiversJson(board.capability)},
            {"units", jsonArray(board.units, unitJson)},
            {"modules", jsonArray(board.modules, moduleJson)},
            {"bootLoader", orNull(board.bootLoader, bootLoaderJson)},
            {"fpgas", jsonArray(board.fpgas, fpgaJson)},
            {"rapidio", jsonArray(board.rioPorts, portJson)},
            {"fileSystems", jsonArray(board.fileSystems, fileSystemJson)},
            {"sfpCages", jsonArray(board.cages, cageJson)}};
}

} // namespace dorn::tool
