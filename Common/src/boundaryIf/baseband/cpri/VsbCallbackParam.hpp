// SPDX-License-Identifier: MIT
/// @file VsbCallbackParam.hpp
/// What an event about vendor specific bytes of a CPRI link tells. Two of them are not compared.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/baseband/cpri/CpriLink.hpp"
#include "boundaryIf/baseband/cpri/CpriTypes.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// Vendor specific bytes that a region has received or transmitted.
class VsbCallbackParam : public CallbackParam {
public:
    /// The id of no region.
    static constexpr std::uint32_t INVALID_REGION_ID = 0;

    VsbCallbackParam() = default;
    /// Has every field set.
    VsbCallbackParam(std::uint32_t regionId, const VsbDataBytes& dataBytes, const CpriLink& link)
        : m_regionId(regionId), m_dataBytes(dataBytes), m_link(link)
    {
    }

    /// The region whose bytes have been received or transmitted.
    std::uint32_t getRegionId() const { return m_regionId; }
    /// INVALID_REGION_ID names no region.
    void setRegionId(std::uint32_t regionId) { m_regionId = regionId; }

    /// Replaces what is in @p dataBytes with a copy of the bytes.
    void getDataBytes(VsbDataBytes& dataBytes) const { dataBytes = m_dataBytes; }
    /// Copies @p dataBytes.
    void setDataBytes(const VsbDataBytes& dataBytes) { m_dataBytes = dataBytes; }

    /// A copy of the link, unlike in other parameters.
    CpriLink getLink() const { return m_link; }
    /// Copies @p link.
    void setLink(const CpriLink& link) { m_link = link; }

    bool operator==(const VsbCallbackParam&) const = delete;

private:
    std::uint32_t m_regionId = INVALID_REGION_ID;
    VsbDataBytes m_dataBytes;
    CpriLink m_link;
};

} // namespace vel::hwapi::common::bif::baseband::cpri
