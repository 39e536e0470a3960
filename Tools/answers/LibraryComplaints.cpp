// SPDX-License-Identifier: MIT
#include "answers/LibraryComplaints.hpp"

#include "AaSysLog.h"
#include "log/LogObserver.hpp"
#include "text/Values.hpp"

namespace dorn::tool {

LibraryComplaints::LibraryComplaints()
    : m_observer(host::addLogObserver([this](const host::LogLine& line) {
          if (line.severity >= EAaSysLogSeverityLevel_Warning) {
              const std::lock_guard lock(m_mutex);
              m_text += (m_text.empty() ? "" : "\n") + printable(line.text);
          }
      }))
{
}

LibraryComplaints::~LibraryComplaints()
{
    host::removeLogObserver(m_observer);
}

std::string LibraryComplaints::text() const
{
    const std::lock_guard lock(m_mutex);
    return m_text;
}

} // namespace dorn::tool
