// SPDX-License-Identifier: MIT
/// @file BasebandNames.hpp
/// Names of kinds of baseband links; see EnumName.hpp.
#pragma once

#include "boundaryIf/EnumName.hpp"
#include "boundaryIf/baseband/BasebandTypes.hpp"

namespace vel::hwapi::common::bif::baseband {

using bif::nameOf;

/// The names of all link types, for nameOf().
constexpr auto namesOf(EBasebandLinkType /*of*/)
{
    return std::to_array<EnumName<EBasebandLinkType>>({
        {EBasebandLinkType_Undefined, "Undefined"},
        {EBasebandLinkType_Obsai, "Obsai"},
        {EBasebandLinkType_Cpri, "Cpri"},
    });
}

} // namespace vel::hwapi::common::bif::baseband
