// SPDX-License-Identifier: MIT
/// @file NoCancel.hpp
/// Keeps thread cancellation away from work that must not be left half done.
#pragma once

#include <pthread.h>

namespace dorn::host {

/// While it lives, a cancellation of the calling thread is put off.
class NoCancel {
public:
    NoCancel() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_previous); }
    ~NoCancel() { pthread_setcancelstate(m_previous, nullptr); }
    NoCancel(const NoCancel&) = delete;
    NoCancel& operator=(const NoCancel&) = delete;

private:
    int m_previous = PTHREAD_CANCEL_ENABLE;
};

} // namespace dorn::host
