// SPDX-License-Identifier: MIT
/// @file ObsaiTimingSet.hpp
/// A set of timing values that OBSAI links can be put to; its id says which.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::baseband::obsai {

/// Names a set of offsets that links share.
class ObsaiTimingSet {
public:
    /// The set of this id; nothing checks that the board has it.
    explicit ObsaiTimingSet(std::uint32_t timingSetId = 0) : m_timingSetId(timingSetId) {}
    ObsaiTimingSet(const ObsaiTimingSet&) = default;
    ObsaiTimingSet& operator=(const ObsaiTimingSet&) = default;
    virtual ~ObsaiTimingSet() = default;

    /// What the driver calls the set.
    std::uint32_t GetTimingSetId() const { return m_timingSetId; }

private:
    std::uint32_t m_timingSetId;
};

} // namespace vel::hwapi::common::bif::baseband::obsai
