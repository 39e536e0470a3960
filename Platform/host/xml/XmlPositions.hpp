// SPDX-License-Identifier: MIT
/// @file XmlPositions.hpp
/// Lines and columns of a text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace dorn::host {

/// Line and column, from 1.
struct XmlPosition {
    std::uint32_t line = 1;
    std::uint32_t column = 1;
};

/// Finds the line and column of an offset, in the logarithm of the text's size. Lines end with LF, CR LF or CR.
class XmlPositions {
public:
    /// What a column counts. A character of UTF-8 counts once with `Characters`.
    enum class Unit { Bytes, Characters };

    /// @param lostLineEnds offsets, in any order, of line ends that something else stands in the place of
    XmlPositions(std::string_view text, Unit unit, const std::vector<std::size_t>& lostLineEnds = {});

    /// The position of the byte at @p offset, or of the end of the text when it lies behind.
    XmlPosition at(std::size_t offset) const;

private:
    std::size_t m_size;
    std::vector<std::size_t> m_lineBegins;
    std::vector<std::size_t> m_uncounted; ///< offsets of bytes that are no column of their own
};

} // namespace dorn::host
