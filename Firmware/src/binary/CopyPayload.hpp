// SPDX-License-Identifier: MIT
/// @file CopyPayload.hpp
/// Copying the payload of an image.
#pragma once

#include <cstdint>

namespace vel::hwapi::firmware {

/// Whether the copy must not be there yet. Then it is not written through a link that somebody has put in its place.
enum class NewFileOnly { No, Yes };

/// binary_copy_without_trailer(), with that choice.
std::int32_t copyPayload(const char* source, const char* destination, NewFileOnly isNewOnly);

} // namespace vel::hwapi::firmware
