// SPDX-License-Identifier: MIT
#include "board/Screen.hpp"

#include <cerrno>
#include <unistd.h>

namespace dorn::tool {
namespace {

constexpr const char* eraseAll = "\033[0m\033[2J";

std::string placeSequence(std::size_t row, std::size_t column)
{
    return "\033[" + std::to_string(row + 1) + ";" + std::to_string(column + 1) + "H";
}

} // namespace

bool Screen::show(const Frame& frame)
{
    flush();
    if (isBusy()) {
        return false;
    }
    m_waiting.clear();
    m_written = 0;
    if (!m_shown || m_shown->size() != frame.size()) {
        m_shown.emplace(frame.size());
        m_waiting += eraseAll;
    }
    for (std::size_t row = 0; row < frame.size().rows; ++row) {
        draw(frame, row);
    }
    m_shown = frame;
    flush();
    return true;
}

void Screen::draw(const Frame& frame, std::size_t row)
{
    const auto hasChanged = [&](std::size_t column) { return frame.at(row, column) != m_shown->at(row, column); };
    std::size_t first = 0;
    std::size_t end = frame.size().columns;
    while (first < end && !hasChanged(first)) {
        ++first;
    }
    if (first == end) {
        return;
    }
    while (!hasChanged(end - 1)) {
        --end;
    }
    m_waiting += placeSequence(row, first);
    Colour colour = Colour::None;
    for (std::size_t column = first; column < end; ++column) {
        const FrameCell& cell = frame.at(row, column);
        if (m_isColoured && cell.colour != colour) {
            m_waiting.append(plainSequence).append(sequenceOf(cell.colour));
            colour = cell.colour;
        }
        appendCharacter(m_waiting, cell.character);
    }
    if (colour != Colour::None) {
        m_waiting += plainSequence;
    }
}

void Screen::flush()
{
    while (isBusy() && !m_isBroken) {
        const ssize_t count = write(m_descriptor, m_waiting.data() + m_written, m_waiting.size() - m_written);
        if (count > 0) {
            m_written += static_cast<std::size_t>(count);
        } else if (errno == EAGAIN) {
            return;
        } else if (errno != EINTR) {
            m_isBroken = true;
        }
    }
}

} // namespace dorn::tool
