// SPDX-License-Identifier: MIT
/// @file BoardTest.hpp
/// Fixture of the board's tests: a node with a small Tarn board.
#pragma once

#include "NodeTest.hpp"
#include "TestBoard.hpp"
#include "description/BoardFailure.hpp"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <tuple>

namespace dorn::board {

class BoardTest : public testkit::NodeTest {
protected:
    testkit::TestBoard m_board;

    /// How messages about the board's description begin in the log.
    const std::string m_origin = "board description '" + m_board.path() + "': ";
};

/// What a function that fills a text buffer gives: the text, or "error 5".
inline std::string textFrom(std::int32_t (*function)(std::uint32_t, char*))
{
    std::array<char, 200> buffer{};
    const std::int32_t result = function(static_cast<std::uint32_t>(buffer.size() - 1), buffer.data());
    return result == DDAL_OK ? std::string(buffer.data()) : "error " + std::to_string(result);
}

/// The same for a function that is asked for a unit or port.
inline std::string textFrom(std::int32_t (*function)(std::uint32_t, std::uint32_t, char*), std::uint32_t number)
{
    std::array<char, 200> buffer{};
    const std::int32_t result = function(number, static_cast<std::uint32_t>(buffer.size() - 1), buffer.data());
    return result == DDAL_OK ? std::string(buffer.data()) : "error " + std::to_string(result);
}

/// Code and text of the BoardFailure that @p work throws; 0 and nothing when it throws none.
template <class Work>
std::tuple<int, std::string> failureOf(const Work& work)
{
    try {
        work();
        return {DDAL_OK, ""};
    } catch (const BoardFailure& failure) {
        return {failure.code(), failure.what()};
    }
}

/// Writes an image onto the board that gives @p version in its first four bytes, and has @p size bytes.
inline void writeImage(const testkit::TestNode& node, const std::string& path, std::uint32_t version,
                       std::size_t size = 64)
{
    std::string content(size, 'i');
    for (std::size_t byte = 0; byte < 4 && byte < size; ++byte) {
        content[byte] = static_cast<char>(version >> (24 - 8 * byte) & 0xFFU);
    }
    node.writeBoardFile(path, content);
}

} // namespace dorn::board
