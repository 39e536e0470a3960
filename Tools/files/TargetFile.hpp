// SPDX-License-Identifier: MIT
/// @file TargetFile.hpp
/// Files of the target, as services open them.
#pragma once

#include "AaFile.h"

#include <memory>

namespace dorn::tool {

struct CloseTargetFile {
    void operator()(AaFile* file) const { AaFileClose(file); }
};
/// Closes itself; null when it cannot be opened, with `errno` set.
using TargetFile = std::unique_ptr<AaFile, CloseTargetFile>;

} // namespace dorn::tool
