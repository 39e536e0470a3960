// SPDX-License-Identifier: MIT
/// @file ObsaiNames.hpp
/// Names of what there is of OBSAI links; see EnumName.hpp.
#pragma once

#include "boundaryIf/EnumName.hpp"
#include "boundaryIf/baseband/obsai/ObsaiTypes.hpp"

namespace vel::hwapi::common::bif::baseband::obsai {

using bif::nameOf;

/// The names of all line rates, for nameOf(): "8x".
constexpr auto namesOf(EObsaiLinkRate /*of*/)
{
    return std::to_array<EnumName<EObsaiLinkRate>>({
        {EObsaiLinkRate_unknown, "unknown"},
        {EObsaiLinkRate_1x, "1x"},
        {EObsaiLinkRate_2x, "2x"},
        {EObsaiLinkRate_4x, "4x"},
        {EObsaiLinkRate_8x, "8x"},
    });
}

/// The names of all link types, for nameOf(): "Rp301".
constexpr auto namesOf(EObsaiLinkType /*of*/)
{
    return std::to_array<EnumName<EObsaiLinkType>>({
        {EObsaiLinkType_Unknown, "Unknown"},
        {EObsaiLinkType_Rp3, "Rp3"},
        {EObsaiLinkType_Rp301, "Rp301"},
    });
}

/// The names of the receiver's states, for nameOf(): "WaitForFrame".
constexpr auto namesOf(ERxLinkState /*of*/)
{
    return std::to_array<EnumName<ERxLinkState>>({
        {ERxLinkState_Unsync, "Unsync"},
        {ERxLinkState_WaitForSeed, "WaitForSeed"},
        {ERxLinkState_WaitForAck, "WaitForAck"},
        {ERxLinkState_WaitForIdle, "WaitForIdle"},
        {ERxLinkState_WaitForFrame, "WaitForFrame"},
        {ERxLinkState_Frame, "Frame"},
    });
}

/// The names of the transmitter's states, for nameOf(): "IdleAck".
constexpr auto namesOf(ETxLinkState /*of*/)
{
    return std::to_array<EnumName<ETxLinkState>>({
        {ETxLinkState_Off, "Off"},
        {ETxLinkState_IdleReq, "IdleReq"},
        {ETxLinkState_IdleAck, "IdleAck"},
        {ETxLinkState_Idle, "Idle"},
        {ETxLinkState_Frame, "Frame"},
    });
}

/// The names of the modes, for nameOf().
constexpr auto namesOf(ELinkAutoSynchronizationMode /*of*/)
{
    return std::to_array<EnumName<ELinkAutoSynchronizationMode>>({
        {ELinkAutoSynchronizationMode_Disabled, "Disabled"},
        {ELinkAutoSynchronizationMode_Master, "Master"},
        {ELinkAutoSynchronizationMode_Slave, "Slave"},
    });
}

} // namespace vel::hwapi::common::bif::baseband::obsai
