// SPDX-License-Identifier: MIT
/// @file OwnedFile.hpp
/// A file of the target that is closed with its owner.
#pragma once

#include "AaFile.h"

#include <memory>

namespace vel::hwapi::firmware {

struct FileCloser {
    void operator()(AaFile* file) const { AaFileClose(file); }
};
using OwnedFile = std::unique_ptr<AaFile, FileCloser>;

} // namespace vel::hwapi::firmware
