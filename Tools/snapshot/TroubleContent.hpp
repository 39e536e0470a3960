// SPDX-License-Identifier: MIT
/// @file TroubleContent.hpp
/// What is in a troubleshooting file.
#pragma once

#include "trbl/TroubleCollection.hpp"

#include <cstdint>
#include <string>

namespace dorn::tool {

struct TroubleContent {
    bool isThere = false;
    std::string bytes;        ///< the latest 16 MiB
    std::int64_t changed = 0; ///< seconds since the epoch
    std::string remark;       ///< why it is not there, or not as it should be
};

/// Reads a file that has been collected, below the board root. Of one that was not stored in time, or not with success,
/// nothing is read: it may be half a file.
TroubleContent readTroubleFile(const host::CollectedFile& collected);

} // namespace dorn::tool
