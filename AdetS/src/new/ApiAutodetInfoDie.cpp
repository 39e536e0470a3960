// SPDX-License-Identifier: MIT
// Identity of the main processor's die.
#include "new/ApiAutodetInfo.h"

#include "ddal_devicetree.h"
#include "new/IdentityLog.hpp"
#include "new/TextQuery.hpp"

#include <cstdint>

using namespace vel::hwapi::adet;

namespace {

// Bytes of the buffers, terminating zero included.
constexpr std::uint32_t dieIdSize = 129;
constexpr std::uint32_t dieIdQualitySize = 9;

} // namespace

TBoolean ApiGetDieId(char* buffer, std::uint32_t length)
{
    const auto query = [](char* id, std::uint32_t size) {
        return checkDriver("ApiGetDieId", "ddal_devicetree_get_die_id", ddal_devicetree_get_die_id(size, id));
    };
    return copyQueried<dieIdSize>(query, buffer, length);
}

TBoolean ApiGetDieIdQuality(char* buffer, std::uint32_t length)
{
    const auto query = [](char* quality, std::uint32_t size) {
        return checkDriver("ApiGetDieIdQuality", "ddal_devicetree_get_die_id_quality",
                           ddal_devicetree_get_die_id_quality(size, quality));
    };
    return copyQueried<dieIdQualitySize>(query, buffer, length);
}
