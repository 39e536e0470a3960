// SPDX-License-Identifier: MIT
/// @file IdentityText.hpp
/// Texts in buffers that they may fill: then they are not terminated.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vel::hwapi::adet {

/// The text in a buffer of @p size bytes, without the zeros behind it.
inline std::string_view textIn(const char* buffer, std::size_t size) noexcept
{
    return {buffer, static_cast<std::size_t>(std::find(buffer, buffer + size, '\0') - buffer)};
}

/// Copies a text as `strncpy` does: fills the rest of the buffer with zeros, and terminates nothing that fills it.
inline void copyText(std::string_view text, char* buffer, std::uint32_t length) noexcept
{
    const std::size_t copied = std::min<std::size_t>(text.size(), length);
    std::fill_n(std::copy_n(text.data(), copied, buffer), length - copied, '\0');
}

} // namespace vel::hwapi::adet
