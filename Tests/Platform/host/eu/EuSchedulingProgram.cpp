// SPDX-License-Identifier: MIT
// A process that may not use real-time scheduling starts EUs that ask for it, and tells what they got.
#include "AaSysCom.h"
#include "Sanitizers.hpp"

#include <cstdio>
#include <initializer_list>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

DORN_NO_LEAK_CHECK();

namespace {

void* tellPolicy(void*)
{
    int policy = -1;
    sched_param parameter{};
    pthread_getschedparam(pthread_self(), &policy, &parameter);
    std::printf("%s\n", policy == SCHED_OTHER ? "time-shared" : "real-time");
    return nullptr;
}

} // namespace

int main()
{
    const rlimit none{};
    setrlimit(RLIMIT_RTPRIO, &none);
    constexpr uid_t nobody = 65534;
    if (geteuid() == 0 && seteuid(nobody) != 0) {
        return 3;
    }
    for (const auto policy : {EAaProEuSchedulingPolicy_Fifo, EAaProEuSchedulingPolicy_RoundRobin}) {
        if (AaSysComEuCreateAndStartWithPolicy(nullptr, "Eager", tellPolicy, 4096, policy, 10, nullptr, 0, 1) != 0) {
            return 1;
        }
    }
    return 0;
}
