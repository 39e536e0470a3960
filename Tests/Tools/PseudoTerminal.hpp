// SPDX-License-Identifier: MIT
/// @file PseudoTerminal.hpp
/// A program in a terminal that a test looks at and types on.
#pragma once

#include "port/Descriptor.hpp"

#include <cstddef>
#include <string>
#include <sys/types.h>
#include <termios.h>
#include <vector>

namespace dorn::tool {

/// A terminal with a program on it, which is killed at the end. Understands what such a program needs: places, erasing,
/// the two pages.
class PseudoTerminal {
public:
    PseudoTerminal(const std::string& program, const std::vector<std::string>& arguments, std::size_t rows,
                   std::size_t columns);
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    pid_t pid() const { return m_pid; }
    void type(const std::string& keys) const;
    void resize(std::size_t rows, std::size_t columns);
    /// Takes what the program writes until the page in front contains @p text. @return false when it does not within a
    /// generous bound.
    bool comesToShow(const std::string& text);
    /// The same until the page contains it no more.
    bool comesToHide(const std::string& text);
    /// Takes what the program writes until it has ended. @return its status as a shell has it: 128 and more for a
    /// signal.
    int waitForEnd();
    /// Whether the program's own page is in front, not the other one.
    bool isOwnPageShown() const { return !m_isOther; }
    bool isCursorShown() const { return m_isCursorShown; }
    /// Whether keys are echoed and come in lines, as a shell has it.
    bool isCooked() const;
    /// The page in front.
    std::string text() const;

private:
    bool takeUntil(bool isWanted, const std::string& text);
    void takeSome();
    void takeByte(char byte);
    void doSequence(char last);
    void clear();

    std::size_t m_rows;
    std::size_t m_columns;
    std::vector<std::string> m_page;
    std::size_t m_row = 0;
    std::size_t m_column = 0;
    std::string m_sequence; ///< that has begun
    bool m_isOther = false;
    bool m_isCursorShown = true;
    host::Descriptor m_master;
    host::Descriptor m_slave; ///< keeps the terminal when the program has ended
    pid_t m_pid = -1;
};

} // namespace dorn::tool
