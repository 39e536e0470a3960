// SPDX-License-Identifier: MIT
#include "RpramFiles.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"

#include <cstddef>
#include <iterator>

namespace vel::hwapi::reset {
namespace {

struct FieldFile {
    ERP_RAM_field field;
    const char* name; ///< below #RPRAMPath; null when the field has no storage
};

/// In the order of the fields. The names of the ISTI counters begin with an E, those of all others do not.
constexpr FieldFile fieldFiles[] = {
    {ERP_RAM_field_ResetType, "/RP_RAM_field_ResetType.txt"},
    {ERP_RAM_field_user1, "/RP_RAM_field_user1.txt"},
    {ERP_RAM_field_user2, "/RP_RAM_field_user2.txt"},
    {ERP_RAM_field_operatingMode, "/RP_RAM_field_operatingMode.txt"},
    {ERP_RAM_field_testDedicated, "/RP_RAM_field_testDedicated.txt"},
    {ERP_RAM_field_ISTI, "/RP_RAM_field_ISTI.txt"},
    {ERP_RAM_field_HWInitStorage, "/RP_RAM_field_HWInitStorage.txt"},
    {ERP_RAM_field_user5, "/RP_RAM_field_user5.txt"},
    {ERP_RAM_field_user6, "/RP_RAM_field_user6.txt"},
    {ERP_RAM_field_user7, "/RP_RAM_field_user7.txt"},
    {ERP_RAM_field_user8, "/RP_RAM_field_user8.txt"},
    {ERP_RAM_field_user9, "/RP_RAM_field_user9.txt"},
    {ERP_RAM_field_user10, "/RP_RAM_field_user10.txt"},
    {ERP_RAM_field_user11, "/RP_RAM_field_user11.txt"},
    {ERP_RAM_field_user12, "/RP_RAM_field_user12.txt"},
    {ERP_RAM_field_user13, "/RP_RAM_field_user13.txt"},
    {ERP_RAM_field_user14, "/RP_RAM_field_user14.txt"},
    {ERP_RAM_field_user15, "/RP_RAM_field_user15.txt"},
    {ERP_RAM_field_hwapiResetLoopCounter, "/RP_RAM_field_hwapiResetLoopCounter.txt"},
    {ERP_RAM_field_bootExtPostResultAddr, nullptr},
    {ERP_RAM_field_resetLatchStatus, nullptr},
    {ERP_RAM_field_user16, "/RP_RAM_field_user16.txt"},
    {ERP_RAM_field_user17, "/RP_RAM_field_user17.txt"},
    {ERP_RAM_field_user18, "/RP_RAM_field_user18.txt"},
    {ERP_RAM_field_user19, "/RP_RAM_field_user19.txt"},
    {ERP_RAM_field_user20, "/RP_RAM_field_user20.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LCP1, "/RP_RAM_hdbde_PM_sleep_state_LCP1.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LCP2, "/RP_RAM_hdbde_PM_sleep_state_LCP2.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP1, "/RP_RAM_hdbde_PM_sleep_state_LSP1.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP2, "/RP_RAM_hdbde_PM_sleep_state_LSP2.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP3, "/RP_RAM_hdbde_PM_sleep_state_LSP3.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP4, "/RP_RAM_hdbde_PM_sleep_state_LSP4.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP5, "/RP_RAM_hdbde_PM_sleep_state_LSP5.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP6, "/RP_RAM_hdbde_PM_sleep_state_LSP6.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP7, "/RP_RAM_hdbde_PM_sleep_state_LSP7.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP8, "/RP_RAM_hdbde_PM_sleep_state_LSP8.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP9, "/RP_RAM_hdbde_PM_sleep_state_LSP9.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP10, "/RP_RAM_hdbde_PM_sleep_state_LSP10.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP11, "/RP_RAM_hdbde_PM_sleep_state_LSP11.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP12, "/RP_RAM_hdbde_PM_sleep_state_LSP12.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP13, "/RP_RAM_hdbde_PM_sleep_state_LSP13.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP14, "/RP_RAM_hdbde_PM_sleep_state_LSP14.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP15, "/RP_RAM_hdbde_PM_sleep_state_LSP15.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LSP16, "/RP_RAM_hdbde_PM_sleep_state_LSP16.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LBR1, "/RP_RAM_hdbde_PM_sleep_state_LBR1.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LBR2, "/RP_RAM_hdbde_PM_sleep_state_LBR2.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LBR3, "/RP_RAM_hdbde_PM_sleep_state_LBR3.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LBR4, "/RP_RAM_hdbde_PM_sleep_state_LBR4.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LNI1, "/RP_RAM_hdbde_PM_sleep_state_LNI1.txt"},
    {ERP_RAM_hdbde_PM_sleep_state_LNI2, "/RP_RAM_hdbde_PM_sleep_state_LNI2.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LCP1, "/ERP_RAM_hdbde_ISTI_counter_LCP1.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LCP2, "/ERP_RAM_hdbde_ISTI_counter_LCP2.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP1, "/ERP_RAM_hdbde_ISTI_counter_LSP1.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP2, "/ERP_RAM_hdbde_ISTI_counter_LSP2.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP3, "/ERP_RAM_hdbde_ISTI_counter_LSP3.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP4, "/ERP_RAM_hdbde_ISTI_counter_LSP4.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP5, "/ERP_RAM_hdbde_ISTI_counter_LSP5.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP6, "/ERP_RAM_hdbde_ISTI_counter_LSP6.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP7, "/ERP_RAM_hdbde_ISTI_counter_LSP7.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP8, "/ERP_RAM_hdbde_ISTI_counter_LSP8.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP9, "/ERP_RAM_hdbde_ISTI_counter_LSP9.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP10, "/ERP_RAM_hdbde_ISTI_counter_LSP10.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP11, "/ERP_RAM_hdbde_ISTI_counter_LSP11.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP12, "/ERP_RAM_hdbde_ISTI_counter_LSP12.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP13, "/ERP_RAM_hdbde_ISTI_counter_LSP13.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP14, "/ERP_RAM_hdbde_ISTI_counter_LSP14.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP15, "/ERP_RAM_hdbde_ISTI_counter_LSP15.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LSP16, "/ERP_RAM_hdbde_ISTI_counter_LSP16.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LCA1, "/ERP_RAM_hdbde_ISTI_counter_LCA1.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LBI1, "/ERP_RAM_hdbde_ISTI_counter_LBI1.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LBR1, "/ERP_RAM_hdbde_ISTI_counter_LBR1.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LBR2, "/ERP_RAM_hdbde_ISTI_counter_LBR2.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LBR3, "/ERP_RAM_hdbde_ISTI_counter_LBR3.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LBR4, "/ERP_RAM_hdbde_ISTI_counter_LBR4.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LNI1, "/ERP_RAM_hdbde_ISTI_counter_LNI1.txt"},
    {ERP_RAM_hdbde_ISTI_counter_LNI2, "/ERP_RAM_hdbde_ISTI_counter_LNI2.txt"},
    {ERP_RAM_hdbde_test_mode_LCP, "/RP_RAM_hdbde_test_mode_LCP.txt"},
    {ERP_RAM_hdbde_PM_none, nullptr},
};
static_assert(std::size(fieldFiles) == 78);

consteval bool isInOrder()
{
    for (std::size_t index = 0; index < std::size(fieldFiles); ++index) {
        if (static_cast<std::size_t>(fieldFiles[index].field) != index) {
            return false;
        }
    }
    return true;
}
static_assert(isInOrder(), "a field is looked up by its number");

} // namespace

std::string getFileName(ERP_RAM_field field)
{
    const auto index = static_cast<std::size_t>(field);
    if (index >= std::size(fieldFiles) || !fieldFiles[index].name) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RESET, "Invalid RPRAM field %d", field);
        return {};
    }
    return std::string(RPRAMPath) + fieldFiles[index].name;
}

} // namespace vel::hwapi::reset
