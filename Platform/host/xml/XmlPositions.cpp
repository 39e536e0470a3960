// SPDX-License-Identifier: MIT
#include "xml/XmlPositions.hpp"

#include <algorithm>
#include <iterator>

namespace dorn::host {
namespace {

/// How many of the ascending @p offsets are less than @p limit.
std::size_t countBelow(const std::vector<std::size_t>& offsets, std::size_t limit)
{
    return static_cast<std::size_t>(std::lower_bound(offsets.begin(), offsets.end(), limit) - offsets.begin());
}

} // namespace

XmlPositions::XmlPositions(std::string_view text, Unit unit, const std::vector<std::size_t>& lostLineEnds)
    : m_size(text.size()), m_lineBegins{0}
{
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char c = text[index];
        const bool isCrOfCrLf = c == '\r' && index + 1 < text.size() && text[index + 1] == '\n';
        if ((c == '\n' || c == '\r') && !isCrOfCrLf) {
            m_lineBegins.push_back(index + 1);
        }
        if (unit == Unit::Characters && (static_cast<unsigned char>(c) & 0xC0U) == 0x80U) {
            m_uncounted.push_back(index);
        }
    }
    std::transform(lostLineEnds.begin(), lostLineEnds.end(), std::back_inserter(m_lineBegins),
                   [](std::size_t offset) { return offset + 1; });
    std::sort(m_lineBegins.begin(), m_lineBegins.end());
}

XmlPosition XmlPositions::at(std::size_t offset) const
{
    const std::size_t end = std::min(offset, m_size);
    const std::size_t line = countBelow(m_lineBegins, end + 1);
    const std::size_t begin = m_lineBegins[line - 1];
    const std::size_t column = end - begin - (countBelow(m_uncounted, end) - countBelow(m_uncounted, begin));
    return {static_cast<std::uint32_t>(line), static_cast<std::uint32_t>(column + 1)};
}

} // namespace dorn::host
