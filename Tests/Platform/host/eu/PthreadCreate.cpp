// SPDX-License-Identifier: MIT
#include "PthreadCreate.hpp"

#include <atomic>

namespace {

std::atomic<int> failure{0};
std::atomic<int> askedPolicy{SCHED_OTHER};
std::atomic<int> askedPriority{0};

} // namespace

extern "C" {
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*), void* argument);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*), void* argument)
{
    const int error = failure.load();
    if (error == 0) {
        return __real_pthread_create(thread, attributes, entry, argument);
    }
    int policy = SCHED_OTHER;
    sched_param parameter{};
    int inherits = PTHREAD_INHERIT_SCHED;
    pthread_attr_getinheritsched(attributes, &inherits);
    if (inherits == PTHREAD_EXPLICIT_SCHED) {
        pthread_attr_getschedpolicy(attributes, &policy);
        pthread_attr_getschedparam(attributes, &parameter);
    }
    askedPolicy.store(policy);
    askedPriority.store(parameter.sched_priority);
    return error;
}
}

namespace dorn::host::test {

PthreadCreateFails::PthreadCreateFails(int error)
{
    failure.store(error);
}

PthreadCreateFails::~PthreadCreateFails()
{
    failure.store(0);
}

int PthreadCreateFails::policy() const
{
    return askedPolicy.load();
}

int PthreadCreateFails::priority() const
{
    return askedPriority.load();
}

} // namespace dorn::host::test
