// SPDX-License-Identifier: MIT
// Identity of modules.
#include "new/ApiAutodetInfo.h"

#include "ddal_devicetree.h"
#include "new/IdentityCaches.hpp"
#include "new/IdentityLog.hpp"
#include "new/MacroSimulation.hpp"
#include "new/TextQuery.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

using namespace vel::hwapi::adet;

namespace {

// Bytes of the buffers, terminating zero included.
constexpr std::uint32_t moduleIdSize = 8;
constexpr std::uint32_t productionCodeSize = 13;
constexpr std::uint32_t serialNumberSize = 17;

/// What users of external modules take a module for that is not recognised: a version that modules have.
constexpr auto unrecognisedExtModule = static_cast<EModuleVersion>(14);

std::optional<EModuleVersion> findModuleVersion(const char* caller, const char* id)
{
    int index = 0;
    for (const ModuleRow& row : ModuleList) {
        AaSysLogPrintE(traceSeverity, logFeature, "%s(%d) '%s' = '%s'", caller, index, id, row.id);
        if (std::string_view(id) == row.id) {
            return static_cast<EModuleVersion>(row.version);
        }
        ++index;
    }
    return std::nullopt;
}

TBoolean queryModuleId(char* id, std::uint32_t size)
{
    if (!checkDriver("ApiGetModuleId", "ddal_devicetree_get_module_unit_id",
                     ddal_devicetree_get_module_unit_id(size - 1, id))) {
        return 0;
    }
    if (isMacroSimulated()) {
        showMacroModuleId(id, size);
    }
    return 1;
}

TBoolean queryModuleProductionCode(char* code, std::uint32_t size)
{
    if (!checkDriver("ApiGetModuleProductionCode", "ddal_devicetree_get_module_production_code",
                     ddal_devicetree_get_module_production_code(size, code))) {
        return 0;
    }
    if (isMacroSimulated()) {
        showMacroProductionCode(ApiGetModuleVersion(), code, size);
    }
    return 1;
}

TBoolean queryModuleSerialNumber(char* number, std::uint32_t size)
{
    return checkDriver("ApiGetModuleSerialNumber", "ddal_devicetree_get_module_serial_number",
                       ddal_devicetree_get_module_serial_number(size, number));
}

TBoolean queryExtModuleId(std::uint32_t portId, char* id, std::uint32_t size)
{
    if (!checkDriver("ApiGetExtModuleId", "ddal_devicetree_get_ext_module_unit_id", portId,
                     ddal_devicetree_get_ext_module_unit_id(portId, size - 1, id))) {
        return 0;
    }
    if (isMacroSimulated()) {
        showMacroModuleId(id, size);
    }
    return 1;
}

TBoolean queryExtModuleProductionCode(std::uint32_t portId, char* code, std::uint32_t size)
{
    if (!checkDriver("ApiGetExtModuleProductionCode", "ddal_devicetree_get_ext_module_production_code", portId,
                     ddal_devicetree_get_ext_module_production_code(portId, size, code))) {
        return 0;
    }
    if (isMacroSimulated()) {
        showMacroProductionCode(ApiGetExtModuleVersion(portId), code, size);
    }
    return 1;
}

TBoolean queryExtModuleSerialNumber(std::uint32_t portId, char* number, std::uint32_t size)
{
    return checkDriver("ApiGetExtModuleSerialNumber", "ddal_devicetree_get_ext_module_serial_number", portId,
                       ddal_devicetree_get_ext_module_serial_number(portId, size, number));
}

} // namespace

TBoolean ApiGetModuleId(char* buffer, std::uint32_t length)
{
    return copyCached(identityCaches().moduleId, queryModuleId, buffer, length);
}

TBoolean ApiGetExtModuleId(std::uint32_t portId, char* buffer, std::uint32_t length)
{
    const auto query = [portId](char* id, std::uint32_t size) { return queryExtModuleId(portId, id, size); };
    return copyQueried<moduleIdSize>(query, buffer, length);
}

EModuleVersion ApiGetModuleVersion()
{
    return identityCaches().moduleVersion.getOr([] {
        char id[moduleIdSize] = {};
        if (ApiGetModuleId(id, sizeof id) == 0) {
            return EModuleVersion_Unknown;
        }
        return findModuleVersion("ApiGetModuleVersion", id).value_or(EModuleVersion_Unknown);
    });
}

EModuleVersion ApiGetExtModuleVersion(std::uint32_t portId)
{
    char id[moduleIdSize] = {};
    if (ApiGetExtModuleId(portId, id, sizeof id) != 0) {
        if (const auto version = findModuleVersion("ApiGetExtModuleVersion", id)) {
            return *version;
        }
    }
    AaSysLogPrintE(failureSeverity, logFeature,
                   "ApiGetExtModuleVersion(%d): module version not found (name from ddal = %s)",
                   static_cast<int>(portId), id);
    return unrecognisedExtModule;
}

TBoolean ApiGetModuleProductionCode(char* buffer, std::uint32_t length)
{
    return copyCached(identityCaches().moduleProductionCode, queryModuleProductionCode, buffer, length);
}

TBoolean ApiGetExtModuleProductionCode(std::uint32_t portId, char* buffer, std::uint32_t length)
{
    const auto query = [portId](char* code, std::uint32_t size) {
        return queryExtModuleProductionCode(portId, code, size);
    };
    return copyQueried<productionCodeSize>(query, buffer, length);
}

TBoolean ApiGetModuleSerialNumber(char* buffer, std::uint32_t length)
{
    return copyCached(identityCaches().moduleSerialNumber, queryModuleSerialNumber, buffer, length);
}

TBoolean ApiGetExtModuleSerialNumber(std::uint32_t portId, char* buffer, std::uint32_t length)
{
    const auto query = [portId](char* number, std::uint32_t size) {
        return queryExtModuleSerialNumber(portId, number, size);
    };
    return copyQueried<serialNumberSize>(query, buffer, length);
}
