// SPDX-License-Identifier: MIT
/// @file PostLine.hpp
/// The lines of a POST file.
#pragma once

#include "AaTypes.h"
#include "PlatformBlock.hpp"

#include <cstdint>
#include <span>
#include <string_view>

namespace vel::hwapi::common::post {

/// A line that is being made, in the platform's memory.
class PostLine {
public:
    /// Length of a number with a blank behind it, at most.
    static constexpr std::uint64_t numberLength = 9;

    /// Makes room. @return false when there is no memory.
    [[nodiscard]] bool reserve(std::uint64_t length)
    {
        m_text.reset(allocateArray<char>(length));
        return m_text != nullptr;
    }
    /// Appends; there must be room.
    void add(std::string_view text);
    void add(std::uint32_t number);

    std::string_view text() const { return {m_text.get(), m_length}; }

private:
    PlatformBlock<char[]> m_text;
    std::uint32_t m_length = 0;
};

/// What has come of reading a file.
enum class Reading { Done, NotOpened, NotClosed, NoMemory };

/// Gets a line, or a piece of one, with its line feed. @return false when no more is wanted.
using LineTaker = bool (*)(const char* line, void* context);

/// Reads a file line by line, at most 1023 bytes at once.
Reading readLines(const char* filename, LineTaker take, void* context);

/// Writes a file anew. @return EStatus_UndefinedError as soon as something fails.
EStatus writeLines(const char* filename, std::span<const PostLine> lines);

} // namespace vel::hwapi::common::post
