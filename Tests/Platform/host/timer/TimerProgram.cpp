// SPDX-License-Identifier: MIT
// A process that may have no second thread arms a time-out in vain, and another when it may.
#include "AaSysCom.h"
#include "AaTimer.h"
#include "Sanitizers.hpp"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>

DORN_NO_LEAK_CHECK();

int main()
{
    constexpr uid_t nobody = 65534;
    AaSysComMsgReceive(AA_NO_WAIT);
    if (geteuid() == 0 && setresuid(nobody, nobody, 0) != 0) {
        return 3;
    }
    rlimit before{};
    getrlimit(RLIMIT_NPROC, &before);
    rlimit none = before;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NPROC, &none);
    if (AaTimerArm(0, reinterpret_cast<const void*>(std::uintptr_t{1})) != 0) {
        return 1;
    }
    setrlimit(RLIMIT_NPROC, &before);
    if (AaTimerArm(0, reinterpret_cast<const void*>(std::uintptr_t{2})) == 0) {
        return 2;
    }
    for (void* message = AaSysComMsgReceive(20'000'000); message; message = AaSysComMsgReceive(50'000)) {
        std::uintptr_t identity = 0;
        std::memcpy(&identity, AaSysComMsgGetPayload(message), sizeof identity);
        std::printf("arrived: %u\n", static_cast<unsigned>(identity));
        AaSysComMsgDestroy(&message);
    }
    return 0;
}
