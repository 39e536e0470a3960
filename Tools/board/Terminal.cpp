// SPDX-License-Identifier: MIT
#include "board/Terminal.hpp"

#include "Outcome.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

constexpr std::string_view takeOverSequence = "\033[?1049h\033[?25l"; // the other page, no cursor

/// The terminal once more, so that others who have standard output open do not find it not blocking.
host::Descriptor openOutput()
{
    host::Descriptor output(open("/proc/self/fd/1", O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!output) {
        output.reset(open("/dev/tty", O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    }
    if (!output) {
        throw Failure(std::string("the terminal cannot be opened: ") + std::strerror(errno));
    }
    return output;
}

termios settingsOf(int terminal)
{
    termios settings{};
    tcgetattr(terminal, &settings);
    return settings;
}

} // namespace

bool Terminal::canBeUsed(const char* terminal)
{
    return isatty(STDOUT_FILENO) == 1 && terminal && *terminal && std::string_view(terminal) != "dumb";
}

Terminal::Terminal()
    : m_hasKeys(isatty(STDIN_FILENO) == 1),
      m_before(settingsOf(STDIN_FILENO)),
      m_output(openOutput()),
      m_keeper(m_output.get(), m_hasKeys, m_before)
{
    takeOver();
}

Terminal::~Terminal()
{
    giveTerminalBack(m_output.get(), m_hasKeys, m_before);
}

void Terminal::takeOver()
{
    if (m_hasKeys) {
        termios settings = m_before;
        settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
        settings.c_iflag &= ~static_cast<tcflag_t>(ICRNL | IXON);
        settings.c_cc[VMIN] = 0;
        settings.c_cc[VTIME] = 0;
        tcsetattr(STDIN_FILENO, TCSANOW, &settings);
    }
    [[maybe_unused]] const ssize_t written = write(m_output.get(), takeOverSequence.data(), takeOverSequence.size());
}

FrameSize Terminal::size() const
{
    winsize size{};
    if (ioctl(m_output.get(), TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0) {
        return {};
    }
    return {size.ws_row, size.ws_col};
}

std::string Terminal::takeKeys()
{
    std::array<char, 64> keys; // NOLINT: filled by the call
    const ssize_t size = m_hasKeys ? read(STDIN_FILENO, keys.data(), keys.size()) : 0;
    return size > 0 ? std::string(keys.data(), static_cast<std::size_t>(size)) : std::string();
}

} // namespace dorn::tool
