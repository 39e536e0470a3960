// SPDX-License-Identifier: MIT
// Identity of units.
#include "new/ApiAutodetInfo.h"

#include "ddal_devicetree.h"
#include "new/IdentityCaches.hpp"
#include "new/IdentityLog.hpp"
#include "new/MacroSimulation.hpp"
#include "new/TextQuery.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>

using namespace vel::hwapi::adet;

namespace {

constexpr std::uint32_t localUnit = 0;
constexpr std::uint32_t typeMask = 0xF00000;
constexpr std::uint32_t versionMask = 0xFFF000;
constexpr unsigned versionShift = 12;

} // namespace

TBoolean ApiGetUnitId(std::uint32_t unitId, char* buffer, std::uint32_t length)
{
    // No driver should have to see the length 0 minus 1.
    const std::int32_t result =
        length == 0 ? DDAL_ERROR_INVALID_ARGUMENT : ddal_devicetree_get_unit_id(unitId, length - 1, buffer);
    if (!checkDriver("ApiGetUnitId", "ddal_devicetree_get_unit_id", result)) {
        return 0;
    }
    if (isMacroSimulated()) {
        showMacroUnitId(buffer, length);
    }
    return 1;
}

TBoolean ApiGetLocalUnitId(char* buffer, std::uint32_t length)
{
    const auto query = [](char* id, std::uint32_t size) { return ApiGetUnitId(localUnit, id, size - 1); };
    return copyCached(identityCaches().unitId, query, buffer, length);
}

std::uint32_t ApiGetUnitHwSwId(std::uint32_t unitId)
{
    char id[10] = {};
    if (isMacroSimulated() && ApiGetUnitId(unitId, id, sizeof id) != 0) {
        if (const auto shown = macroHwSwId(textIn(id, sizeof id))) {
            return *shown;
        }
    }
    std::uint32_t hwSwId = 0;
    if (!checkDriver("ApiGetUnitHwSwId", "ddal_devicetree_get_hw_sw_id",
                     ddal_devicetree_get_hw_sw_id(unitId, &hwSwId))) {
        return 0;
    }
    return hwSwId;
}

std::uint32_t ApiGetLocalUnitHwSwId()
{
    return identityCaches().hwSwId.getOr([] { return ApiGetUnitHwSwId(localUnit); });
}

std::uint32_t ApiGetUnitHwId(std::uint32_t unitId)
{
    return (ApiGetUnitHwSwId(unitId) & versionMask) >> versionShift;
}

std::uint32_t ApiGetLocalUnitHwId()
{
    return identityCaches().hwId.getOr([] { return ApiGetUnitHwId(localUnit); });
}

EUnitType ApiGetUnitTypeFromHwSwId(std::uint32_t hwSwId)
{
    const auto* const row = std::ranges::find(UnitTypeList, hwSwId & typeMask, &UnitTypeRow::key);
    if (row == std::end(UnitTypeList)) {
        AaSysLogPrintE(traceSeverity, logFeature, "ApiGetUnitType: returning EUnitType_Unknown (hwswid:0x%x)", hwSwId);
        return EUnitType_Unknown;
    }
    AaSysLogPrintE(traceSeverity, logFeature, "ApiGetUnitType: hwswid = 0x%x, unit type = %d (%s)", hwSwId, row->type,
                   row->name);
    return static_cast<EUnitType>(row->type);
}

EUnitType ApiGetUnitType(std::uint32_t unitId)
{
    return ApiGetUnitTypeFromHwSwId(ApiGetUnitHwSwId(unitId));
}

EUnitType ApiGetLocalUnitType()
{
    return identityCaches().unitType.getOr([] { return ApiGetUnitType(localUnit); });
}

EUnitVersion ApiGetUnitVersionFromHwSwId(std::uint32_t hwSwId)
{
    // The version bits of a Tarn unit are not its version.
    const std::uint32_t mask = ApiGetUnitTypeFromHwSwId(hwSwId) == EUnitType_Tarn ? typeMask : versionMask;
    const auto* const row = std::ranges::find(UnitVersionList, hwSwId & mask, &UnitVersionRow::key);
    if (row == std::end(UnitVersionList)) {
        AaSysLogPrintE(traceSeverity, logFeature, "ApiGetUnitVersion: returning EUnitVersion_Unknown (hwswid:0x%x)",
                       hwSwId);
        return EUnitVersion_Unknown;
    }
    AaSysLogPrintE(traceSeverity, logFeature, "ApiGetUnitVersion: hwswid = 0x%x, unit version = %d (%s)", hwSwId,
                   row->version, row->name);
    return static_cast<EUnitVersion>(row->version);
}

EUnitVersion ApiGetUnitVersion(std::uint32_t unitId)
{
    return ApiGetUnitVersionFromHwSwId(ApiGetUnitHwSwId(unitId));
}

EUnitVersion ApiGetLocalUnitVersion()
{
    return identityCaches().unitVersion.getOr([] { return ApiGetUnitVersion(localUnit); });
}

TBoolean ApiGetUnitProductionCode(std::uint32_t unitId, char* buffer, std::uint32_t length)
{
    if (!checkDriver("ApiGetUnitProductionCode", "ddal_devicetree_get_production_code",
                     ddal_devicetree_get_production_code(unitId, length, buffer))) {
        return 0;
    }
    if (isMacroSimulated()) {
        showMacroProductionCode(ApiGetUnitVersion(unitId), buffer, length);
    }
    return 1;
}

TBoolean ApiGetLocalUnitProductionCode(char* buffer, std::uint32_t length)
{
    const auto query = [](char* code, std::uint32_t size) { return ApiGetUnitProductionCode(localUnit, code, size); };
    return copyCached(identityCaches().productionCode, query, buffer, length);
}

TBoolean ApiGetUnitSerialNumber(std::uint32_t unitId, char* buffer, std::uint32_t length)
{
    return checkDriver("ApiGetUnitSerialNumber", "ddal_devicetree_get_serial_number",
                       ddal_devicetree_get_serial_number(unitId, length, buffer));
}

TBoolean ApiGetLocalUnitSerialNumber(char* buffer, std::uint32_t length)
{
    const auto query = [](char* number, std::uint32_t size) { return ApiGetUnitSerialNumber(localUnit, number, size); };
    return copyCached(identityCaches().serialNumber, query, buffer, length);
}
