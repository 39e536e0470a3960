// SPDX-License-Identifier: MIT
/// @file TextQuery.hpp
/// Identity strings on their way from the driver to the caller's buffer.
#pragma once

#include "AaTypes.h"
#include "new/IdentityCaches.hpp"
#include "new/IdentityText.hpp"

#include <array>
#include <cstdint>
#include <string_view>

namespace vel::hwapi::adet {

/// Copies the text that @p query writes into a buffer of @p Size bytes, given to it with its size; copies nothing when
/// it returns 0.
template <std::uint32_t Size, typename Query>
TBoolean copyQueried(Query query, char* buffer, std::uint32_t length) noexcept
{
    std::array<char, Size> text{};
    if (query(text.data(), Size) == 0) {
        return 0;
    }
    copyText(textIn(text.data(), Size), buffer, length);
    return 1;
}

/// The same once in the life of the process; from then on the text comes from @p cache.
template <std::uint32_t Size, typename Query>
TBoolean copyCached(CachedText<Size>& cache, Query query, char* buffer, std::uint32_t length) noexcept
{
    if (const std::string_view kept = cache.get(); !kept.empty()) {
        copyText(kept, buffer, length);
        return 1;
    }
    const auto queryAndKeep = [&](char* text, std::uint32_t size) {
        const TBoolean result = query(text, size);
        if (result != 0) {
            cache.keep(text);
        }
        return result;
    };
    return copyQueried<Size>(queryAndKeep, buffer, length);
}

} // namespace vel::hwapi::adet
