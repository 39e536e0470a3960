// SPDX-License-Identifier: MIT
#include "log/LogControl.hpp"

#include <climits>

namespace dorn::host {
namespace {

constexpr SharedStoreFormat format{0x444C4743, 1, 64}; // "DLGC"

} // namespace

LogControl::LogControl(const RunDirectory& directory) : m_store(directory, "log.control", format)
{
    static_assert(sizeof(Words) <= format.size);
}

void LogControl::noteFiles()
{
    words().files.fetch_add(1, std::memory_order_seq_cst);
    noteLine();
}

void LogControl::wakeReaders()
{
    words().waiting.store(0, std::memory_order_seq_cst);
    words().wakeUps.fetch_add(1, std::memory_order_seq_cst);
    wakeWaiters(words().wakeUps, INT_MAX, true);
}

std::uint32_t LogControl::announceWait()
{
    const std::uint32_t wakeUps = words().wakeUps.load(std::memory_order_seq_cst);
    words().waiting.store(1, std::memory_order_seq_cst);
    return wakeUps;
}

void LogControl::waitForLines(std::uint32_t announced, Deadline until)
{
    Clock::get().waitWhile(words().wakeUps, announced, until, true);
}

} // namespace dorn::host
