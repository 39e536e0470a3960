// SPDX-License-Identifier: MIT
/// @file Processor.hpp
/// For threads that watch something for a moment before they sleep.
#pragma once

#include <unistd.h>

namespace dorn::host {

/// Whether another thread may be running now. On a single processor it is not worth while to watch what it does.
inline bool hasSeveralProcessors()
{
    static const bool hasSeveral = sysconf(_SC_NPROCESSORS_ONLN) > 1;
    return hasSeveral;
}

/// Tells the processor that the thread runs in a loop that waits.
inline void relaxProcessor()
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__) || defined(__ARM_ARCH_7A__)
    __asm__ volatile("yield" ::: "memory");
#endif
}

} // namespace dorn::host
