// SPDX-License-Identifier: MIT
/// @file Sanitizers.hpp
/// What this build is instrumented with, for tests that a sanitizer gets in the way of.
#pragma once

namespace dorn::test {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool hasAddressSanitizer = true;
#else
constexpr bool hasAddressSanitizer = false;
#endif

#if defined(__SANITIZE_THREAD__)
constexpr bool hasThreadSanitizer = true;
#else
constexpr bool hasThreadSanitizer = false;
#endif

/// AddressSanitizer is not told of the unwinding that cancels a thread: the redzones of frames that are gone stay where
/// destructors then run, and it takes their accesses for faults.
constexpr const char* unwindingIsNotKnown = "AddressSanitizer does not know the unwinding that cancels a thread";

/// ThreadSanitizer does not know bare system calls.
constexpr const char* signalIsKeptBack = "ThreadSanitizer keeps signals back while a thread sleeps on a bare futex";

} // namespace dorn::test

/// Keeps LeakSanitizer out of a test program that has taken away what it needs, such as threads of its own.
#define DORN_NO_LEAK_CHECK()                                                                                           \
    extern "C" const char* __asan_default_options();                                                                   \
    extern "C" const char* __asan_default_options()                                                                    \
    {                                                                                                                  \
        return "detect_leaks=0";                                                                                       \
    }                                                                                                                  \
    static_assert(true)

/// Keeps ThreadSanitizer from reporting wrong use of mutexes that is an error with a result of its own.
#define DORN_NO_MUTEX_REPORTS()                                                                                        \
    extern "C" const char* __tsan_default_options();                                                                   \
    extern "C" const char* __tsan_default_options()                                                                    \
    {                                                                                                                  \
        return "report_mutex_bugs=0";                                                                                  \
    }                                                                                                                  \
    static_assert(true)

/// Keeps LeakSanitizer from reporting what a function allocates: memory that lives as long as the process, in a test
/// program where it outlives the node that knows of it.
#define DORN_LASTING_MEMORY_OF(function)                                                                               \
    extern "C" const char* __lsan_default_suppressions();                                                              \
    extern "C" const char* __lsan_default_suppressions()                                                               \
    {                                                                                                                  \
        return "leak:" function;                                                                                       \
    }                                                                                                                  \
    static_assert(true)
