// SPDX-License-Identifier: MIT
#include "dsp/Signed32.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace vel::hwapi::common::dsp {
namespace {

/// The base that the digits ask for. Not asked of the C library: younger ones take "0b" for base 2.
int baseOf(const char* text)
{
    const char* const sign = text + std::strspn(text, " \t\n\v\f\r");
    const char* const digits = sign + (*sign == '-' || *sign == '+' ? 1 : 0);
    if (*digits != '0') {
        return 10;
    }
    return digits[1] == 'x' || digits[1] == 'X' ? 16 : 8;
}

} // namespace

std::uint32_t signed32Of(const char* text, int base)
{
    const long long value =
        std::strtoll(text, nullptr, base != 0 ? base : baseOf(text)); // more than 32 bits everywhere
    return static_cast<std::uint32_t>(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
}

} // namespace vel::hwapi::common::dsp
