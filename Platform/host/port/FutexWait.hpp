// SPDX-License-Identifier: MIT
/// @file FutexWait.hpp
/// The system call that sleeps on a word of memory.
#pragma once

#include <atomic>
#include <cstdint>
#include <ctime>
#include <sys/syscall.h>

namespace dorn::host {

/// The number of the call whose deadline is a `timespec` of ours: where time has outgrown the word there are two.
#ifdef SYS_futex_time64
constexpr long futexCall = sizeof(time_t) > sizeof(long) ? SYS_futex_time64 : SYS_futex;
#else
constexpr long futexCall = SYS_futex;
#endif

/// Sleeps while @p word is @p expected, until it is woken, @p deadline, or a signal; any of these ends it without a
/// word. A thread that is cancelled asynchronously in here unwinds. It never throws otherwise.
/// @param operation FUTEX_WAIT_BITSET with its flags
/// @param deadline a time of CLOCK_MONOTONIC, or null for none
void futexWait(std::atomic<std::uint32_t>& word, int operation, std::uint32_t expected, const timespec* deadline);

} // namespace dorn::host
