// SPDX-License-Identifier: MIT
/// @file ObsaiTypes.hpp
/// Rates, kinds and states of OBSAI reference point 3 (RP3) links.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::baseband::obsai {

/// Line rate, in multiples of 768 Mbit/s.
enum EObsaiLinkRate : std::uint32_t {
    EObsaiLinkRate_unknown = 0, ///< not set, or not to be had from the hardware
    EObsaiLinkRate_1x = 1,      ///< 768 Mbit/s
    EObsaiLinkRate_2x = 2,      ///< 1536 Mbit/s
    EObsaiLinkRate_4x = 3,      ///< 3072 Mbit/s
    EObsaiLinkRate_8x = 4       ///< 6144 Mbit/s
};

/// Reference points of the base station, which links run between.
enum EObsaiLinkType : std::uint32_t {
    EObsaiLinkType_Unknown = 0, ///< not set
    EObsaiLinkType_Rp3 = 1,     ///< between modules of a base station
    EObsaiLinkType_Rp301 = 2,   ///< RP3-01, to a remote radio unit
};

/// State of a receiver.
enum ERxLinkState : std::uint32_t {
    ERxLinkState_Unsync = 0,       ///< finds no signal that it knows
    ERxLinkState_WaitForSeed = 1,  ///< for the seed of the scrambling, at 6144 Mbit/s
    ERxLinkState_WaitForAck = 2,   ///< for the peer's acknowledgement of the seed
    ERxLinkState_WaitForIdle = 3,  ///< for idle messages
    ERxLinkState_WaitForFrame = 4, ///< for the first frames
    ERxLinkState_Frame = 5         ///< synchronised to frames
};

/// State of a transmitter.
enum ETxLinkState : std::uint32_t {
    ETxLinkState_Off = 0,     ///< sends nothing
    ETxLinkState_IdleReq = 1, ///< sends idle requests
    ETxLinkState_IdleAck = 2, ///< acknowledges idle requests
    ETxLinkState_Idle = 3,    ///< sends idle messages
    ETxLinkState_Frame = 4    ///< sends frames
};

/// Whether a link synchronises by itself, and in which role.
enum ELinkAutoSynchronizationMode : std::uint32_t {
    ELinkAutoSynchronizationMode_Disabled = 0, ///< it does not: states are set by hand
    ELinkAutoSynchronizationMode_Master = 1,   ///< it does, and leads
    ELinkAutoSynchronizationMode_Slave = 2     ///< it does, and follows the other end
};

} // namespace vel::hwapi::common::bif::baseband::obsai
