// SPDX-License-Identifier: MIT
#include "post/PostLine.hpp"

#include "AaFile.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace vel::hwapi::common::post {

void PostLine::add(std::string_view text)
{
    std::copy(text.begin(), text.end(), m_text.get() + m_length);
    m_length += static_cast<std::uint32_t>(text.size());
}

void PostLine::add(std::uint32_t number)
{
    char* const begin = m_text.get() + m_length;
    const char* const end = std::to_chars(begin, begin + numberLength, number, 16).ptr;
    m_length += static_cast<std::uint32_t>(end - begin);
}

Reading readLines(const char* filename, LineTaker take, void* context)
{
    AaFile* const file = AaFileOpen(filename, "r");
    if (!file) {
        return Reading::NotOpened;
    }
    std::array<char, 1024> line{};
    bool isMoreWanted = true;
    while (isMoreWanted && AaFileReadLine(file, line.data(), line.size()) > 0) {
        isMoreWanted = take(line.data(), context);
    }
    return AaFileClose(file) == 0 ? Reading::Done : Reading::NotClosed;
}

EStatus writeLines(const char* filename, std::span<const PostLine> lines)
{
    AaFile* const file = AaFileOpen(filename, "w+");
    if (!file) {
        return EStatus_UndefinedError;
    }
    const bool isWritten = std::all_of(lines.begin(), lines.end(), [file](const PostLine& line) {
        const auto length = static_cast<std::uint32_t>(line.text().size());
        return AaFileWrite(file, line.text().data(), length) == static_cast<std::int32_t>(length);
    });
    const bool isClosed = AaFileClose(file) == 0;
    return isWritten && isClosed ? EStatus_NoError : EStatus_UndefinedError;
}

} // namespace vel::hwapi::common::post
