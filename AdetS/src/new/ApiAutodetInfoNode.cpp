// SPDX-License-Identifier: MIT
// Where the own board stands in the base station.
#include "new/ApiAutodetInfo.h"

#include "AaSysCom.h"
#include "ddal_devicetree.h"
#include "ddal_rio.h"
#include "new/IdentityCaches.hpp"
#include "new/IdentityLog.hpp"
#include "new/IdentityText.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

using namespace vel::hwapi::adet;

namespace {

constexpr std::uint32_t localUnit = 0;

using NodeMap = std::uint32_t (*)(TAaSysComSicad);

std::uint8_t lookUp(NodeMap nodeMap, TAaSysComNid nid)
{
    return static_cast<std::uint8_t>(nodeMap(AaSysComSicadGet(0, nid)));
}

/// The id by which the node map should know the own node; none when the driver does not tell.
std::optional<TAaSysComNid> nodeId(const char* caller)
{
    const TAaSysComNid own = AaSysComGetOwnNid();
    if (ApiGetLocalUnitType() == EUnitType_Tarn) {
        return own;
    }
    std::uint16_t rioId = 0;
    if (!checkDriver(caller, "ddal_rio_get_own_id", ddal_rio_get_own_id(&rioId))) {
        return std::nullopt;
    }
    return rioId;
}

/// Whether this is a unit whose RapidIO id is not its node id.
bool isOwnNodeIdUnit(const char* caller)
{
    char id[8] = {};
    if (!checkDriver(caller, "ddal_devicetree_get_unit_id",
                     ddal_devicetree_get_unit_id(localUnit, sizeof id - 1, id))) {
        return false;
    }
    return std::ranges::find(OwnNodeIdUnitList, textIn(id, sizeof id)) != std::end(OwnNodeIdUnitList);
}

std::uint8_t ownNumber(const char* caller, NodeMap nodeMap)
{
    std::uint8_t number = 0;
    if (const auto nid = nodeId(caller)) {
        number = lookUp(nodeMap, *nid);
    }
    return isOwnNodeIdUnit(caller) ? lookUp(nodeMap, AaSysComGetOwnNid()) : number;
}

} // namespace

std::uint8_t ApiGetSlotIdFromBoardId(std::uint32_t boardId)
{
    constexpr std::uint32_t subracks = 6;
    constexpr std::array<std::uint8_t, 5> slotOfLowDigit = {0, ADETS_NO_SLOT, 1, 2, 3};
    const std::uint32_t subrack = boardId >> 4;
    const std::uint32_t lowDigit = boardId & 0xF;
    if (subrack < 1 || subrack > subracks || lowDigit >= slotOfLowDigit.size()) {
        return ADETS_NO_SLOT;
    }
    return slotOfLowDigit[lowDigit];
}

std::uint8_t ApiGetCurrentBoard()
{
    return identityCaches().currentBoard.getOr([] { return ownNumber("ApiGetCurrentBoard", AaSysComNmapGetBoard); });
}

std::uint8_t ApiGetCurrentCpu()
{
    return identityCaches().currentCpu.getOr([] { return ownNumber("ApiGetCurrentCpu", AaSysComNmapGetCpu); });
}
