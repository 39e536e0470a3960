// SPDX-License-Identifier: MIT
#include "PseudoTerminal.hpp"

#include "Bound.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utmp.h>

namespace dorn::tool {
namespace {

winsize sizeOf(std::size_t rows, std::size_t columns)
{
    return {static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
}

} // namespace

PseudoTerminal::PseudoTerminal(const std::string& program, const std::vector<std::string>& arguments, std::size_t rows,
                               std::size_t columns)
    : m_rows(rows), m_columns(columns)
{
    std::vector<std::string> texts{program};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& text : texts) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);
    int master = -1;
    int slave = -1;
    const winsize size = sizeOf(rows, columns);
    if (openpty(&master, &slave, nullptr, nullptr, &size) != 0) {
        throw std::system_error(errno, std::generic_category(), "openpty");
    }
    m_master.reset(master);
    m_slave.reset(slave);
    fcntl(master, F_SETFD, FD_CLOEXEC);
    m_pid = fork();
    if (m_pid == 0) {
        login_tty(slave);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    fcntl(slave, F_SETFD, FD_CLOEXEC);
    clear();
}

PseudoTerminal::~PseudoTerminal()
{
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
}

void PseudoTerminal::clear()
{
    m_page.assign(m_rows, std::string(m_columns, ' '));
}

void PseudoTerminal::type(const std::string& keys) const
{
    if (write(m_master.get(), keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
        throw std::system_error(errno, std::generic_category(), "terminal");
    }
}

void PseudoTerminal::resize(std::size_t rows, std::size_t columns)
{
    m_rows = rows;
    m_columns = columns;
    clear();
    const winsize size = sizeOf(rows, columns);
    ioctl(m_master.get(), TIOCSWINSZ, &size);
}

bool PseudoTerminal::comesToShow(const std::string& text)
{
    return takeUntil(true, text);
}

bool PseudoTerminal::comesToHide(const std::string& text)
{
    return takeUntil(false, text);
}

bool PseudoTerminal::takeUntil(bool isWanted, const std::string& wanted)
{
    const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
    while ((text().find(wanted) != std::string::npos) != isWanted) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        takeSome();
    }
    return true;
}

int PseudoTerminal::waitForEnd()
{
    const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
    int status = 0;
    while (waitpid(m_pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() >= end) {
            return -1;
        }
        takeSome();
    }
    m_pid = -1;
    takeSome();
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void PseudoTerminal::takeSome()
{
    constexpr int patience = 20; // milliseconds
    pollfd entry{m_master.get(), POLLIN, 0};
    if (poll(&entry, 1, patience) <= 0) {
        return;
    }
    std::array<char, 4096> part; // NOLINT: filled by the call
    const ssize_t size = read(m_master.get(), part.data(), part.size());
    for (ssize_t place = 0; place < size; ++place) {
        takeByte(part[static_cast<std::size_t>(place)]);
    }
}

void PseudoTerminal::takeByte(char byte)
{
    constexpr char escape = '\033';
    constexpr char cancel = '\030';
    if (byte == cancel) {
        m_sequence.clear();
    } else if (byte == escape || !m_sequence.empty()) {
        m_sequence += byte;
        if (m_sequence.size() > 2 && byte >= 0x40) {
            doSequence(byte);
            m_sequence.clear();
        }
    } else if (byte == '\r') {
        m_column = 0;
    } else if (byte == '\n') {
        m_row = std::min(m_row + 1, m_rows - 1);
    } else if (m_row < m_rows && m_column < m_columns) {
        m_page[m_row][m_column++] = byte;
    }
}

void PseudoTerminal::doSequence(char last)
{
    const std::string parameters = m_sequence.substr(2, m_sequence.size() - 3);
    if (last == 'H') {
        const char* const end = parameters.data() + parameters.size();
        const auto row = std::from_chars(parameters.data(), end, m_row);
        std::from_chars(std::min(row.ptr + 1, end), end, m_column);
        --m_row;
        --m_column;
    } else if (last == 'J') {
        clear();
    } else if (parameters == "?1049") {
        m_isOther = last == 'h';
        clear();
        m_row = m_column = 0;
    } else if (parameters == "?25") {
        m_isCursorShown = last == 'h';
    }
}

bool PseudoTerminal::isCooked() const
{
    termios settings{};
    tcgetattr(m_slave.get(), &settings);
    constexpr tcflag_t cooked = ICANON | ECHO | ISIG;
    return (settings.c_lflag & cooked) == cooked;
}

std::string PseudoTerminal::text() const
{
    std::string all;
    for (const std::string& row : m_page) {
        all += row.substr(0, row.find_last_not_of(' ') + 1) + "\n";
    }
    return all;
}

} // namespace dorn::tool
