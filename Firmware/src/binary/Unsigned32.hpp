// SPDX-License-Identifier: MIT
/// @file Unsigned32.hpp
/// Numbers in the texts of a trailer.
#pragma once

#include <cstdint>

namespace vel::hwapi::firmware {

/// Converts text as `strtoul` does where `unsigned long` has 32 bits: leading white space, a sign, "0x" with base 16,
/// then digits; what is greater than 32 bits is 0xFFFFFFFF, without digits it is 0.
std::uint32_t toUnsigned32(const char* text, int base);

/// Converts text with base 16 when "0x" or "0X" stands anywhere in it, else with base 10.
std::uint32_t numberOf(const char* text);

/// Converts a software version: with base 16 when the text begins with "0x" in small letters, else with base 10.
std::uint32_t softwareVersionOf(const char* text);

} // namespace vel::hwapi::firmware
