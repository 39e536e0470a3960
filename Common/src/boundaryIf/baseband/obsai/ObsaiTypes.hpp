// SPDX-License-Identifier: MIT
/// @file ObsaiTypes.hpp
/// Rates, kinds and states of OBSAI reference point 3 (RP3) links.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::baseband::obsai {

/// Line rate, in multiples of 768 Mbit/s.
enum EObsaiLinkRate : std::uint32_t {
    EObsaiLinkRate_unknown = 0,
    EObsaiLinkRate_1x = 1, ///< 768 Mbit/s
    EObsaiLinkRate_2x = 2, ///< 1536 Mbit/s
    EObsaiLinkRate_4x = 3, ///< 3072 Mbit/s
    EObsaiLinkRate_8x = 4  ///< 6144 Mbit/s
};

enum EObsaiLinkType : std::uint32_t {
    EObsaiLinkType_Unknown = 0,
    EObsaiLinkType_Rp3 = 1,   ///< between modules of a base station
    EObsaiLinkType_Rp301 = 2, ///< RP3-01, to a remote radio unit
};

/// State of a receiver.
enum ERxLinkState : std::uint32_t {
    ERxLinkState_Unsync = 0,
    ERxLinkState_WaitForSeed = 1, ///< for the seed of the scrambling, at 6144 Mbit/s
    ERxLinkState_WaitForAck = 2,  ///< for the peer's acknowledgement of the seed
    ERxLinkState_WaitForIdle = 3,
    ERxLinkState_WaitForFrame = 4,
    ERxLinkState_Frame = 5 ///< synchronised to frames
};

/// State of a transmitter.
enum ETxLinkState : std::uint32_t {
    ETxLinkState_Off = 0,
    ETxLinkState_IdleReq = 1,
    ETxLinkState_IdleAck = 2,
    ETxLinkState_Idle = 3,
    ETxLinkState_Frame = 4 ///< sends frames
};

/// Whether a link synchronises by itself, and in which role.
enum ELinkAutoSynchronizationMode : std::uint32_t {
    ELinkAutoSynchronizationMode_Disabled = 0,
    ELinkAutoSynchronizationMode_Master = 1,
    ELinkAutoSynchronizationMode_Slave = 2
};

} // namespace vel::hwapi::common::bif::baseband::obsai
