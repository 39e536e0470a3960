// SPDX-License-Identifier: MIT
/// @file PlatformBlock.hpp
/// Memory of the platform that ends with its owner.
#pragma once

#include "AaMem.h"

#include <cstdint>
#include <memory>

namespace vel::hwapi::common {

/// Gives memory of the platform back.
struct BlockRelease {
    /// @param block not null; from AaMemMallocDbg()
    void operator()(void* block) const { AaMemUnRefDbg(block, __FILE__, __LINE__); }
};
/// Memory of the platform that is given back with its holder.
template <class T>
using PlatformBlock = std::unique_ptr<T, BlockRelease>;

/// Allocates an array that is not initialised; null when there is no memory for it.
template <class Element>
Element* allocateArray(std::uint64_t length)
{
    if (length > UINT32_MAX / sizeof(Element)) {
        return nullptr;
    }
    const auto size = static_cast<std::uint32_t>(length * sizeof(Element));
    return static_cast<Element*>(AaMemMallocDbg(size, __FILE__, __LINE__));
}

} // namespace vel::hwapi::common
