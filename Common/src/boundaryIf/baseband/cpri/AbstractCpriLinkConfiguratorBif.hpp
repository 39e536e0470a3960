// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkConfiguratorBif.hpp
/// The CPRI links of the board: which there are, and how each is set. Has no events.
///
/// Links that are returned stay the driver's. FIFO levels and timing deltas are in the ticks of the driver.
#pragma once

#include "AbstractWorker.hpp"
#include "boundaryIf/AbstractBaseBif.hpp"
#include "boundaryIf/baseband/cpri/CpriLink.hpp"
#include "boundaryIf/baseband/cpri/CpriTypes.hpp"

#include <vector>

namespace vel::hwapi::common::bif::baseband::cpri {

class AbstractCpriLinkConfiguratorBif : public AbstractBaseBif {
public:
    virtual void getCpriLinks(std::vector<CpriLink*>& links) = 0;
    virtual std::uint32_t getPhysicalLinkId(const CpriLink& link) = 0;

    virtual void reserveForCpriUse(const CpriLink& link) = 0;
    virtual void freeFromCpriUse(const CpriLink& link) = 0;
    virtual bool isReservedForCpriUse(const CpriLink& link) = 0;

    virtual ECpriLinkRate getLinkRate(const CpriLink& link) = 0;
    virtual void setLinkRate(const CpriLink& link, ECpriLinkRate rate) = 0;
    virtual void getSupportedLinkRates(const CpriLink& link, std::vector<ECpriLinkRate>& rates) = 0;

    virtual ECpriProtocolVersion getProtocolVersion(const CpriLink& link) = 0;
    virtual void setProtocolVersion(const CpriLink& link, ECpriProtocolVersion version) = 0;
    virtual void getSupportedProtocolVersions(const CpriLink& link, std::vector<ECpriProtocolVersion>& versions) = 0;

    virtual std::uint32_t getTxScramblingSeed(const CpriLink& link) = 0;
    virtual void setTxScramblingSeed(const CpriLink& link, std::uint32_t seed) = 0;

    virtual std::uint32_t getCompensationFifoLevel(const CpriLink& link) = 0;
    virtual std::uint32_t getCompensationFifoLevelMax(const CpriLink& link) = 0;
    virtual std::uint32_t getCompensationFifoLevelMin(const CpriLink& link) = 0;
    virtual std::uint32_t getCompensationFifoLevelStepSize(const CpriLink& link) = 0;
    virtual void setCompensationFifoThreshold(const CpriLink& link, std::uint32_t threshold) = 0;
    virtual std::uint32_t getCompensationFifoThreshold(const CpriLink& link) = 0;

    /// The fast C&M channel of the link.
    virtual void enableEthernet(const CpriLink& link) = 0;
    virtual void disableEthernet(const CpriLink& link) = 0;
    virtual bool isEthernetEnabled(const CpriLink& link) = 0;
    /// The pointer p (control byte Z.194.0): the first subchannel of the fast C&M channel, 20 to 63, or 0 for none.
    virtual std::uint32_t getEthernetSubchannelPointer(const CpriLink& link) = 0;
    virtual void setEthernetSubchannelPointer(const CpriLink& link, std::uint32_t pointer) = 0;

    virtual void setTimingSetTxDelta(const CpriLink& link, std::uint32_t delta) = 0;
    virtual std::uint32_t getTimingSetTxDelta(const CpriLink& link) = 0;

protected:
    AbstractCpriLinkConfiguratorBif() = default;
    /// Same: without events, there is nothing for the worker to do.
    explicit AbstractCpriLinkConfiguratorBif(AbstractWorker& /*worker*/) {}
};

} // namespace vel::hwapi::common::bif::baseband::cpri
