// SPDX-License-Identifier: MIT
/// @file PhaseLockMonitoring.hpp
/// Gives samples of the phase error to monitors and tells what they find.
#pragma once

#include "boundaryIf/phaselockstatusmonitor/AbstractPhaseLockStatusMonitorBif.hpp"

namespace dorn::examples {

/// Raises "PhaseLockStatusMonitorEvent" for each monitor whose status changes, in the order in which they were added.
/// For one thread.
class PhaseLockMonitoring : public vel::hwapi::common::bif::phaselockstatusmonitor::AbstractPhaseLockStatusMonitorBif {
public:
    /// @param worker delivers the events once the interface has been initialized
    explicit PhaseLockMonitoring(vel::hwapi::common::AbstractWorker& worker) : AbstractPhaseLockStatusMonitorBif(worker)
    {
    }

    /// @throws InvalidParameterException "monitor null" when it is null.
    void addPhaseLockStatusMonitor(AbstractPhaseLockStatusMonitor* monitor) override;
    /// @param phaseError nanoseconds
    /// @param time milliseconds since power-on
    void doPhaseLockStatusMonitoring(double phaseError, std::uint64_t time) override;
};

} // namespace dorn::examples
