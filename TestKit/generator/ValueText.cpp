// SPDX-License-Identifier: MIT
#include "generator/ValueText.hpp"

#include <array>
#include <span>
#include <string_view>

namespace dorn::testkit {
namespace {

constexpr std::array<std::string_view, 8> words{"on", "off", "amber", "Zürich", "10 °C", "north", "µs", "спутник"};
constexpr std::array<std::string_view, 5> specialTexts{"&", "<", ">", "\"", "'"};

std::string digits(RandomNumbers& random, std::size_t count)
{
    std::string text;
    while (text.size() < count) {
        text += static_cast<char>('0' + random.below(10));
    }
    return text;
}

std::string sentence(RandomNumbers& random, std::size_t greatest)
{
    std::string text;
    for (;;) {
        const std::string_view word = random.oneOf(std::span<const std::string_view>(words));
        if (text.size() + word.size() + 1 > greatest) {
            return text;
        }
        text += text.empty() ? "" : " ";
        text += word;
    }
}

void insertSpecial(RandomNumbers& random, std::string& text)
{
    const std::string_view special = random.oneOf(std::span<const std::string_view>(specialTexts));
    if (random.oneIn(2)) {
        text.insert(0, special);
    } else {
        text += special;
    }
}

std::string_view escapeOf(char character)
{
    switch (character) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return {};
    }
}

} // namespace

std::string valueText(RandomNumbers& random, std::uint32_t averageBytes, SpecialCharacters specials)
{
    const auto bytes = static_cast<std::size_t>(random.around(averageBytes));
    std::string text = random.oneIn(2) ? digits(random, bytes) : sentence(random, bytes);
    if (specials != SpecialCharacters::None && random.oneIn(6)) {
        const std::uint64_t count = specials == SpecialCharacters::Any ? 1 + random.below(3) : 1;
        for (std::uint64_t inserted = 0; inserted < count; ++inserted) {
            insertSpecial(random, text);
        }
    }
    return text;
}

std::string escaped(const std::string& text)
{
    std::string result;
    result.reserve(text.size());
    for (const char character : text) {
        const std::string_view escape = escapeOf(character);
        if (escape.empty()) {
            result += character;
        } else {
            result += escape;
        }
    }
    return result;
}

} // namespace dorn::testkit
