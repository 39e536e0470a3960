// SPDX-License-Identifier: MIT
/// @file VsbControlWords.hpp
/// Which control words of a CPRI link's hyperframes carry the vendor specific bytes (VSB) of a region.
///
/// A hyperframe has 256 basic frames, X = 0 to 255, each of which begins with a control word. Subchannel Ns, 0 to 63,
/// is made of the four control words X = Ns + 64 * Xs, Xs = 0 to 3. A control word has a byte (Y) for each multiple of
/// 614.4 Mbit/s of the line bit rate. A byte's place is written Z.X.Y, Z being the number of the hyperframe.
///
/// The subchannels 0 to 15 are for synchronisation, the slow C&M channel and layer 1, or reserved. The fast C&M channel
/// begins with the one that the pointer p names, control byte Z.194.0, 20 to 63; with p = 0 there is none. Those in
/// between are vendor specific: 16 to p - 1, or to 63.
#pragma once

#include "InvalidParameterException.hpp"
#include "boundaryIf/baseband/cpri/CpriTypes.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vel::hwapi::common::bif::baseband::cpri {

/// The control words of some successive subchannels.
class VsbControlWords {
public:
    /// Subchannels of a hyperframe.
    static constexpr std::uint32_t SUBCHANNELS = 64;
    /// Control words of each subchannel, one in every 64th basic frame.
    static constexpr std::uint32_t CONTROL_WORDS_IN_SUBCHANNEL = 4;
    /// Subchannels below are not the vendor's.
    static constexpr std::uint32_t FIRST_VENDOR_SPECIFIC_SUBCHANNEL = 16;
    /// The fast C&M channel may begin here at the lowest; the vendor's bytes end where it begins.
    static constexpr std::uint32_t LOWEST_ETHERNET_SUBCHANNEL_POINTER = 20;

    /// Place of a byte in any hyperframe.
    struct ControlByteIndex {
        std::uint32_t x; ///< basic frame
        std::uint32_t y; ///< byte of its control word
        bool operator==(const ControlByteIndex&) const = default;
    };

    /// None.
    VsbControlWords() = default;
    VsbControlWords(std::uint32_t firstSubchannel, std::uint32_t subchannelCount)
        : m_firstSubchannel(firstSubchannel), m_subchannelCount(subchannelCount)
    {
    }

    /// The first subchannel whose control words these are.
    std::uint32_t getFirstSubchannel() const { return m_firstSubchannel; }
    /// How many successive subchannels these are; 0 for none.
    std::uint32_t getSubchannelCount() const { return m_subchannelCount; }

    /// Bytes of a control word; 0 at an unknown rate.
    static std::uint32_t getControlWordSize(ECpriLinkRate rate);
    /// Bytes in a hyperframe.
    std::uint32_t getSize(ECpriLinkRate rate) const;
    /// Place of the byte that is number @p position, below getSize(), of those that pass the link in a hyperframe.
    ControlByteIndex getIndex(std::uint32_t position, ECpriLinkRate rate) const;

    /// Tells whether both have a subchannel in common.
    bool overlaps(const VsbControlWords& other) const;

    /// @param ethernetSubchannelPointer the pointer p of the link
    /// @throws InvalidParameterException "no control words" when there are none, "control words not vendor specific"
    /// when one of them is in a subchannel that has another use, "invalid pointer p" when p is none.
    void checkVendorSpecific(std::uint32_t ethernetSubchannelPointer) const;

    bool operator==(const VsbControlWords&) const = default;

private:
    std::uint32_t m_firstSubchannel = FIRST_VENDOR_SPECIFIC_SUBCHANNEL;
    std::uint32_t m_subchannelCount = 0;
};

inline std::uint32_t VsbControlWords::getControlWordSize(ECpriLinkRate rate)
{
    switch (rate) {
    case ECpriLinkRate_1x:
        return 1;
    case ECpriLinkRate_2x:
        return 2;
    case ECpriLinkRate_4x:
        return 4;
    case ECpriLinkRate_8x:
        return 8;
    case ECpriLinkRate_10x:
        return 10;
    default:
        return 0;
    }
}

inline std::uint32_t VsbControlWords::getSize(ECpriLinkRate rate) const
{
    return m_subchannelCount * CONTROL_WORDS_IN_SUBCHANNEL * getControlWordSize(rate);
}

inline VsbControlWords::ControlByteIndex VsbControlWords::getIndex(std::uint32_t position, ECpriLinkRate rate) const
{
    const std::uint32_t word = position / getControlWordSize(rate);
    const std::uint32_t subchannel = m_firstSubchannel + word % m_subchannelCount;
    return {subchannel + SUBCHANNELS * (word / m_subchannelCount), position % getControlWordSize(rate)};
}

inline bool VsbControlWords::overlaps(const VsbControlWords& other) const
{
    const std::uint32_t first = std::max(m_firstSubchannel, other.m_firstSubchannel);
    return first - m_firstSubchannel < m_subchannelCount && first - other.m_firstSubchannel < other.m_subchannelCount;
}

inline void VsbControlWords::checkVendorSpecific(std::uint32_t ethernetSubchannelPointer) const
{
    const bool hasFastChannel = ethernetSubchannelPointer != 0;
    if (hasFastChannel &&
        (ethernetSubchannelPointer < LOWEST_ETHERNET_SUBCHANNEL_POINTER || ethernetSubchannelPointer >= SUBCHANNELS)) {
        throw InvalidParameterException("invalid pointer p", __FILE__, __LINE__);
    }
    if (m_subchannelCount == 0) {
        throw InvalidParameterException("no control words", __FILE__, __LINE__);
    }
    const std::uint32_t end = hasFastChannel ? ethernetSubchannelPointer : SUBCHANNELS;
    if (m_firstSubchannel < FIRST_VENDOR_SPECIFIC_SUBCHANNEL || m_firstSubchannel >= end ||
        m_subchannelCount > end - m_firstSubchannel) {
        throw InvalidParameterException("control words not vendor specific", __FILE__, __LINE__);
    }
}

} // namespace vel::hwapi::common::bif::baseband::cpri
