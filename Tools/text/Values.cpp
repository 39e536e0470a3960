// SPDX-License-Identifier: MIT
#include "text/Values.hpp"

#include "Outcome.hpp"
#include "log/LogText.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace dorn::tool {
namespace {

constexpr std::size_t bytesPerLine = 16;

int digitValue(char digit)
{
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const int letter = digit | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

constexpr std::uint64_t greatestSize = std::uint64_t{1} << 40U;

bool isHexPrefixed(const std::string& text)
{
    return text.starts_with("0x") || text.starts_with("0X");
}

char shownCharacter(std::byte byte)
{
    const auto character = static_cast<char>(byte);
    return character >= ' ' && character <= '~' ? character : '.';
}

} // namespace

std::optional<std::uint64_t> readNumber(const std::string& text)
{
    const bool isHex = isHexPrefixed(text);
    const char* const begin = text.data() + (isHex ? 2 : 0);
    const char* const end = text.data() + text.size();
    std::uint64_t value = 0;
    const auto [last, error] = std::from_chars(begin, end, value, isHex ? 16 : 10);
    return error == std::errc() && last == end ? std::optional(value) : std::nullopt;
}

std::uint64_t parseNumber(const std::string& what, const std::string& text, std::uint64_t greatest)
{
    const std::optional<std::uint64_t> value = readNumber(text);
    if (!value) {
        throw UsageError(what + ": '" + text + "' is not a number (decimal, or hexadecimal behind 0x)");
    }
    if (*value > greatest) {
        throw UsageError(what + ": " + text + " is too great; the greatest is " + std::to_string(greatest));
    }
    return *value;
}

std::uint64_t parseSize(const std::string& what, const std::string& text)
{
    constexpr std::string_view units = "KMG";
    constexpr unsigned bitsPerUnit = 10;
    const std::size_t unit = text.empty() ? units.npos : units.find(text.back());
    const unsigned shift = unit == units.npos ? 0 : bitsPerUnit * (static_cast<unsigned>(unit) + 1);
    const std::optional<std::uint64_t> count = readNumber(shift == 0 ? text : text.substr(0, text.size() - 1));
    if (!count || *count > greatestSize >> shift) {
        throw UsageError(what + ": '" + text + "' is not a size (a number of bytes, or of K, M, G, up to 1024G)");
    }
    return *count << shift;
}

std::string sizeText(std::uint64_t bytes)
{
    constexpr std::array units{"B", "KiB", "MiB", "GiB", "TiB"};
    auto value = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (value >= 1024 && unit + 1 < units.size()) {
        value /= 1024;
        ++unit;
    }
    const bool hasDecimal = unit != 0 && value < 9.95;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), hasDecimal ? "%.1f %s" : "%.0f %s", value, units[unit]);
    return text.data();
}

host::Nanoseconds parseSeconds(const std::string& what, const std::string& text)
{
    constexpr double most = 1e6;
    double seconds = -1;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
    if (error != std::errc() || last != end || !(seconds >= 0 && seconds <= most)) {
        throw UsageError(what + ": '" + text + "' is not a number of seconds (0 to 1000000, decimals allowed)");
    }
    return std::chrono::duration_cast<host::Nanoseconds>(std::chrono::duration<double>(seconds));
}

Bytes parseHex(const std::string& what, const std::string& text)
{
    Bytes bytes;
    for (std::size_t at = isHexPrefixed(text) ? 2 : 0; at < text.size();) {
        if (text[at] == ' ' || text[at] == ':') {
            ++at;
            continue;
        }
        const int high = digitValue(text[at]);
        const int low = at + 1 < text.size() ? digitValue(text[at + 1]) : -1;
        if (high < 0 || low < 0) {
            throw UsageError(what + ": '" + text.substr(at, 2) + "' at position " + std::to_string(at + 1) +
                             " is not a byte in two hexadecimal digits");
        }
        bytes.push_back(static_cast<std::byte>(high << 4 | low));
        at += 2;
    }
    return bytes;
}

Bytes bytesOf(const std::string& text)
{
    Bytes bytes(text.size());
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](char character) { return static_cast<std::byte>(character); });
    return bytes;
}

std::string nameOrNumber(std::string_view name, std::uint32_t number)
{
    return name.empty() ? std::to_string(number) : std::string(name);
}

std::string hexNumber(std::uint32_t value, int digits)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%0*X", digits, static_cast<unsigned>(value));
    return text.data();
}

std::string hexText(BytesView bytes)
{
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::byte byte : bytes) {
        text += digits[std::to_integer<unsigned>(byte) >> 4];
        text += digits[std::to_integer<unsigned>(byte) & 0xFU];
    }
    return text;
}

std::string hexDump(BytesView bytes, const std::string& indent)
{
    constexpr std::size_t hexWidth = bytesPerLine * 3 + 2;
    std::string text;
    for (std::size_t begin = 0; begin < bytes.size(); begin += bytesPerLine) {
        std::string hex;
        std::string characters;
        for (const std::byte byte : bytes.subspan(begin, std::min(bytesPerLine, bytes.size() - begin))) {
            hex += characters.size() == bytesPerLine / 2 ? "  " : " ";
            hex += hexText({&byte, 1});
            characters += shownCharacter(byte);
        }
        hex.resize(hexWidth, ' ');
        text += indent + hexNumber(static_cast<std::uint32_t>(begin), 4).substr(2) + " " + hex + " " + characters;
        text += '\n';
    }
    return text;
}

std::string printable(const std::string& text)
{
    std::string line(host::oneLineLength(text), '\0');
    host::writeOneLine(line.data(), text);
    return line;
}

std::string timeText(host::Nanoseconds wall)
{
    std::string text(host::logTimeLength, '\0');
    host::writeLogTime(text.data(), wall);
    return text;
}

std::string shortTimeText(host::Nanoseconds wall)
{
    constexpr std::size_t upToSeconds = 19;
    return wall.count() == 0 ? "-" : timeText(wall).substr(0, upToSeconds) + "Z";
}

} // namespace dorn::tool
