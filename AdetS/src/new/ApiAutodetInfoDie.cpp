// SPDX-License-Identifier: MIT
// Identity of the main processor's die.
#include "new/ApiAutodetInfo.h"

#include "ddal_devicetree.h"
#include "new/IdentityLog.hpp"
#include "new/TextQuery.hpp"

#include <cstdint>

using namespace vel::hwapi::adet;

TBoolean ApiGetDieId(char* buffer, std::uint32_t length)
{
    const auto query = [](char* id, std::uint32_t size) {
        return checkDriver("ApiGetDieId", "ddal_devicetree_get_die_id", ddal_devicetree_get_die_id(size, id));
    };
    return copyQueried<129>(query, buffer, length);
}

TBoolean ApiGetDieIdQuality(char* buffer, std::uint32_t length)
{
    const auto query = [](char* quality, std::uint32_t size) {
        return checkDriver("ApiGetDieIdQuality", "ddal_devicetree_get_die_id_quality",
                           ddal_devicetree_get_die_id_quality(size, quality));
    };
    return copyQueried<9>(query, buffer, length);
}
