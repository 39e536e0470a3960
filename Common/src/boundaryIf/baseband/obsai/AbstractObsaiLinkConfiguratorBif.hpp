// SPDX-License-Identifier: MIT
/// @file AbstractObsaiLinkConfiguratorBif.hpp
/// The OBSAI links of the board: which there are, their rates and their timing. Has no events.
///
/// Links and timing sets that are returned stay the driver's. Offsets and pi values are in the ticks of the driver.
#pragma once

#include "AbstractWorker.hpp"
#include "boundaryIf/AbstractBaseBif.hpp"
#include "boundaryIf/baseband/obsai/AbstractObsaiLink.hpp"
#include "boundaryIf/baseband/obsai/ObsaiTimingSet.hpp"
#include "boundaryIf/baseband/obsai/ObsaiTypes.hpp"

#include <vector>

namespace vel::hwapi::common::bif::baseband::obsai {

/// What a driver of OBSAI links offers for setting them up; it raises no events.
class AbstractObsaiLinkConfiguratorBif : public AbstractBaseBif {
public:
    /// Fills @p links with the board's links of this type.
    virtual void getObsaiLinks(EObsaiLinkType type, std::vector<AbstractObsaiLink*>& links) = 0;
    /// Fills @p sets with the timing sets that links can be put to.
    virtual void getTimingSets(std::vector<ObsaiTimingSet*>& sets) = 0;
    /// @{
    /// The line rate, and those that the link can have.
    virtual EObsaiLinkRate getLinkRate(const AbstractObsaiLink& link) = 0;
    virtual void getSupportedLinkRates(const AbstractObsaiLink& link, std::vector<EObsaiLinkRate>& rates) = 0;
    virtual void setLinkRate(const AbstractObsaiLink& link, EObsaiLinkRate rate) = 0;
    /// @}

    /// The link's number in the driver's and the SFP cages' terms.
    virtual std::uint32_t getPhysicalLinkId(const AbstractObsaiLink& link) = 0;
    /// The greatest offset of received master frames that the link allows.
    virtual std::int32_t getLinkRxMaxOffset(const AbstractObsaiLink& link) = 0;
    /// Has the link go by a timing set from now on.
    virtual void setLinkTimingSet(const AbstractObsaiLink& link, const ObsaiTimingSet& set) = 0;
    /// @{
    /// Offset of received (Rx) and sent (Tx) master frames, RP3's pi, for all links of the set.
    virtual void setTimingSetRxPi(const ObsaiTimingSet& set, std::int32_t pi) = 0;
    virtual void setTimingSetTxPi(const ObsaiTimingSet& set, std::int32_t pi) = 0;
    virtual std::int32_t getTimingSetRxPi(const ObsaiTimingSet& set) = 0;
    virtual std::int32_t getTimingSetTxPi(const ObsaiTimingSet& set) = 0;
    /// @}

protected:
    AbstractObsaiLinkConfiguratorBif() = default;
    /// Same: without events, there is nothing for the worker to do.
    explicit AbstractObsaiLinkConfiguratorBif(AbstractWorker& /*worker*/) {}
};

} // namespace vel::hwapi::common::bif::baseband::obsai
