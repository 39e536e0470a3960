// SPDX-License-Identifier: MIT
/// @file LinkNames.hpp
/// Baseband links in words; states as their standards spell them.
#pragma once

#include "LinkMessages.hpp"
#include "NameTable.hpp"

#include <array>

namespace dorn::examples {

constexpr std::array<const char*, ELinkStandard_Cpri + 1> linkStandardNames{"", "OBSAI", "CPRI"};

/// cpri::ERxLinkState
constexpr std::array<const char*, 5> cpriRxStateNames{"XACQ1", "XACQ2", "XSYNC1", "XSYNC2", "HFNSYNC"};

/// obsai::ERxLinkState
constexpr std::array<const char*, 6> obsaiRxStateNames{"UNSYNC",        "WAIT_FOR_SEED",  "WAIT_FOR_ACK",
                                                       "WAIT_FOR_IDLE", "WAIT_FOR_FRAME", "FRAME"};
/// obsai::ETxLinkState
constexpr std::array<const char*, 5> obsaiTxStateNames{"OFF", "IDLE_REQ", "IDLE_ACK", "IDLE", "FRAME"};

/// By bit number: ELinkCondition.
constexpr std::array<const char*, 7> linkConditionNames{"LOS",        "LOF",        "remote LOS",  "remote LOF",
                                                        "remote RAI", "remote SDI", "remote reset"};
/// By bit number: ELinkPart.
constexpr std::array<const char*, 3> linkPartNames{"receive", "transmit", "framing"};
static_assert(allLinkParts == (1U << linkPartNames.size()) - 1);
static_assert(ELinkCondition_RemoteReset == 1U << (linkConditionNames.size() - 1));

/// The name of a link's receive state, whichever the standard; "" for a number that has none.
constexpr const char* linkRxStateName(std::uint32_t standard, std::uint32_t state)
{
    return standard == ELinkStandard_Cpri ? nameIn(cpriRxStateNames, state) : nameIn(obsaiRxStateNames, state);
}

} // namespace dorn::examples
