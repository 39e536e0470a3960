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

/// What a driver of CPRI links offers for setting them up; it raises no events.
class AbstractCpriLinkConfiguratorBif : public AbstractBaseBif {
public:
    /// Fills @p links with the board's CPRI links.
    virtual void getCpriLinks(std::vector<CpriLink*>& links) = 0;
    /// The link's number in the driver's and the SFP cages' terms.
    virtual std::uint32_t getPhysicalLinkId(const CpriLink& link) = 0;

    /// @{
    /// Whether the physical link behind it is set aside for CPRI.
    virtual void reserveForCpriUse(const CpriLink& link) = 0;
    virtual void freeFromCpriUse(const CpriLink& link) = 0;
    virtual bool isReservedForCpriUse(const CpriLink& link) = 0;
    /// @}

    /// @{
    /// The line bit rate, and those that the link can have.
    virtual ECpriLinkRate getLinkRate(const CpriLink& link) = 0;
    virtual void setLinkRate(const CpriLink& link, ECpriLinkRate rate) = 0;
    virtual void getSupportedLinkRates(const CpriLink& link, std::vector<ECpriLinkRate>& rates) = 0;
    /// @}

    /// @{
    /// The protocol version that is sent in control byte Z.2.0, and those that the link can have.
    virtual ECpriProtocolVersion getProtocolVersion(const CpriLink& link) = 0;
    virtual void setProtocolVersion(const CpriLink& link, ECpriProtocolVersion version) = 0;
    virtual void getSupportedProtocolVersions(const CpriLink& link, std::vector<ECpriProtocolVersion>& versions) = 0;
    /// @}

    /// @{
    /// The seed of the scrambler that protocol version 2 uses.
    virtual std::uint32_t getTxScramblingSeed(const CpriLink& link) = 0;
    virtual void setTxScramblingSeed(const CpriLink& link, std::uint32_t seed) = 0;
    /// @}

    /// @{
    /// Fill level of the compensation FIFO: as it is now, the greatest and the least, and the step between levels.
    virtual std::uint32_t getCompensationFifoLevel(const CpriLink& link) = 0;
    virtual std::uint32_t getCompensationFifoLevelMax(const CpriLink& link) = 0;
    virtual std::uint32_t getCompensationFifoLevelMin(const CpriLink& link) = 0;
    virtual std::uint32_t getCompensationFifoLevelStepSize(const CpriLink& link) = 0;
    /// @}

    /// @{
    /// Threshold of the compensation FIFO, one of its levels.
    virtual void setCompensationFifoThreshold(const CpriLink& link, std::uint32_t threshold) = 0;
    virtual std::uint32_t getCompensationFifoThreshold(const CpriLink& link) = 0;
    /// @}

    /// @{
    /// The fast C&M channel of the link.
    virtual void enableEthernet(const CpriLink& link) = 0;
    virtual void disableEthernet(const CpriLink& link) = 0;
    virtual bool isEthernetEnabled(const CpriLink& link) = 0;
    /// @}

    /// The pointer p (control byte Z.194.0): the first subchannel of the fast C&M channel, 20 to 63, or 0 for none.
    virtual std::uint32_t getEthernetSubchannelPointer(const CpriLink& link) = 0;
    /// Same pointer, for the hyperframes that are sent.
    virtual void setEthernetSubchannelPointer(const CpriLink& link, std::uint32_t pointer) = 0;

    /// @{
    /// The delta of the timing set for the direction of transmission, in the driver's ticks.
    virtual void setTimingSetTxDelta(const CpriLink& link, std::uint32_t delta) = 0;
    virtual std::uint32_t getTimingSetTxDelta(const CpriLink& link) = 0;
    /// @}

protected:
    AbstractCpriLinkConfiguratorBif() = default;
    /// Same: without events, there is nothing for the worker to do.
    explicit AbstractCpriLinkConfiguratorBif(AbstractWorker& /*worker*/) {}
};

} // namespace vel::hwapi::common::bif::baseband::cpri
