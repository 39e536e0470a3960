// SPDX-License-Identifier: MIT
/// @file BasebandTypes.hpp
/// What kinds of baseband links there are.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::baseband {

/// What runs on a baseband link.
enum EBasebandLinkType : std::uint32_t {
    EBasebandLinkType_Undefined = 0, ///< nobody has said; such a link equals none
    EBasebandLinkType_Obsai = 1,     ///< Open Base Station Architecture Initiative, RP3 and RP3-01
    EBasebandLinkType_Cpri = 2       ///< Common Public Radio Interface
};

} // namespace vel::hwapi::common::bif::baseband
