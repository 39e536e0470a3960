// SPDX-License-Identifier: MIT
/// @file SimulatedCpriMaintenance.hpp
/// Layer 1 maintenance of the CPRI links, over simulated ones.
#pragma once

#include "CpriLinks.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkMaintenanceBif.hpp"

#include <array>
#include <cstdint>

namespace dorn::examples {

/// A signal that is enabled stands in every hyperframe; the far end acknowledges a reset and takes note of the others.
/// An end that is switched off has lost nothing. For one thread. Operations throw InvalidParameterException for a link
/// that the board does not have.
class SimulatedCpriMaintenance : public vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkMaintenanceBif {
public:
    using CpriLink = vel::hwapi::common::bif::baseband::cpri::CpriLink;

    /// @param links live as long as the driver
    /// @param worker delivers the events once the driver has been initialized
    SimulatedCpriMaintenance(CpriLinks& links, vel::hwapi::common::AbstractWorker& worker)
        : AbstractCpriLinkMaintenanceBif(worker), m_links(links)
    {
    }

    void enableResetSending(const CpriLink& link) override { set(link, ECpriSignal_Reset, true); }
    void disableResetSending(const CpriLink& link) override { set(link, ECpriSignal_Reset, false); }
    bool isResetSendingEnabled(const CpriLink& link) override { return isSet(link, ECpriSignal_Reset); }
    void enableLofSending(const CpriLink& link) override { set(link, ECpriSignal_Lof, true); }
    void disableLofSending(const CpriLink& link) override { set(link, ECpriSignal_Lof, false); }
    bool isLofSendingEnabled(const CpriLink& link) override { return isSet(link, ECpriSignal_Lof); }
    void enableLosSending(const CpriLink& link) override { set(link, ECpriSignal_Los, true); }
    void disableLosSending(const CpriLink& link) override { set(link, ECpriSignal_Los, false); }
    bool isLosSendingEnabled(const CpriLink& link) override { return isSet(link, ECpriSignal_Los); }
    void enableRaiSending(const CpriLink& link) override { set(link, ECpriSignal_Rai, true); }
    void disableRaiSending(const CpriLink& link) override { set(link, ECpriSignal_Rai, false); }
    bool isRaiSendingEnabled(const CpriLink& link) override { return isSet(link, ECpriSignal_Rai); }
    void enableSdiSending(const CpriLink& link) override { set(link, ECpriSignal_Sdi, true); }
    void disableSdiSending(const CpriLink& link) override { set(link, ECpriSignal_Sdi, false); }
    bool isSdiSendingEnabled(const CpriLink& link) override { return isSet(link, ECpriSignal_Sdi); }

    /// Raises what has changed since it was raised last.
    void tell();

private:
    /// What a link's receiver has lost.
    struct Lost {
        bool signal = false;
        bool frame = false;
    };

    void set(const CpriLink& link, ECpriSignal signal, bool isSending)
    {
        m_links.model(link).setSending(signal, isSending);
    }
    bool isSet(const CpriLink& link, ECpriSignal signal) { return m_links.model(link).isSending(signal); }

    CpriLinks& m_links;
    std::array<Lost, CpriLinks::count> m_told{};
};

} // namespace dorn::examples
