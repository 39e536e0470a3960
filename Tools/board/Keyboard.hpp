// SPDX-License-Identifier: MIT
/// @file Keyboard.hpp
/// Which key was meant by the bytes that a terminal sends.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace dorn::tool {

/// A key by its letter; escape, Ctrl-C and Ctrl-L by their control characters.
using Key = char;
constexpr Key escapeKey = '\033';
constexpr Key interruptKey = '\003';
constexpr Key redrawKey = '\014';

/// Takes bytes as they come, and gives keys. Keys that send a sequence (arrows, F1) are not used here and give nothing,
/// wherever the sequence was cut. An escape by itself is one that nothing follows.
class Keyboard {
public:
    /// @param bytes what a read has given
    std::vector<Key> keysOf(std::string_view bytes);

private:
    enum class Part { None, Begin, Middle };
    Part m_part = Part::None; ///< of a sequence that has begun
};

} // namespace dorn::tool
