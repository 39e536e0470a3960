// SPDX-License-Identifier: MIT
/// @file CpriTypes.hpp
/// Rates, versions and states of CPRI links, and the bytes of their control words.
#pragma once

#include <cstdint>
#include <vector>

namespace vel::hwapi::common::bif::baseband::cpri {

/// Line bit rate, in multiples of 614.4 Mbit/s.
enum ECpriLinkRate : std::uint32_t {
    ECpriLinkRate_unknown = 0, ///< not set, or not to be had from the hardware
    ECpriLinkRate_1x = 1,      ///< 614.4 Mbit/s
    ECpriLinkRate_2x = 2,      ///< 1228.8 Mbit/s
    ECpriLinkRate_4x = 3,      ///< 2457.6 Mbit/s
    ECpriLinkRate_8x = 4,      ///< 4915.2 Mbit/s
    ECpriLinkRate_10x = 5      ///< 6144.0 Mbit/s
};

/// Protocol version, as in control byte Z.2.0.
enum ECpriProtocolVersion : std::uint32_t {
    ECpriProtocolVersion_Unknown = 0, ///< not set, or not to be had from the hardware
    ECpriProtocolVersion_1 = 1,       ///< not scrambled
    ECpriProtocolVersion_2 = 2        ///< scrambled
};

/// State of a receiver, as in the standard's state diagram of layer 1 synchronisation.
enum ERxLinkState : std::uint32_t {
    ERxLinkState_XACQ1 = 0,  ///< looks for the synchronisation byte (LOF)
    ERxLinkState_XACQ2 = 1,  ///< has seen it once (LOF)
    ERxLinkState_XSYNC1 = 2, ///< finds hyperframes: no LOF from here on
    ERxLinkState_XSYNC2 = 3, ///< has found more of them
    ERxLinkState_HFNSYNC = 4 ///< synchronised to hyperframes and their numbers
};

/// Vendor specific bytes (VSB), in the order in which they pass the link.
using VsbDataBytes = std::vector<std::uint8_t>;

} // namespace vel::hwapi::common::bif::baseband::cpri
