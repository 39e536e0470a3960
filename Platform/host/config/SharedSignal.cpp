// SPDX-License-Identifier: MIT
#include "config/SharedSignal.hpp"

#include <climits>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace dorn::host {
namespace {

constexpr std::uint32_t waitMark = 1;
constexpr std::uint32_t oneEvent = 2;

/// Takes the mark away and wakes those who sleep, as one step of the kernel's: who is killed at it has done both or
/// neither, and nobody falls asleep in between.
void clearMarkAndWakeAll(std::atomic<std::uint32_t>& word)
{
    // The operation could wake the sleepers of a second word as well; here both words are one, and all are awake.
    constexpr int noneOfTheSecond = 0;
    syscall(SYS_futex, &word, FUTEX_WAKE_OP, INT_MAX, noneOfTheSecond, &word,
            FUTEX_OP(FUTEX_OP_ANDN, waitMark, FUTEX_OP_CMP_EQ, 0));
}

} // namespace

void SharedSignal::notify()
{
    if ((m_word.fetch_add(oneEvent, std::memory_order_acq_rel) & waitMark) != 0) {
        clearMarkAndWakeAll(m_word);
    }
}

bool SharedSignal::waitBeyond(std::uint32_t seen, Deadline until)
{
    Clock& clock = Clock::get();
    std::uint32_t word = m_word.load(std::memory_order_acquire);
    while (word >> 1 == seen) {
        if (until != noDeadline && clock.monotonic() >= until) {
            return false;
        }
        if ((word & waitMark) == 0 && !m_word.compare_exchange_strong(word, word | waitMark)) {
            continue;
        }
        clock.waitWhile(m_word, word | waitMark, until, true);
        word = m_word.load(std::memory_order_acquire);
    }
    return true;
}

} // namespace dorn::host
