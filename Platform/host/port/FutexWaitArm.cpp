// SPDX-License-Identifier: MIT
// The C library's syscall() is marked as one that cannot be unwound on ARM: a thread that is cancelled in it would end
// without running a destructor.
#include "port/FutexWait.hpp"

#include <linux/futex.h>

namespace dorn::host {

void futexWait(std::atomic<std::uint32_t>& word, int operation, std::uint32_t expected, const timespec* deadline)
{
    // The kernel's convention: the number in r7, the arguments in r0 to r5, the result in r0.
    register auto* address __asm__("r0") = &word;
    register int operationAndFlags __asm__("r1") = operation;
    register std::uint32_t value __asm__("r2") = expected;
    register const timespec* until __asm__("r3") = deadline;
    register void* secondWord __asm__("r4") = nullptr;
    register std::uint32_t bits __asm__("r5") = FUTEX_BITSET_MATCH_ANY;
    register long number __asm__("r7") = futexCall;
    __asm__ volatile("svc 0"
                     : "+r"(address)
                     : "r"(operationAndFlags), "r"(value), "r"(until), "r"(secondWord), "r"(bits), "r"(number)
                     : "memory");
}

} // namespace dorn::host
