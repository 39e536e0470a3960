// SPDX-License-Identifier: MIT
#include "LiveView.hpp"

#include "config/RadStore.hpp"
#include "node/EeTable.hpp"
#include "node/PerNode.hpp"
#include "rad/ERadHwapiState.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>

namespace dorn::demonstration {
namespace {

constexpr auto refreshPeriod = std::chrono::milliseconds(500);
constexpr std::size_t keptLines = 200;
constexpr const char* toTop = "\033[H";
constexpr const char* eraseLine = "\033[K";
constexpr const char* eraseBelow = "\033[J";

struct WindowSize {
    std::size_t rows = 24;
    std::size_t columns = 80;
};

WindowSize windowSize()
{
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0) {
        return {};
    }
    return {size.ws_row, size.ws_col};
}

template <class... Arguments>
std::string format(const char* text, Arguments... arguments)
{
    std::array<char, 256> buffer{};
    std::snprintf(buffer.data(), buffer.size(), text, arguments...);
    return buffer.data();
}

const char* stateWord(std::uint32_t state)
{
    static constexpr std::array words{"-", "starting", "waiting", "handling", "ended", "failed"};
    return state < words.size() ? words[state] : "own";
}

std::uint32_t publishedState(const host::EeInfo& info)
{
    for (const auto& entry : info.published) {
        if (entry.id >> 16 == ERadHwapiState_CpriState >> 16) {
            return entry.value;
        }
    }
    return 0;
}

} // namespace

LiveView::LiveView(std::vector<TAaConfigRadId> switches, std::string hint)
    : m_switches(std::move(switches)), m_hint(std::move(hint)), m_isTerminal(isatty(STDOUT_FILENO) == 1)
{
}

void LiveView::update()
{
    const auto lines = m_log.next(host::Clock::get().monotonic() + refreshPeriod);
    m_lines.insert(m_lines.end(), lines.begin(), lines.end());
    m_lines.erase(m_lines.begin(), m_lines.end() - static_cast<std::ptrdiff_t>(std::min(m_lines.size(), keptLines)));
    if (m_isTerminal) {
        draw();
        return;
    }
    for (const host::LogLine& line : lines) {
        std::printf("%s\n", host::formatLogLine(line).c_str());
    }
    std::fflush(stdout);
}

std::string LiveView::servicesText() const
{
    std::string text = format("%-17s %8s  %-6s  %-10s\n", "SERVICE", "PID", "CPID", "STATE");
    for (const host::EeInfo& info : host::PerNode<host::EeTable>::get().list()) {
        const std::uint32_t state = publishedState(info);
        const bool hasEnded = state == 4 || state == 5;
        const std::string word =
            info.alive || hasEnded ? stateWord(state) : std::string("dead (was ") + stateWord(state) + ")";
        text += format("%-17s %8d  0x%04X  %u %s\n", info.name.c_str(), info.pid, info.cpid, state, word.c_str());
    }
    return text;
}

std::string LiveView::switchesText() const
{
    std::string text = "R&D switches:";
    for (const TAaConfigRadId id : m_switches) {
        host::RadDomain* const domain =
            host::PerNode<host::RadStore>::get().domain(static_cast<std::uint16_t>(id >> 16));
        if (domain) {
            text += format("  %s=%u", domain->parameterName(id & 0xFFFFU), domain->value(id & 0xFFFFU).load());
        }
    }
    return text + "\n";
}

std::string LiveView::logText(std::size_t rows, std::size_t columns) const
{
    std::string text;
    for (std::size_t index = m_lines.size() - std::min(rows, m_lines.size()); index < m_lines.size(); ++index) {
        const std::string whole = host::formatLogLine(m_lines[index]);
        const std::size_t timeOfDay = std::min(whole.find('T') + 1, whole.size());
        text += whole.substr(timeOfDay, columns) + "\n";
    }
    return text;
}

void LiveView::draw() const
{
    const WindowSize size = windowSize();
    std::string text =
        "Dorn demonstration board (Ctrl-C ends it)\n\n" + servicesText() + "\n" + switchesText() + m_hint + "\n";
    const auto used = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    text += logText(size.rows > used + 1 ? size.rows - used - 1 : 0, size.columns);
    std::string screen = toTop;
    for (const char character : text) {
        screen += character == '\n' ? std::string(eraseLine) + "\r\n" : std::string(1, character);
    }
    std::fputs((screen + eraseBelow).c_str(), stdout);
    std::fflush(stdout);
}

} // namespace dorn::demonstration
