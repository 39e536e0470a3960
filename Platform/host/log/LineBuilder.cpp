// SPDX-License-Identifier: MIT
#include "log/LineBuilder.hpp"

#include "log/LogLine.hpp"
#include "log/LogText.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace dorn::host {
namespace {

constexpr std::size_t maxMark = 48; ///< "... [cut: 2147483647 bytes]" and the line feed
static_assert(logTimeLength + 16 + sizeof LogOrigin::text + maxMark < 512, "a head leaves half of the stack's room");

/// The greatest length up to @p length that ends between two UTF-8 characters.
std::size_t wholeCharacters(const char* text, std::size_t length)
{
    constexpr std::size_t longest = 4;
    std::size_t end = length;
    while (end > 0 && length - end < longest && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
        --end;
    }
    return (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80 ? length : end;
}

char* copy(char* to, std::string_view from)
{
    std::memcpy(to, from.data(), from.size());
    return to + from.size();
}

} // namespace

std::size_t LineBuilder::writeHead(Nanoseconds wall, EAaSysLogSeverityLevel severity, const LogOrigin& origin) noexcept
{
    char* to = writeLogTime(m_begin, wall);
    *to++ = ' ';
    to = copy(to, severityWord(severity));
    *to++ = ' ';
    to = copy(to, origin.fields());
    *to++ = ' ';
    return static_cast<std::size_t>(to - m_begin);
}

void LineBuilder::moveToHeap(std::size_t size) noexcept
{
    std::unique_ptr<char[]> larger(new (std::nothrow) char[size]);
    if (!larger) {
        return;
    }
    std::memcpy(larger.get(), m_begin, m_headLength);
    m_heap = std::move(larger);
    m_begin = m_heap.get();
    m_size = size;
}

std::size_t LineBuilder::cutText(std::size_t kept, std::size_t whole) noexcept
{
    kept = wholeCharacters(textBegin(), kept);
    const int mark = std::snprintf(textBegin() + kept, maxMark, "... [cut: %zu bytes]", whole);
    return kept + static_cast<std::size_t>(mark);
}

std::size_t LineBuilder::writeText(const char* format, va_list arguments) noexcept
{
    va_list again;
    va_copy(again, arguments);
    const int result = std::vsnprintf(textBegin(), room(), format, arguments);
    auto whole = static_cast<std::size_t>(std::max(result, 0));
    if (result < 0) { // a wide character that the locale does not know; the format is better than nothing
        whole = static_cast<std::size_t>(std::snprintf(textBegin(), room() - maxMark, "%s [not printable]", format));
        whole = std::min(whole, room() - maxMark - 1);
    } else if (whole >= room()) {
        moveToHeap(m_headLength + std::min(whole, maxLogText) + maxMark);
        std::vsnprintf(textBegin(), room(), format, again);
    }
    va_end(again);
    const bool fits = whole <= maxLogText && whole < room();
    return fits ? whole : cutText(std::min(maxLogText, room() - maxMark), whole);
}

std::size_t LineBuilder::makeOneLine(std::size_t length) noexcept
{
    while (length > 0 && textBegin()[length - 1] == '\n') {
        --length;
    }
    const std::size_t needed = oneLineLength({textBegin(), length});
    if (needed == length) {
        return length;
    }
    // Made beside the text, then the text is put behind it: neither may overlap the other.
    const std::unique_ptr<char[]> original(new (std::nothrow) char[length]);
    if (!original) {
        std::replace_if(
            textBegin(), textBegin() + length, [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
        return length;
    }
    std::memcpy(original.get(), textBegin(), length);
    if (m_headLength + needed + 1 > m_size) {
        moveToHeap(m_headLength + needed + 1);
    }
    if (m_headLength + needed + 1 > m_size) {
        length = (room() - 1) / 4; // whatever it holds, that much fits
    }
    return static_cast<std::size_t>(writeOneLine(textBegin(), {original.get(), length}) - textBegin());
}

void LineBuilder::build(Nanoseconds wall, EAaSysLogSeverityLevel severity, const LogOrigin& origin, const char* format,
                        va_list arguments) noexcept
{
    m_headLength = writeHead(wall, severity, origin);
    const std::size_t length = makeOneLine(writeText(format ? format : "(null)", arguments));
    textBegin()[length] = '\n';
    m_length = m_headLength + length + 1;
}

} // namespace dorn::host
