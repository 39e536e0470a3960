// SPDX-License-Identifier: MIT
/// @file RouterTypes.hpp
/// Kinds of messages and routes of the message router that switches traffic between baseband links.
#pragma once

#include <cstdint>

namespace vel::hwapi::basebands::bif::baseband::router {

/// Slot of a message in a frame.
enum EMessageSlot : std::uint32_t {
    EMessageSlot_Data = 0,   ///< samples
    EMessageSlot_Control = 1 ///< control and measurement messages
};

/// How a route puts messages into the frames of its output.
enum ERouteMode : std::uint32_t {
    ERouteMode_Fifo = 1,             ///< in the order of arrival
    ERouteMode_TimestampSumming = 2, ///< by time stamp; samples with the same one are added up
    ERouteMode_Timestamp = 3         ///< by time stamp
};

/// Type of a message, as in the OBSAI RP3 header.
enum EMessageType : std::uint32_t {
    EMessageType_Control = 0,         ///< control of the remote unit
    EMessageType_Measurement = 1,     ///< results of measurements
    EMessageType_WcdmaFdd = 2,        ///< samples, WCDMA with frequency division duplex
    EMessageType_WcdmaTdd = 3,        ///< samples, WCDMA with time division duplex
    EMessageType_GsmEdge = 4,         ///< samples, GSM/EDGE
    EMessageType_Tetra = 5,           ///< samples, TETRA
    EMessageType_Cdma2000 = 6,        ///< samples, CDMA2000
    EMessageType_Wlan = 7,            ///< samples, WLAN
    EMessageType_Loopback = 8,        ///< comes back to its sender
    EMessageType_FrameClockBurst = 9, ///< start of an air frame
    EMessageType_Ethernet = 10,       ///< Ethernet frames
    EMessageType_RttMessage = 11,     ///< round trip time measurement
    EMessageType_802_16 = 12,         ///< samples, IEEE 802.16 (WiMAX)
    EMessageType_VirtualHwreset = 13, ///< resets the remote unit
    EMessageType_Lte = 14,            ///< samples, LTE
    EMessageType_GenericPacket = 15   ///< packets of any kind
};

/// Air interface of an antenna carrier; the LTE ones with their bandwidth in MHz.
enum EAirStandard : std::uint32_t {
    EAirStandard_Wcdma = 0,  ///< WCDMA
    EAirStandard_LTE1_4 = 1, ///< LTE, 1.4 MHz
    EAirStandard_LTE3 = 2,   ///< LTE, 3 MHz
    EAirStandard_LTE5 = 3,   ///< LTE, 5 MHz
    EAirStandard_LTE10 = 4,  ///< LTE, 10 MHz
    EAirStandard_LTE15 = 5,  ///< LTE, 15 MHz
    EAirStandard_LTE20 = 6   ///< LTE, 20 MHz
};

/// How I and Q samples lie in an antenna-carrier container.
enum EIqSampleFormat : std::uint32_t {
    EIqSampleFormat_4x7_1 = 0,
    EIqSampleFormat_2x15_1 = 1,
    EIqSampleFormat_4x8 = 2,
    EIqSampleFormat_2x16 = 3
};

} // namespace vel::hwapi::basebands::bif::baseband::router

/// The router's interfaces name the enumerations as their own.
namespace vel::hwapi::common::bif::baseband::router {

using basebands::bif::baseband::router::EAirStandard;
using basebands::bif::baseband::router::EIqSampleFormat;
using basebands::bif::baseband::router::EMessageSlot;
using basebands::bif::baseband::router::EMessageType;
using basebands::bif::baseband::router::ERouteMode;
using enum EAirStandard;
using enum EIqSampleFormat;
using enum EMessageSlot;
using enum EMessageType;
using enum ERouteMode;

} // namespace vel::hwapi::common::bif::baseband::router
