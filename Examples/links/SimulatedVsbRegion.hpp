// SPDX-License-Identifier: MIT
/// @file SimulatedVsbRegion.hpp
/// Regions of vendor specific bytes on simulated CPRI links.
#pragma once

#include "CpriLinks.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbEgressRegionBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbIngressRegionBif.hpp"

#include <cstdint>
#include <vector>

namespace dorn::examples {

/// What regions of both directions do.
/// @tparam Interface the region's boundary interface
template <class Interface>
class SimulatedVsbRegion : public Interface {
public:
    using CpriLink = vel::hwapi::common::bif::baseband::cpri::CpriLink;
    using ControlWords = vel::hwapi::common::bif::baseband::cpri::VsbControlWords;
    using Bytes = vel::hwapi::common::bif::baseband::cpri::VsbDataBytes;
    /// The regions of a direction, on all links. A region is among them as long as it lives.
    using Regions = std::vector<SimulatedVsbRegion*>;

    SimulatedVsbRegion(Regions& regions, CpriLinkModel& model, const CpriLink& link, std::uint32_t id)
        : m_model(model), m_regions(regions), m_link(link), m_id(id)
    {
        m_regions.push_back(this);
    }
    ~SimulatedVsbRegion() override { std::erase(m_regions, this); }

    std::uint32_t getRegionId() override { return m_id; }
    CpriLink getLink() override { return m_link; }
    void setControlWords(const ControlWords& controlWords) override;
    ControlWords getControlWords() override { return m_controlWords; }
    void enableRegion() override;
    void disableRegion() override;
    bool isRegionEnabled() override { return m_isEnabled; }

    /// Looks at the link after a step. @return whether bytes() have been received, or have left, for the first time
    virtual bool look() = 0;
    const Bytes& bytes() const { return m_bytes; }

protected:
    /// The region begins, or ends, with no bytes.
    virtual void reset() { m_bytes.clear(); }

    std::size_t size() const { return m_controlWords.getSize(CpriLinks::rate); }
    ControlWords::ControlByteIndex place(std::size_t position) const
    {
        return m_controlWords.getIndex(static_cast<std::uint32_t>(position), CpriLinks::rate);
    }
    [[noreturn]] static void refuse(const char* why)
    {
        throw vel::hwapi::common::InvalidParameterException(why, __FILE__, __LINE__);
    }

    CpriLinkModel& m_model;
    Bytes m_bytes;

private:
    Regions& m_regions;
    const CpriLink m_link;
    const std::uint32_t m_id;
    ControlWords m_controlWords;
    bool m_isEnabled = false;
};

template <class Interface>
void SimulatedVsbRegion<Interface>::setControlWords(const ControlWords& controlWords)
{
    if (m_isEnabled) {
        refuse("region enabled");
    }
    controlWords.checkVendorSpecific(CpriLinks::ethernetSubchannelPointer);
    m_controlWords = controlWords;
}

template <class Interface>
void SimulatedVsbRegion<Interface>::enableRegion()
{
    if (m_isEnabled) {
        return;
    }
    m_controlWords.checkVendorSpecific(CpriLinks::ethernetSubchannelPointer);
    for (const SimulatedVsbRegion* const other : m_regions) {
        if (other->m_isEnabled && other->m_link == m_link && other->m_controlWords.overlaps(m_controlWords)) {
            refuse("control words in use");
        }
    }
    m_isEnabled = true;
    reset();
}

template <class Interface>
void SimulatedVsbRegion<Interface>::disableRegion()
{
    if (m_isEnabled) {
        m_isEnabled = false;
        reset();
    }
}

/// Takes the bytes that the link brings.
class SimulatedVsbIngressRegion
    : public SimulatedVsbRegion<vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbIngressRegionBif> {
public:
    using SimulatedVsbRegion::SimulatedVsbRegion;
    bool readBytes(Bytes& dataBytes) override;
    bool look() override;
};

/// Has the link take bytes along.
class SimulatedVsbEgressRegion
    : public SimulatedVsbRegion<vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbEgressRegionBif> {
public:
    using SimulatedVsbRegion::SimulatedVsbRegion;
    ~SimulatedVsbEgressRegion() override { disableRegion(); }
    void writeBytes(const Bytes& dataBytes) override;
    bool look() override;

protected:
    void reset() override;

private:
    void put(const Bytes& dataBytes);

    bool m_isNew = false; ///< the bytes have not left yet
};

} // namespace dorn::examples
