// SPDX-License-Identifier: MIT
#include "config/SharedSignal.hpp"

#include <climits>

namespace dorn::host {
namespace {

constexpr std::uint32_t waitMark = 1;
constexpr std::uint32_t oneEvent = 2;

} // namespace

void SharedSignal::notify()
{
    if ((m_word.fetch_add(oneEvent, std::memory_order_acq_rel) & waitMark) != 0) {
        m_word.fetch_and(~waitMark, std::memory_order_acq_rel);
        wakeWaiters(m_word, INT_MAX, true);
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
