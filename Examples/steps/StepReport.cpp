// SPDX-License-Identifier: MIT
#include "StepReport.hpp"

#include <chrono>
#include <cstdio>
#include <exception>

namespace dorn::examples {

std::string StepReport::run(const char* text, const std::function<void()>& action)
{
    using Seconds = std::chrono::duration<double>;
    const auto begin = std::chrono::steady_clock::now();
    std::string trouble;
    try {
        action();
    } catch (const std::exception& error) {
        trouble = error.what();
        m_isAllWell = false;
    }
    const double seconds = Seconds(std::chrono::steady_clock::now() - begin).count();
    std::printf("%2u  %-4s %5.2f s  %s\n", ++m_steps, trouble.empty() ? "ok" : "FAIL", seconds, text);
    return trouble;
}

} // namespace dorn::examples
