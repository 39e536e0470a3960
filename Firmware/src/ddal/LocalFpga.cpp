// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "firmware/UnitIdentity.hpp"

#include <algorithm>

using namespace vel::hwapi::firmware;

std::int32_t fpga_id_local()
{
    const auto* const row = std::find_if(localFpgaRows.begin(), localFpgaRows.end(),
                                         [](const LocalFpgaRow& one) { return isThisUnit(one.key, one.unit); });
    return row != localFpgaRows.end() ? static_cast<std::int32_t>(row->id) : 0;
}
