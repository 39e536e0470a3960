// SPDX-License-Identifier: MIT
/// @file RouterNames.hpp
/// Names of the router's kinds of messages and routes; see EnumName.hpp.
#pragma once

#include "boundaryIf/EnumName.hpp"
#include "boundaryIf/baseband/router/RouterTypes.hpp"

namespace vel::hwapi::basebands::bif::baseband::router {

using common::bif::nameOf;

/// The names of the message slots, for nameOf().
constexpr auto namesOf(EMessageSlot /*of*/)
{
    return std::to_array<common::bif::EnumName<EMessageSlot>>({
        {EMessageSlot_Data, "Data"},
        {EMessageSlot_Control, "Control"},
    });
}

/// The names of the modes, for nameOf().
constexpr auto namesOf(ERouteMode /*of*/)
{
    return std::to_array<common::bif::EnumName<ERouteMode>>({
        {ERouteMode_Fifo, "Fifo"},
        {ERouteMode_TimestampSumming, "TimestampSumming"},
        {ERouteMode_Timestamp, "Timestamp"},
    });
}

/// The names of the message types, for nameOf().
constexpr auto namesOf(EMessageType /*of*/)
{
    return std::to_array<common::bif::EnumName<EMessageType>>({
        {EMessageType_Control, "Control"},
        {EMessageType_Measurement, "Measurement"},
        {EMessageType_WcdmaFdd, "WcdmaFdd"},
        {EMessageType_WcdmaTdd, "WcdmaTdd"},
        {EMessageType_GsmEdge, "GsmEdge"},
        {EMessageType_Tetra, "Tetra"},
        {EMessageType_Cdma2000, "Cdma2000"},
        {EMessageType_Wlan, "Wlan"},
        {EMessageType_Loopback, "Loopback"},
        {EMessageType_FrameClockBurst, "FrameClockBurst"},
        {EMessageType_Ethernet, "Ethernet"},
        {EMessageType_RttMessage, "RttMessage"},
        {EMessageType_802_16, "802_16"},
        {EMessageType_VirtualHwreset, "VirtualHwreset"},
        {EMessageType_Lte, "Lte"},
        {EMessageType_GenericPacket, "GenericPacket"},
    });
}

/// The names of the air standards, for nameOf().
constexpr auto namesOf(EAirStandard /*of*/)
{
    return std::to_array<common::bif::EnumName<EAirStandard>>({
        {EAirStandard_Wcdma, "Wcdma"},
        {EAirStandard_LTE1_4, "LTE1_4"},
        {EAirStandard_LTE3, "LTE3"},
        {EAirStandard_LTE5, "LTE5"},
        {EAirStandard_LTE10, "LTE10"},
        {EAirStandard_LTE15, "LTE15"},
        {EAirStandard_LTE20, "LTE20"},
    });
}

/// The names of the sample formats, for nameOf().
constexpr auto namesOf(EIqSampleFormat /*of*/)
{
    return std::to_array<common::bif::EnumName<EIqSampleFormat>>({
        {EIqSampleFormat_4x7_1, "4x7_1"},
        {EIqSampleFormat_2x15_1, "2x15_1"},
        {EIqSampleFormat_4x8, "4x8"},
        {EIqSampleFormat_2x16, "2x16"},
    });
}

} // namespace vel::hwapi::basebands::bif::baseband::router
