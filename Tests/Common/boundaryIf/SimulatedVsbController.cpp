// SPDX-License-Identifier: MIT
#include "SimulatedVsbController.hpp"

#include "InvalidParameterException.hpp"

#include <memory>
#include <vector>

namespace dorn::test {

using namespace vel::hwapi::common::bif::baseband::cpri;
using vel::hwapi::common::InvalidParameterException;

struct SimulatedVsbController::Region {
    CpriLink link;
    std::uint32_t id = VsbCallbackParam::INVALID_REGION_ID;
    bool isEgress = false;
    VsbControlWords controlWords;
    bool isEnabled = false;
    VsbDataBytes bytes;     ///< of a hyperframe; none before the first
    bool isWritten = false; ///< and not transmitted yet

    void forgetBytes()
    {
        bytes.clear();
        isWritten = false;
    }
    void disable()
    {
        isEnabled = false;
        forgetBytes();
    }
    bool isVendorSpecific(std::uint32_t pointer) const
    {
        try {
            controlWords.checkVendorSpecific(pointer);
            return true;
        } catch (const InvalidParameterException&) {
            return false;
        }
    }
};

/// What regions of both directions have in common.
template <class Interface>
class SimulatedVsbController::RegionBif : public Interface {
public:
    /// Called with the controller's mutex held, like nothing else here.
    RegionBif(SimulatedVsbController& controller, Region region)
        : m_controller(controller),
          m_region(std::move(region)),
          m_link(controller.m_links[m_region.link.getLinkIdentifier()])
    {
        m_link.regions.emplace(m_region.id, &m_region);
    }
    ~RegionBif() override
    {
        const std::lock_guard lock(m_controller.m_mutex);
        m_link.regions.erase(m_region.id);
    }

    std::uint32_t getRegionId() override { return m_region.id; }
    CpriLink getLink() override { return m_region.link; }

    void setControlWords(const VsbControlWords& controlWords) override
    {
        const std::lock_guard lock(m_controller.m_mutex);
        if (m_region.isEnabled) {
            throw InvalidParameterException("region enabled", __FILE__, __LINE__);
        }
        controlWords.checkVendorSpecific(m_link.pointer);
        m_region.controlWords = controlWords;
    }
    VsbControlWords getControlWords() override
    {
        const std::lock_guard lock(m_controller.m_mutex);
        return m_region.controlWords;
    }

    void enableRegion() override
    {
        const std::lock_guard lock(m_controller.m_mutex);
        m_region.controlWords.checkVendorSpecific(m_link.pointer);
        for (const auto& [id, other] : m_link.regions) {
            if (id != m_region.id && other->isEnabled && other->isEgress == m_region.isEgress &&
                other->controlWords.overlaps(m_region.controlWords)) {
                throw InvalidParameterException("control words in use", __FILE__, __LINE__);
            }
        }
        m_region.isEnabled = true;
    }
    void disableRegion() override
    {
        const std::lock_guard lock(m_controller.m_mutex);
        m_region.disable();
    }
    bool isRegionEnabled() override
    {
        const std::lock_guard lock(m_controller.m_mutex);
        return m_region.isEnabled;
    }

protected:
    SimulatedVsbController& m_controller;
    Region m_region;
    Link& m_link;
};

class SimulatedVsbController::Ingress : public RegionBif<AbstractCpriLinkVsbIngressRegionBif> {
public:
    using RegionBif::RegionBif;
    static constexpr bool isEgress = false;

    bool readBytes(VsbDataBytes& dataBytes) override
    {
        const std::lock_guard lock(m_controller.m_mutex);
        dataBytes = m_region.bytes;
        return !dataBytes.empty();
    }
};

class SimulatedVsbController::Egress : public RegionBif<AbstractCpriLinkVsbEgressRegionBif> {
public:
    using RegionBif::RegionBif;
    static constexpr bool isEgress = true;

