// SPDX-License-Identifier: MIT
/// @file RadWatch.hpp
/// Waits for R&D parameters to change, in whichever process they are set.
#pragma once

#include "config/RadStore.hpp"

#include <map>
#include <vector>

namespace dorn::host {

/// Tells which parameters of the node have other values than when last asked. For one thread.
///
/// It compares values, so two sets between two looks are seen as one change, or none when the second took the first
/// back. While it waits it does not poll.
class RadWatch {
public:
    /// Takes the present values as known.
    explicit RadWatch(RadStore& store);

    /// Waits for changes, at most until @p until.
    /// @return the parameters that have changed, those of domains that have been registered since included, in the
    ///   order of their identifiers; empty when the time has passed.
    std::vector<RadParameter> waitForChanges(Deadline until);

private:
    std::vector<RadParameter> takeChanges();

    RadStore& m_store;
    std::uint32_t m_seen;
    std::map<TAaConfigRadId, std::uint32_t> m_known;
};

} // namespace dorn::host
