// SPDX-License-Identifier: MIT
/// @file ObsaiLinkModel.hpp
/// An OBSAI link: both ends and the two fibres between them.
#pragma once

#include "LinkMessages.hpp"
#include "ObsaiEnd.hpp"

#include <cstdint>

namespace dorn::examples {

/// The near end is the board's and begins as master; the far end is a radio unit, a slave that is always on. A step
/// stands for as long as an end needs for a change of its state. It takes what the other end sent in the step before.
/// Nothing moves any more when a step has changed nothing and nobody touches the link.
class ObsaiLinkModel {
public:
    /// @param metres length of each fibre
    explicit ObsaiLinkModel(double metres);

    /// Lets a step pass. @return whether anything has changed
    bool step();

    ObsaiEnd& near() { return m_near; }
    const ObsaiEnd& near() const { return m_near; }

    void setBrokenParts(std::uint32_t parts) { m_brokenParts = parts; }
    std::uint32_t brokenParts() const { return m_brokenParts; } ///< ELinkPart

    /// The offset of received master frames: what the way from the far end takes, in periods of 307.2 MHz.
    std::uint32_t pi() const;

private:
    double m_metres;
    std::uint32_t m_brokenParts = 0;
    ObsaiEnd m_near{vel::hwapi::common::bif::baseband::obsai::ELinkAutoSynchronizationMode_Master};
    ObsaiEnd m_far{vel::hwapi::common::bif::baseband::obsai::ELinkAutoSynchronizationMode_Slave};
};

} // namespace dorn::examples
