// SPDX-License-Identifier: MIT
/// @file CpriNames.hpp
/// Names of what there is of CPRI links; see EnumName.hpp.
#pragma once

#include "boundaryIf/EnumName.hpp"
#include "boundaryIf/baseband/cpri/CpriTypes.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

using bif::nameOf;

/// The names of all line bit rates, for nameOf(): "8x".
constexpr auto namesOf(ECpriLinkRate /*of*/)
{
    return std::to_array<EnumName<ECpriLinkRate>>({
        {ECpriLinkRate_unknown, "unknown"},
        {ECpriLinkRate_1x, "1x"},
        {ECpriLinkRate_2x, "2x"},
        {ECpriLinkRate_4x, "4x"},
        {ECpriLinkRate_8x, "8x"},
        {ECpriLinkRate_10x, "10x"},
    });
}

/// The names of all protocol versions, for nameOf(): "2".
constexpr auto namesOf(ECpriProtocolVersion /*of*/)
{
    return std::to_array<EnumName<ECpriProtocolVersion>>({
        {ECpriProtocolVersion_Unknown, "Unknown"},
        {ECpriProtocolVersion_1, "1"},
        {ECpriProtocolVersion_2, "2"},
    });
}

/// The names of the receiver's states, for nameOf(): "HFNSYNC".
constexpr auto namesOf(ERxLinkState /*of*/)
{
    return std::to_array<EnumName<ERxLinkState>>({
        {ERxLinkState_XACQ1, "XACQ1"},
        {ERxLinkState_XACQ2, "XACQ2"},
        {ERxLinkState_XSYNC1, "XSYNC1"},
        {ERxLinkState_XSYNC2, "XSYNC2"},
        {ERxLinkState_HFNSYNC, "HFNSYNC"},
    });
}

} // namespace vel::hwapi::common::bif::baseband::cpri
