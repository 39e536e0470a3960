// SPDX-License-Identifier: MIT
/// @file CancellationOff.hpp
/// Holds a thread's cancellation off.
#pragma once

#include <pthread.h>

namespace dorn::host {

/// While it lives, the thread is not cancelled: it may hold locks and call functions that wait.
class CancellationOff {
public:
    CancellationOff() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_previous); }
    ~CancellationOff() { pthread_setcancelstate(m_previous, nullptr); }
    CancellationOff(const CancellationOff&) = delete;
    CancellationOff& operator=(const CancellationOff&) = delete;

private:
    int m_previous = PTHREAD_CANCEL_ENABLE;
};

} // namespace dorn::host
