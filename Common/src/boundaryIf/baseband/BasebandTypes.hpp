// SPDX-License-Identifier: MIT
/// @file BasebandTypes.hpp
/// What kinds of baseband links there are.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::baseband {

enum EBasebandLinkType : std::uint32_t {
    EBasebandLinkType_Undefined = 0,
    EBasebandLinkType_Obsai = 1,
    EBasebandLinkType_Cpri = 2
};

} // namespace vel::hwapi::common::bif::baseband
