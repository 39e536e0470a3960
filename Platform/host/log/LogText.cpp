// SPDX-License-Identifier: MIT
#include "log/LogText.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>

namespace dorn::host {
namespace {

constexpr std::string_view hexDigits = "0123456789abcdef";
constexpr std::size_t escapeLength = 4; // \xNN
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

unsigned char byteOf(char character)
{
    return static_cast<unsigned char>(character);
}

bool isControl(char character)
{
    return byteOf(character) < 0x20 || byteOf(character) == 0x7F;
}

char* writeEscape(char* to, char character)
{
    *to++ = '\\';
    *to++ = 'x';
    *to++ = hexDigits[byteOf(character) >> 4U];
    *to++ = hexDigits[byteOf(character) & 0xFU];
    return to;
}

char* writeDigits(char* to, std::uint32_t value, int count)
{
    for (int place = count - 1; place >= 0; --place) {
        to[place] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return to + count;
}

/// The calendar's part of a time: "2025-11-21T09:18:01.".
struct SecondText {
    std::int64_t second = std::numeric_limits<std::int64_t>::min();
    std::array<char, 20> text{};
};

void writeSecond(SecondText& to, std::int64_t second)
{
    using namespace std::chrono;
    const auto day = floor<days>(sys_seconds(seconds(second)));
    const year_month_day date(day);
    const auto inDay = static_cast<std::uint32_t>(second - day.time_since_epoch().count() * 86'400LL);
    char* place = to.text.data();
    place = writeDigits(place, static_cast<std::uint32_t>(static_cast<int>(date.year())), 4);
    *place++ = '-';
    place = writeDigits(place, static_cast<unsigned>(date.month()), 2);
    *place++ = '-';
    place = writeDigits(place, static_cast<unsigned>(date.day()), 2);
    *place++ = 'T';
    place = writeDigits(place, inDay / 3600, 2);
    *place++ = ':';
    place = writeDigits(place, inDay / 60 % 60, 2);
    *place++ = ':';
    place = writeDigits(place, inDay % 60, 2);
    *place = '.';
    to.second = second;
}

constinit thread_local SecondText lastSecond{};

/// Reads the digits of "dddd"; -1 when there is anything else among them.
std::int64_t readDigits(std::string_view text)
{
    std::int64_t value = 0;
    for (const char character : text) {
        if (character < '0' || character > '9') {
            return -1;
        }
        value = value * 10 + (character - '0');
    }
    return value;
}

/// Whether some byte of eight is a control character: a wrong "yes" is allowed, a wrong "no" is not.
bool mayHaveControl(std::uint64_t bytes)
{
    constexpr std::uint64_t ones = 0x0101'0101'0101'0101;
    constexpr std::uint64_t tops = 0x8080'8080'8080'8080;
    const std::uint64_t below = (bytes - ones * 0x20) & ~bytes;
    const std::uint64_t notDelete = bytes ^ ones * 0x7F;
    return ((below | ((notDelete - ones) & ~notDelete)) & tops) != 0;
}

bool isPlain(std::string_view text)
{
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, text.data() + at, sizeof bytes);
        if (mayHaveControl(bytes)) {
            return false;
        }
    }
    return std::none_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), isControl);
}

std::size_t oneLineLength(char character)
{
    if (!isControl(character) || character == '\t') {
        return 1;
    }
    return character == '\n' || character == '\r' ? 2 : escapeLength;
}

int hexValue(char digit)
{
    const std::size_t value = hexDigits.find(digit);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

} // namespace

char* writeLogTime(char* to, Nanoseconds wall) noexcept
{
    const std::int64_t second = std::chrono::floor<std::chrono::seconds>(wall).count();
    SecondText& cached = lastSecond;
    if (cached.second != second) {
        writeSecond(cached, second);
    }
    std::memcpy(to, cached.text.data(), cached.text.size());
    const std::int64_t fraction = wall.count() - second * nanosecondsPerSecond;
    to = writeDigits(to + cached.text.size(), static_cast<std::uint32_t>(fraction / 1000), 6);
    *to++ = 'Z';
    return to;
}

std::optional<Nanoseconds> parseLogTime(std::string_view text) noexcept
{
    using namespace std::chrono;
    constexpr std::string_view shape = "dddd-dd-ddTdd:dd:dd.ddddddZ";
    static_assert(shape.size() == logTimeLength);
    if (text.size() != shape.size()) {
        return std::nullopt;
    }
    for (std::size_t at = 0; at < shape.size(); ++at) {
        const bool isDigit = text[at] >= '0' && text[at] <= '9';
        if (shape[at] == 'd' ? !isDigit : text[at] != shape[at]) {
            return std::nullopt;
        }
    }
    const auto part = [text](std::size_t at, std::size_t size) { return readDigits(text.substr(at, size)); };
    const year_month_day date(year(static_cast<int>(part(0, 4))), month(static_cast<unsigned>(part(5, 2))),
                              day(static_cast<unsigned>(part(8, 2))));
    constexpr year first{1970}, last{2261}; // what a 64-bit count of nanoseconds holds
    if (!date.ok() || date.year() < first || date.year() > last || part(11, 2) > 23 || part(14, 2) > 59 ||
        part(17, 2) > 59) {
        return std::nullopt;
    }
    return sys_days(date).time_since_epoch() + hours(part(11, 2)) + minutes(part(14, 2)) + seconds(part(17, 2)) +
           microseconds(part(20, 6));
}

char* writeLogName(char* to, std::size_t room, std::string_view name) noexcept
{
    if (name.empty()) {
        *to++ = '-';
        return to;
    }
    const char* const end = to + room;
    for (const char character : name) {
        const bool escaped = isControl(character) || character == ' ' || character == '\\' || name == "-";
        if (static_cast<std::size_t>(end - to) < (escaped ? escapeLength : 1)) {
            break;
        }
        if (escaped) {
            to = writeEscape(to, character);
        } else {
            *to++ = character;
        }
    }
    return to;
}

std::string parseLogName(std::string_view field)
{
    if (field == "-") {
        return {};
    }
    std::string name;
    for (std::size_t at = 0; at < field.size(); ++at) {
        const std::string_view escape = field.substr(at, escapeLength);
        const bool isEscape = escape.size() == escapeLength && escape.starts_with("\\x");
        const int high = isEscape ? hexValue(escape[2]) : -1;
        const int low = isEscape ? hexValue(escape[3]) : -1;
        if (high >= 0 && low >= 0) {
            name += static_cast<char>(high << 4 | low);
            at += escapeLength - 1;
        } else {
            name += field[at];
        }
    }
    return name;
}

std::size_t oneLineLength(std::string_view text) noexcept
{
    if (isPlain(text)) {
        return text.size();
    }
    std::size_t length = 0;
    for (const char character : text) {
        length += oneLineLength(character);
    }
    return length;
}

char* writeOneLine(char* to, std::string_view text) noexcept
{
    for (const char character : text) {
        switch (oneLineLength(character)) {
        case 1:
            *to++ = character;
            break;
        case 2:
            *to++ = '\\';
            *to++ = character == '\n' ? 'n' : 'r';
            break;
        default:
            to = writeEscape(to, character);
        }
    }
    return to;
}

} // namespace dorn::host
