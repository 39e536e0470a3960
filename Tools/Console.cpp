// SPDX-License-Identifier: MIT
#include "Console.hpp"

#include <cerrno>
#include <cstring>

namespace dorn::tool {
bool isColourWanted(bool isTerminal, const char* noColour, const char* terminal)
{
    const bool isRefused = noColour && *noColour;
    const bool canShow = terminal && std::string_view(terminal) != "dumb";
    return isTerminal && !isRefused && canShow;
}

Console::Console(std::ostream& answer, std::ostream& remarks, bool isColoured, bool areRemarksLookedAt)
    : m_answer(answer), m_remarks(remarks), m_isColoured(isColoured), m_areRemarksLookedAt(areRemarksLookedAt)
{
}

void Console::print(std::string_view text)
{
    errno = 0;
    m_answer << text;
    if (m_answer.fail() && m_error == 0) {
        m_error = errno;
    }
}

void Console::printLine(std::string_view line)
{
    print(std::string(line) + '\n');
    flush();
}

void Console::flush()
{
    errno = 0;
    m_answer.flush();
    if (m_answer.fail() && m_error == 0) {
        m_error = errno;
    }
}

void Console::remark(std::string_view text)
{
    m_remarks << "dorn: " << text << '\n' << std::flush;
}

void Console::showProgress(std::string_view line)
{
    if (m_areRemarksLookedAt) {
        constexpr const char* emptyLine = "\r\033[K";
        m_remarks << emptyLine << line << std::flush;
    }
}

bool Console::finish()
{
    flush();
    // Who has seen enough closes the pipe: `dorn rad list | head -3`.
    if (!m_answer.fail() || m_error == EPIPE) {
        return true;
    }
    remark(std::string("the answer cannot be written: ") + std::strerror(m_error));
    return false;
}

std::string Console::paint(Colour colour, std::string_view text) const
{
    if (!m_isColoured || colour == Colour::None || text.empty()) {
        return std::string(text);
    }
    return std::string(sequenceOf(colour)).append(text).append(plainSequence);
}

} // namespace dorn::tool
