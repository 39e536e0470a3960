// SPDX-License-Identifier: MIT
#include "port/FutexWait.hpp"

#include <linux/futex.h>
#include <unistd.h>

namespace dorn::host {

void futexWait(std::atomic<std::uint32_t>& word, int operation, std::uint32_t expected, const timespec* deadline)
{
    syscall(futexCall, &word, operation, expected, deadline, nullptr, FUTEX_BITSET_MATCH_ANY);
}

} // namespace dorn::host
