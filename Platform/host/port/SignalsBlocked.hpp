// SPDX-License-Identifier: MIT
/// @file SignalsBlocked.hpp
/// Keeps signals away from the threads of the platform.
#pragma once

#include <csignal>
#include <pthread.h>

namespace dorn::host {

/// While it lives, signals pass the thread by, and those threads for good that it starts: signals are for the process's
/// own threads.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_previous);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_previous, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_previous{};
};

} // namespace dorn::host
