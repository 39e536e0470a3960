// SPDX-License-Identifier: MIT
/// @file Signed32.hpp
/// The numbers of the DSP parameter file.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::dsp {

/// What `strtol` gives where a long has 32 bits, in their unsigned form: beyond them 0x7FFFFFFF or 0x80000000.
/// @param base 10; 0: 16 behind "0x", 8 behind "0", else 10. There is no prefix for base 2, whatever the C library has.
std::uint32_t signed32Of(const char* text, int base);

} // namespace vel::hwapi::common::dsp
