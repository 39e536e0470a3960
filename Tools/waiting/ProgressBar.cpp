// SPDX-License-Identifier: MIT
#include "waiting/ProgressBar.hpp"

#include "text/Values.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace dorn::tool {
namespace {

constexpr std::chrono::milliseconds patience(300); // work that is done by then needs no bar
constexpr std::chrono::milliseconds redrawPeriod(100);
constexpr std::size_t barWidth = 30;

std::string barText(double fraction)
{
    const double part = std::clamp(fraction, 0.0, 1.0);
    const auto done = static_cast<std::size_t>(part * static_cast<double>(barWidth));
    std::array<char, 16> percent{};
    std::snprintf(percent.data(), percent.size(), "%3d %%", static_cast<int>(part * 100));
    return "[" + std::string(done, '#') + std::string(barWidth - done, '-') + "] " + percent.data() + "  ";
}

} // namespace

ProgressBar::ProgressBar(Console& console, std::string what)
    : m_console(console), m_what(std::move(what)), m_next(host::Clock::get().monotonic() + patience)
{
}

ProgressBar::~ProgressBar()
{
    if (m_isShown) {
        m_console.showProgress("");
    }
}

void ProgressBar::show(double fraction, std::uint64_t bytes)
{
    const host::Nanoseconds now = host::Clock::get().monotonic();
    if (now < m_next) {
        return;
    }
    m_next = now + redrawPeriod;
    m_isShown = true;
    m_console.showProgress(m_what + "  " + (fraction < 0 ? "" : barText(fraction)) + sizeText(bytes));
}

} // namespace dorn::tool
