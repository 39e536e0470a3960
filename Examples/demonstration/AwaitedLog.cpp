// SPDX-License-Identifier: MIT
#include "AwaitedLog.hpp"

#include "Require.hpp"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <stdexcept>

namespace dorn::demonstration {

host::LogLine AwaitedLog::nextLine(const std::string& ending)
{
    const auto until = host::Clock::get().monotonic() + stepBound;
    do {
        while (!m_unread.empty()) {
            host::LogLine line = std::move(m_unread.front());
            m_unread.pop_front();
            if (line.text.ends_with(ending)) {
                return line;
            }
        }
        std::ranges::move(m_log.next(until), std::back_inserter(m_unread));
    } while (!m_unread.empty());
    throw std::runtime_error("no log line ends with \"" + ending + "\"");
}

void show(const host::LogLine& line)
{
    std::printf("                  | %s %s\n", line.eeName.c_str(), line.text.c_str());
}

} // namespace dorn::demonstration
