// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkVsbEgressRegionBif.hpp
/// Vendor specific bytes that a CPRI link takes along; see AbstractCpriLinkVsbRegionBif.hpp.
#pragma once

#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbRegionBif.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// A region of vendor specific bytes that are transmitted.
class AbstractCpriLinkVsbEgressRegionBif : public AbstractCpriLinkVsbRegionBif {
public:
    /// Has every hyperframe from the next one on take these bytes along, until others are written. An enabled region
    /// that has not been written since it was enabled transmits zeros.
    /// @throws InvalidParameterException when the region is disabled, or when @p dataBytes are not exactly those of a
    /// hyperframe, VsbControlWords::getSize(); the bytes before stay then.
    virtual void writeBytes(const VsbDataBytes& dataBytes) = 0;

protected:
    AbstractCpriLinkVsbEgressRegionBif() = default;
    /// Passes on the controller's worker.
    explicit AbstractCpriLinkVsbEgressRegionBif(AbstractWorker& worker) : AbstractCpriLinkVsbRegionBif(worker) {}
};

} // namespace vel::hwapi::common::bif::baseband::cpri
