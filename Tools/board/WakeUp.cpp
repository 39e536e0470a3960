// SPDX-License-Identifier: MIT
#include "board/WakeUp.hpp"

#include <cerrno>
#include <sys/eventfd.h>
#include <system_error>

namespace dorn::tool {

WakeUp::WakeUp() : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!m_event) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
}

void WakeUp::wake() const
{
    const int saved = errno;
    eventfd_write(m_event.get(), 1);
    errno = saved;
}

void WakeUp::clear() const
{
    eventfd_t ignored = 0;
    eventfd_read(m_event.get(), &ignored);
}

} // namespace dorn::tool
