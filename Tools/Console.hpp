// SPDX-License-Identifier: MIT
/// @file Console.hpp
/// Where the answer goes, and where remarks go.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace dorn::tool {

enum class Colour { None, Red, Green, Yellow, Faint };

/// What has a terminal write in a colour from here on; nothing for none.
constexpr const char* sequenceOf(Colour colour)
{
    switch (colour) {
    case Colour::Red:
        return "\033[31m";
    case Colour::Green:
        return "\033[32m";
    case Colour::Yellow:
        return "\033[33m";
    case Colour::Faint:
        return "\033[2m";
    case Colour::None:
        break;
    }
    return "";
}

/// What has a terminal write without colour again.
constexpr const char* plainSequence = "\033[0m";

/// Whether to use colour: on a terminal that can show it, unless the user does not want any.
/// @param isTerminal whether the answer goes to a terminal
/// @param noColour value of `NO_COLOR`, null when it is not set
/// @param terminal value of `TERM`, null when it is not set
bool isColourWanted(bool isTerminal, const char* noColour, const char* terminal);

/// The two streams of a command. Nothing but the answer goes to the first.
class Console {
public:
    /// @param areRemarksLookedAt whether remarks go to a terminal, where a line can be taken back
    Console(std::ostream& answer, std::ostream& remarks, bool isColoured, bool areRemarksLookedAt = false);

    /// Writes a part of the answer.
    void print(std::string_view text);
    /// Writes a line of an answer that grows while somebody looks on.
    void printLine(std::string_view line);
    /// Has those who look on see what has been printed.
    void flush();
    /// Whether nobody takes the answer any more.
    bool isClosed() const { return m_answer.fail(); }

    /// Says something that does not belong to the answer.
    void remark(std::string_view text);

    /// Shows on a terminal how far a long work has come, in place of what was shown before; empty takes it away. Take
    /// it away before anything is printed.
    void showProgress(std::string_view line);

    /// Makes sure that the answer has been written. @return false when it has not; the reason has been said.
    bool finish();

    /// @p text in @p colour, if colour is used.
    std::string paint(Colour colour, std::string_view text) const;

private:
    std::ostream& m_answer;
    std::ostream& m_remarks;
    bool m_isColoured;
    bool m_areRemarksLookedAt;
    int m_error = 0; ///< why the answer could not be written
};

} // namespace dorn::tool
