// SPDX-License-Identifier: MIT
#include "board/Keyboard.hpp"

namespace dorn::tool {
namespace {

/// "ESC [" with parameters up to a letter or '~'; "ESC O" and one more.
bool endsSequence(char byte)
{
    return byte >= 0x40 && byte <= 0x7E;
}

} // namespace

std::vector<Key> Keyboard::keysOf(std::string_view bytes)
{
    std::vector<Key> keys;
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        const char byte = bytes[place];
        switch (m_part) {
        case Part::None:
            if (byte != escapeKey) {
                keys.push_back(byte);
            } else if (place + 1 == bytes.size()) {
                keys.push_back(escapeKey); // terminals send a sequence at once
            } else {
                m_part = Part::Begin;
            }
            break;
        case Part::Begin:
            m_part = byte == '[' || byte == 'O' ? Part::Middle : Part::None;
            break;
        case Part::Middle:
            m_part = endsSequence(byte) ? Part::None : Part::Middle;
            break;
        }
    }
    return keys;
}

} // namespace dorn::tool