    void writeBytes(const VsbDataBytes& dataBytes) override
    {
        const std::lock_guard lock(m_controller.m_mutex);
        if (!m_region.isEnabled) {
            throw InvalidParameterException("region disabled", __FILE__, __LINE__);
        }
        if (dataBytes.size() != m_region.controlWords.getSize(m_link.rate)) {
            throw InvalidParameterException("wrong number of bytes", __FILE__, __LINE__);
        }
        m_region.bytes = dataBytes;
        m_region.isWritten = true;
    }
};

template <class NewRegion>
NewRegion* SimulatedVsbController::create(const CpriLink& link)
{
    const std::lock_guard lock(m_mutex);
    if (m_links[link.getLinkIdentifier()].regions.size() == REGIONS_OF_LINK) {
        return nullptr;
    }
    Region region;
    region.link = link;
    region.id = ++m_lastRegionId;
    region.isEgress = NewRegion::isEgress;
    return new NewRegion(*this, std::move(region));
}

AbstractCpriLinkVsbIngressRegionBif* SimulatedVsbController::createIngressRegion(const CpriLink& link)
{
    return create<Ingress>(link);
}

AbstractCpriLinkVsbEgressRegionBif* SimulatedVsbController::createEgressRegion(const CpriLink& link)
{
    return create<Egress>(link);
}

void SimulatedVsbController::setLinkRate(const CpriLink& link, ECpriLinkRate rate)
{
    const std::lock_guard lock(m_mutex);
    Link& changed = m_links[link.getLinkIdentifier()];
    changed.rate = rate;
    for (const auto& [id, region] : changed.regions) {
        region->forgetBytes();
    }
}

void SimulatedVsbController::setEthernetSubchannelPointer(const CpriLink& link, std::uint32_t pointer)
{
    const std::lock_guard lock(m_mutex);
    Link& changed = m_links[link.getLinkIdentifier()];
    changed.pointer = pointer;
    for (const auto& [id, region] : changed.regions) {
        if (!region->isVendorSpecific(pointer)) {
            region->disable();
        }
    }
}

Hyperframe SimulatedVsbController::transmit(const CpriLink& link)
{
    Hyperframe hyperframe{};
    std::vector<VsbCallbackParam> events;
    {
        const std::lock_guard lock(m_mutex);
        const Link& from = m_links[link.getLinkIdentifier()];
        for (const auto& [id, region] : from.regions) {
            for (std::uint32_t position = 0; region->isEgress && position < region->bytes.size(); ++position) {
                const auto [x, y] = region->controlWords.getIndex(position, from.rate);
                hyperframe[x][y] = region->bytes[position];
            }
            if (region->isWritten) {
                events.emplace_back(id, region->bytes, region->link);
                region->isWritten = false;
            }
        }
    }
    for (VsbCallbackParam& event : events) {
        callCpriVsbBytesTransmittedCallback(event);
    }
    return hyperframe;
}

void SimulatedVsbController::receive(const CpriLink& link, const Hyperframe& hyperframe)
{
    std::vector<VsbCallbackParam> events;
    {
        const std::lock_guard lock(m_mutex);
        const Link& to = m_links[link.getLinkIdentifier()];
        for (const auto& [id, region] : to.regions) {
            if (region->isEgress || !region->isEnabled) {
                continue;
            }
            VsbDataBytes bytes(region->controlWords.getSize(to.rate));
            for (std::uint32_t position = 0; position < bytes.size(); ++position) {
                const auto [x, y] = region->controlWords.getIndex(position, to.rate);
                bytes[position] = hyperframe[x][y];
            }
            if (bytes != region->bytes) {
                region->bytes = bytes;
                events.emplace_back(id, bytes, region->link);
            }
        }
    }
    for (VsbCallbackParam& event : events) {
        callCpriVsbBytesReceivedCallback(event);
    }
}

} // namespace dorn::test
