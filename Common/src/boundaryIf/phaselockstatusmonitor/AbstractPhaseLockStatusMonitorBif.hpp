// SPDX-License-Identifier: MIT
/// @file AbstractPhaseLockStatusMonitorBif.hpp
/// Watches whether the board's clocks are locked in phase: each sample of the phase error goes to some monitors, and
/// what a monitor finds changed is an event.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/phaselockstatusmonitor/PhaseLockStatusCallbackParam.hpp"

#include <cstdint>
#include <vector>

namespace vel::hwapi::common::bif::phaselockstatusmonitor {

/// Has samples of the phase error judged by monitors, and tells when one's status changes.
class AbstractPhaseLockStatusMonitorBif : public AbstractBif<PhaseLockStatusCallbackParam> {
public:
    class AbstractPhaseLockStatusMonitor;

    /// Takes phase-lock events; derived from by clients.
    class AbstractPhaseLockStatusCallback : public CallbackFunctor {};

    /// The status of a monitor has changed.
    [[gnu::init_priority(101)]] inline static const std::string PHASE_LOCK_STATUS_MONITOR_EVENT_NAME =
        "PhaseLockStatusMonitorEvent";

    /// Puts a monitor behind those that are there. It stays the caller's, and has to outlive the interface.
    virtual void addPhaseLockStatusMonitor(AbstractPhaseLockStatusMonitor* monitor) = 0;
    /// Gives all monitors a sample.
    virtual void doPhaseLockStatusMonitoring(double phaseError, std::uint64_t time) = 0;

    /// @return the first monitor of this name, in the order in which they were added; null when there is none
    AbstractPhaseLockStatusMonitor* findPhaseLockStatusMonitor(std::string identifier);

    /// Registers who is told of changes; the callback stays the caller's and must outlive the interface.
    void setPhaseLockStatusCallback(AbstractPhaseLockStatusCallback* callback)
    {
        addCallback(PHASE_LOCK_STATUS_MONITOR_EVENT_NAME, callback);
    }

protected:
    AbstractPhaseLockStatusMonitorBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractPhaseLockStatusMonitorBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #PHASE_LOCK_STATUS_MONITOR_EVENT_NAME.
    virtual void callPhaseLockStatusCallback(PhaseLockStatusCallbackParam& parameter)
    {
        callCallback(PHASE_LOCK_STATUS_MONITOR_EVENT_NAME, parameter);
    }

    std::vector<AbstractPhaseLockStatusMonitor*> m_phaseLockStatusMonitors; ///< not owned
};

/// Judges the phase error. How the limit and the thresholds turn samples into a status is up to the concrete monitor.
class AbstractPhaseLockStatusMonitorBif::AbstractPhaseLockStatusMonitor {
public:
    /// A monitor whose status is undefined. @param identifier by which it is found and reports
    AbstractPhaseLockStatusMonitor(std::string identifier, float phaseErrorLimit, std::uint32_t setErrorThreshold,
                                   std::uint32_t unsetErrorThreshold)
        : m_identifier(std::move(identifier)),
          m_phaseErrorLimit(phaseErrorLimit),
          m_setErrorThreshold(setErrorThreshold),
          m_unsetErrorThreshold(unsetErrorThreshold)
    {
    }
    AbstractPhaseLockStatusMonitor(const AbstractPhaseLockStatusMonitor&) = delete;
    AbstractPhaseLockStatusMonitor& operator=(const AbstractPhaseLockStatusMonitor&) = delete;
    virtual ~AbstractPhaseLockStatusMonitor() = default;

    /// What the monitor is found by, and what its events bear.
    std::string getIdentifier() const { return m_identifier; }
    /// What the samples have come to so far; undefined before the first.
    EPhaseLockStatus getStatus() const { return m_status; }

    /// Judges a sample. @return whether the status has changed with it
    virtual bool isPhaseLockStatusChanged(float phaseError, std::uint64_t time) = 0;

    /// Judges by other values from now on. A monitor that remembers samples overrides this to begin anew.
    virtual void setParameters(float phaseErrorLimit, std::uint32_t setErrorThreshold,
                               std::uint32_t unsetErrorThreshold)
    {
        m_phaseErrorLimit = phaseErrorLimit;
        m_setErrorThreshold = setErrorThreshold;
        m_unsetErrorThreshold = unsetErrorThreshold;
    }

protected:
    /// See getIdentifier().
    std::string m_identifier;
    /// The phase error's limit, in the unit of the samples.
    float m_phaseErrorLimit;
    std::uint32_t m_setErrorThreshold;   ///< for EPhaseLockStatus_Exceed to begin
    std::uint32_t m_unsetErrorThreshold; ///< for it to end
    /// See getStatus().
    EPhaseLockStatus m_status = EPhaseLockStatus_Undefined;
};

inline AbstractPhaseLockStatusMonitorBif::AbstractPhaseLockStatusMonitor*
AbstractPhaseLockStatusMonitorBif::findPhaseLockStatusMonitor(std::string identifier)
{
    for (AbstractPhaseLockStatusMonitor* const monitor : m_phaseLockStatusMonitors) {
        if (monitor->getIdentifier() == identifier) {
            return monitor;
        }
    }
    return nullptr;
}

} // namespace vel::hwapi::common::bif::phaselockstatusmonitor
