// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkVsbIngressRegionBif.hpp
/// Vendor specific bytes that a CPRI link brings; see AbstractCpriLinkVsbRegionBif.hpp.
#pragma once

#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbRegionBif.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// A region of vendor specific bytes that are received.
class AbstractCpriLinkVsbIngressRegionBif : public AbstractCpriLinkVsbRegionBif {
public:
    /// Replaces what is in @p dataBytes with the bytes that the last complete hyperframe has brought.
    /// @return false, with @p dataBytes empty, when none has come since the region was enabled
    virtual bool readBytes(VsbDataBytes& dataBytes) = 0;

protected:
    AbstractCpriLinkVsbIngressRegionBif() = default;
    /// Passes on the controller's worker.
    explicit AbstractCpriLinkVsbIngressRegionBif(AbstractWorker& worker) : AbstractCpriLinkVsbRegionBif(worker) {}
};

} // namespace vel::hwapi::common::bif::baseband::cpri
