// SPDX-License-Identifier: MIT
/// @file SimulatedObsaiSynchronizer.hpp
/// The synchronizer of the OBSAI links, over simulated ones.
#pragma once

#include "ObsaiLinks.hpp"
#include "boundaryIf/baseband/obsai/AbstractObsaiLinkSynchronizerBif.hpp"

#include <array>

namespace dorn::examples {

/// Measures pi whenever a receiver has got to frames. A state that is set by hand is one that automatic synchronisation
/// goes on from. For one thread. Operations throw InvalidParameterException for a link that the board does not have.
class SimulatedObsaiSynchronizer : public vel::hwapi::common::bif::baseband::obsai::AbstractObsaiLinkSynchronizerBif {
public:
    using AbstractObsaiLink = vel::hwapi::common::bif::baseband::obsai::AbstractObsaiLink;
    using EMode = vel::hwapi::common::bif::baseband::obsai::ELinkAutoSynchronizationMode;
    using ERxLinkState = vel::hwapi::common::bif::baseband::obsai::ERxLinkState;
    using ETxLinkState = vel::hwapi::common::bif::baseband::obsai::ETxLinkState;

    /// @param links live as long as the driver
    /// @param worker delivers the events once the driver has been initialized
    SimulatedObsaiSynchronizer(ObsaiLinks& links, vel::hwapi::common::AbstractWorker& worker)
        : AbstractObsaiLinkSynchronizerBif(worker), m_links(links)
    {
    }

    void setAutoSynchronizationMode(const AbstractObsaiLink& link, EMode mode) override { end(link).setMode(mode); }
    EMode getAutoSynchronizationMode(const AbstractObsaiLink& link) override { return end(link).mode(); }
    void enableLink(const AbstractObsaiLink& link) override { end(link).setEnabled(true); }
    void disableLink(const AbstractObsaiLink& link) override { end(link).setEnabled(false); }
    bool isLinkEnabled(const AbstractObsaiLink& link) override { return end(link).isEnabled(); }
    ERxLinkState getRxLinkSynchronizationState(const AbstractObsaiLink& link) override { return end(link).rxState(); }
    ETxLinkState getTxLinkSynchronizationState(const AbstractObsaiLink& link) override { return end(link).txState(); }
    void setRxLinkSynchronizationState(const AbstractObsaiLink& link, ERxLinkState state) override
    {
        end(link).setRxState(state);
    }
    void setTxLinkSynchronizationState(const AbstractObsaiLink& link, ETxLinkState state) override
    {
        end(link).setTxState(state);
    }

    /// Raises what has changed since it was raised last.
    void tell();

private:
    /// What has been said of a link.
    struct Told {
        ERxLinkState rx{};
        ETxLinkState tx{};
    };

    ObsaiEnd& end(const AbstractObsaiLink& link) { return m_links.model(link).near(); }

    ObsaiLinks& m_links;
    std::array<Told, ObsaiLinks::count> m_told{};
};

} // namespace dorn::examples
