// SPDX-License-Identifier: MIT
#include "gateway/KeyText.hpp"

#include <limits>

namespace dorn::gateway {
namespace {

constexpr std::string_view alphabet =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ.-:+=^!/*?&<>()[]{}@%$#";
constexpr std::uint32_t base = 85;
constexpr std::size_t groupText = 5;
constexpr std::size_t groupSize = 4;
static_assert(alphabet.size() == base);
static_assert(keySize / groupSize * groupText == keyTextLength);

std::optional<std::uint32_t> groupFromText(std::string_view text)
{
    std::uint64_t value = 0;
    for (const char character : text) {
        const std::size_t digit = alphabet.find(character);
        if (digit == std::string_view::npos) {
            return std::nullopt;
        }
        value = value * base + digit;
    }
    return value <= std::numeric_limits<std::uint32_t>::max() ? std::optional(static_cast<std::uint32_t>(value))
                                                              : std::nullopt;
}

} // namespace

std::optional<KeyBytes> keyFromText(std::string_view text)
{
    if (text.size() != keyTextLength) {
        return std::nullopt;
    }
    KeyBytes bytes{};
    for (std::size_t group = 0; group < keySize / groupSize; ++group) {
        const std::optional<std::uint32_t> value = groupFromText(text.substr(group * groupText, groupText));
        if (!value) {
            return std::nullopt;
        }
        for (std::size_t index = 0; index < groupSize; ++index) {
            bytes[group * groupSize + index] = static_cast<std::uint8_t>(*value >> (8 * (groupSize - 1 - index)));
        }
    }
    return bytes;
}

std::array<char, keyTextLength + 1> keyText(const KeyBytes& bytes)
{
    std::array<char, keyTextLength + 1> text{};
    for (std::size_t group = 0; group < keySize / groupSize; ++group) {
        std::uint32_t value = 0;
        for (std::size_t index = 0; index < groupSize; ++index) {
            value = value << 8 | bytes[group * groupSize + index];
        }
        for (std::size_t index = groupText; index-- > 0; value /= base) {
            text[group * groupText + index] = alphabet[value % base];
        }
    }
    return text;
}

} // namespace dorn::gateway
