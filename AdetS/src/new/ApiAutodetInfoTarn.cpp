// SPDX-License-Identifier: MIT
// What is known of Tarn units alone.
#include "new/ApiAutodetInfo.h"

#include "AaConfigTag.h"
#include "AaMem.h"
#include "ddal_devicetree.h"
#include "ddal_unit.h"
#include "new/IdentityCaches.hpp"
#include "new/IdentityLog.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

using namespace vel::hwapi::adet;

namespace {

struct TarnBoardTypeRow {
    std::int32_t type;  ///< an #ETarnBoardType
    std::uint32_t code; ///< by which the hardware knows it
    char name[28];      ///< for traces; not everywhere the enumerator's
};

constexpr TarnBoardTypeRow tarnBoardTypeList[] = {
    {ETarnBoardType_Single, 1, "ETarnBoardType_Single"},         {ETarnBoardType_Master, 2, "ETarnBoardType_Master"},
    {ETarnBoardType_Slave, 3, "ETarnBoardType_Slave"},           {ETarnBoardType_Pico, 4, "ETarnBoardType_Pico"},
    {ETarnBoardType_Vesper_4x4, 5, "ETarnBoardType_VESPER_4x4"}, {ETarnBoardType_Pico_DB, 6, "ETarnBoardType_Pico_DB"},
    {ETarnBoardType_Single, 7, "ETarnBoardType_Single"},         {ETarnBoardType_Pico_DB, 8, "ETarnBoardType_Pico_DB"},
    {ETarnBoardType_Pico_DB, 9, "ETarnBoardType_Pico_DB"},
};
static_assert(std::size(tarnBoardTypeList) == 9);
static_assert(sizeof(TarnBoardTypeRow) == 36 && offsetof(TarnBoardTypeRow, code) == 4 &&
              offsetof(TarnBoardTypeRow, name) == 8);

constexpr const char* technologyTag = "sys.orv.fpga.technology";

bool isLoadedForWcdma()
{
    void* technology = nullptr;
    std::uint32_t length = 0;
    if (AaConfigTagGet(technologyTag, &technology, &length) != EAaConfigTagStatus_Ok || !technology) {
        return false;
    }
    const bool isWcdma = std::string_view(static_cast<const char*>(technology), length).starts_with("wcdma");
    AaMemUnRefDbg(technology, __FILE__, __LINE__);
    return isWcdma;
}

} // namespace

ETarnBoardType ApiGetTarnBoardType()
{
    const std::uint32_t set = AaConfigRadGetValue(ERadHwapi_BoardType);
    const std::uint32_t code = set != 0 ? set : ddal_unit_get_board();
    const auto* const row = std::ranges::find(tarnBoardTypeList, code, &TarnBoardTypeRow::code);
    if (row == std::end(tarnBoardTypeList)) {
        AaSysLogPrintE(traceSeverity, logFeature,
                       "ApiGetTarnBoardType: returning ETarnBoardType_Unknown (boardType:0x%x)", code);
        return ETarnBoardType_Unknown;
    }
    AaSysLogPrintE(traceSeverity, logFeature, "ApiGetTarnBoardType: boardType = 0x%x, tarn board type = %d (%s)", code,
                   row->type, row->name);
    return static_cast<ETarnBoardType>(row->type);
}

EModuleVersion ApiGetTarnModuleVersion()
{
    switch (ApiGetTarnBoardType()) {
    case ETarnBoardType_Single:
    case ETarnBoardType_Pico:
    case ETarnBoardType_Pico_DB:
        return EModuleVersion_Tarn;
    case ETarnBoardType_Master:
        return EModuleVersion_Tarn_Master;
    case ETarnBoardType_Slave:
        return EModuleVersion_Tarn_Slave;
    case ETarnBoardType_Vesper_4x4:
        return EModuleVersion_Vesper_4X4;
    case ETarnBoardType_Unknown:
        break;
    }
    return EModuleVersion_Unknown;
}

ETarnRatType ApiGetLocalTarnRatType()
{
    auto& cache = identityCaches().ratType;
    if (const ETarnRatType kept = cache.get(); kept != ETarnRatType_Unknown) {
        return kept;
    }
    if (ApiGetLocalUnitType() != EUnitType_Tarn) {
        return ETarnRatType_Unknown;
    }
    if (isLoadedForWcdma()) {
        cache.keep(ETarnRatType_Wcdma);
        return ETarnRatType_Wcdma;
    }
    ddal_xcvr_hw_capability capability{};
    if (ddal_devicetree_get_xcvr_hw_capability(&capability) != DDAL_OK) {
        return ETarnRatType_FDLte; // the best guess until the driver answers
    }
    const bool isTimeDivision = (capability.words[0] & DDAL_XCVR_TD_LTE) != 0;
    const ETarnRatType rat = isTimeDivision ? ETarnRatType_TDLte : ETarnRatType_FDLte;
    cache.keep(rat);
    return rat;
}
