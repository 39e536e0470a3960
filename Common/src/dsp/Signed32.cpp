// SPDX-License-Identifier: MIT
#include "dsp/Signed32.hpp"

#include <algorithm>
#include <cstdlib>

namespace vel::hwapi::common::dsp {

std::uint32_t signed32Of(const char* text, int base)
{
    const long long value = std::strtoll(text, nullptr, base); // more than 32 bits everywhere
    return static_cast<std::uint32_t>(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
}

} // namespace vel::hwapi::common::dsp
