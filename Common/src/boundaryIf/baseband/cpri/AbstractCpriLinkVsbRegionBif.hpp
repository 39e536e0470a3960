// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkVsbRegionBif.hpp
/// A region of vendor specific bytes (VSB) on a CPRI link: control words of every hyperframe that clients use for what
/// they like. What regions of both directions have in common; has no events, its controller has.
///
/// 1. A controller makes a region, disabled and without control words.
/// 2. setControlWords() says which control words are its own.
/// 3. enableRegion() has the driver receive or transmit them, hyperframe by hyperframe, every 66.67 microseconds.
/// 4. The bytes of a hyperframe are read or written as a whole, in the order in which they pass the link.
/// 5. disableRegion() ends that. Who owns the region deletes it, which disables it first.
///
/// Rules, which a driver keeps with InvalidParameterException: control words are vendor specific for the pointer p of
/// the link, see VsbControlWords; they are set while the region is disabled; two enabled regions of one direction of a
/// link have none in common. When p or the line bit rate of the link changes, the driver disables the regions of the
/// link that no longer obey; the fast C&M channel goes first. The other regions have the size of the new rate, and no
/// bytes until the next are received or written.
///
/// Threads: like those of the controller.
#pragma once

#include "AbstractWorker.hpp"
#include "boundaryIf/AbstractBaseBif.hpp"
#include "boundaryIf/baseband/cpri/CpriLink.hpp"
#include "boundaryIf/baseband/cpri/VsbControlWords.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// What regions of both directions have.
class AbstractCpriLinkVsbRegionBif : public AbstractBaseBif {
public:
    /// What events call the region. Never VsbCallbackParam::INVALID_REGION_ID; not used again while it exists.
    virtual std::uint32_t getRegionId() = 0;
    /// The link that the region was made for.
    virtual CpriLink getLink() = 0;

    /// @throws InvalidParameterException when the region is enabled or the control words are not vendor specific;
    /// nothing has changed then.
    virtual void setControlWords(const VsbControlWords& controlWords) = 0;
    /// The control words set last; none in a new region.
    virtual VsbControlWords getControlWords() = 0;

    /// Does nothing when it is enabled.
    /// @throws InvalidParameterException when it has no control words, when they are not vendor specific, or when
    /// another enabled region of this direction has some of them; it stays disabled then.
    virtual void enableRegion() = 0;
    /// Does nothing when it is disabled.
    virtual void disableRegion() = 0;
    /// Whether its bytes travel now.
    virtual bool isRegionEnabled() = 0;

protected:
    AbstractCpriLinkVsbRegionBif() = default;
    /// Same: without events, there is nothing for the worker to do.
    explicit AbstractCpriLinkVsbRegionBif(AbstractWorker& /*worker*/) {}
};

} // namespace vel::hwapi::common::bif::baseband::cpri
