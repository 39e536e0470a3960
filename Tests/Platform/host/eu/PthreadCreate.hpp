// SPDX-License-Identifier: MIT
/// @file PthreadCreate.hpp
/// Has the library's thread creation fail.
#pragma once

#include <pthread.h>
#include <sched.h>

namespace dorn::host::test {

/// While it lives, `pthread_create` fails for the library's calls. The linker sends them here; see CMakeLists.txt.
class PthreadCreateFails {
public:
    explicit PthreadCreateFails(int error);
    ~PthreadCreateFails();
    PthreadCreateFails(const PthreadCreateFails&) = delete;
    PthreadCreateFails& operator=(const PthreadCreateFails&) = delete;

    /// What the last call asked for.
    int policy() const;
    int priority() const;
};

} // namespace dorn::host::test
