// SPDX-License-Identifier: MIT
#include "new/MacroSimulation.hpp"

#include "AaConfigRad.h"
#include "new/IdentityText.hpp"
#include "rad/ERadHwapi.h"

#include <algorithm>
#include <iterator>

namespace vel::hwapi::adet {
namespace {

template <typename Row, std::size_t Count>
void showMacroId(const Row (&table)[Count], char* buffer, std::uint32_t length)
{
    const std::string_view id = textIn(buffer, length);
    const auto* const row = std::ranges::find_if(table, [id](const Row& each) { return id.starts_with(each.id); });
    if (row != std::end(table)) {
        copyText(row->macroId, buffer, length);
    }
}

template <typename Row, std::size_t Count>
void overwriteProductionCode(const Row (&table)[Count], std::int32_t version, char* buffer, std::uint32_t length)
{
    const auto* const row = std::ranges::find(table, version, &Row::version);
    if (row == std::end(table)) {
        return;
    }
    const std::string_view begin = row->productionCode;
    const std::size_t before = textIn(buffer, length).size();
    std::copy_n(begin.data(), std::min<std::size_t>(begin.size(), length), buffer);
    if (before < begin.size() && begin.size() < length) {
        buffer[begin.size()] = '\0'; // the old terminator has been overwritten
    }
}

} // namespace

bool isMacroSimulated() noexcept
{
    return AaConfigRadGetValue(ERadHwapi_SimulateMacroREC) != 0;
}

void showMacroUnitId(char* buffer, std::uint32_t length) noexcept
{
    showMacroId(MacroUnitList, buffer, length);
}

std::optional<std::uint32_t> macroHwSwId(std::string_view unitId) noexcept
{
    for (const MacroUnitRow& row : MacroUnitList) {
        if (unitId == row.macroId) {
            return row.hwSwId;
        }
    }
    return std::nullopt;
}

void showMacroProductionCode(EUnitVersion version, char* buffer, std::uint32_t length) noexcept
{
    overwriteProductionCode(MacroUnitList, version, buffer, length);
}

void showMacroModuleId(char* buffer, std::uint32_t length) noexcept
{
    showMacroId(MacroModuleList, buffer, length);
}

void showMacroProductionCode(EModuleVersion version, char* buffer, std::uint32_t length) noexcept
{
    overwriteProductionCode(MacroModuleList, version, buffer, length);
}

} // namespace vel::hwapi::adet
