// SPDX-License-Identifier: MIT
/// @file PhaseLockMonitor.hpp
/// A monitor that tells, with hysteresis, whether the phase error keeps within its limit.
#pragma once

#include "boundaryIf/phaselockstatusmonitor/AbstractPhaseLockStatusMonitorBif.hpp"

namespace dorn::examples {

/// A sample is *beyond* the limit when its magnitude is greater than the limit, or when it is not a number, and
/// *within* it otherwise; one that is exactly at the limit is within.
///
/// 1. `EPhaseLockStatus_Exceed` begins with the sample that is the set threshold's number in a row beyond the limit.
/// 2. `EPhaseLockStatus_Ok` begins with the sample that is the unset threshold's number in a row within the limit.
/// 3. In between the status stays what it is: one sample of the other kind begins the count anew. From the first sample
///    until one of both counts is reached it is `EPhaseLockStatus_Undefined`.
///
/// A threshold of 0 acts like 1. setParameters() forgets the row, not the status: what was Ok is so until enough
/// samples have exceeded the new limit. Samples count, not their times: the caller takes them at a steady pace.
class PhaseLockMonitor : public vel::hwapi::common::bif::phaselockstatusmonitor::AbstractPhaseLockStatusMonitorBif::
                             AbstractPhaseLockStatusMonitor {
public:
    /// @param identifier what events call it
    /// @param limit nanoseconds
    /// @param setThreshold samples in a row beyond the limit
    /// @param unsetThreshold samples in a row within the limit
    using AbstractPhaseLockStatusMonitor::AbstractPhaseLockStatusMonitor;

    bool isPhaseLockStatusChanged(float phaseError, std::uint64_t time) override;
    void setParameters(float limit, std::uint32_t setThreshold, std::uint32_t unsetThreshold) override;

private:
    bool m_isRowBeyond = false; ///< of which kind the samples of the row are
    std::uint32_t m_row = 0;    ///< samples of this kind up to the latest
};

} // namespace dorn::examples
