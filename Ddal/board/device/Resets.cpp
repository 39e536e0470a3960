// SPDX-License-Identifier: MIT
#include "device/Resets.hpp"

#include "node/EeTable.hpp"
#include "node/PerNode.hpp"
#include "port/Descriptor.hpp"
#include "state/StateNote.hpp"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <unistd.h>
#include <vector>

extern "C" { // glibc 2.36 leaves it out
#include <sys/pidfd.h>
}

namespace dorn::board {
namespace {

const StateFile& resetsFile()
{
    static const StateFile file("resets");
    return file;
}

bool isAlive(const host::EeTable& table, std::int32_t pid)
{
    const std::vector<host::EeInfo> processes = table.list();
    return std::any_of(processes.begin(), processes.end(),
                       [pid](const host::EeInfo& process) { return process.alive && process.pid == pid; });
}

/// Kills a process of the node, and no other that may have got its number meanwhile.
void killProcess(const host::EeTable& table, std::int32_t pid)
{
    const host::Descriptor process(pidfd_open(pid, 0));
    if (process && isAlive(table, pid)) {
        pidfd_send_signal(process.get(), SIGKILL, nullptr, 0);
    }
}

void killNode()
{
    const host::EeTable& table = host::PerNode<host::EeTable>::get();
    for (const host::EeInfo& process : table.list()) {
        if (process.alive && process.pid != getpid()) {
            killProcess(table, process.pid);
        }
    }
}

} // namespace

std::uint32_t resetCount()
{
    const auto note = readNote(resetsFile());
    return note ? note->resets : 0;
}

std::optional<host::Nanoseconds> lastReset()
{
    const auto note = readNote(resetsFile());
    std::int64_t when = 0;
    if (!note || std::from_chars(note->value.data(), note->value.data() + note->value.size(), when).ec != std::errc()) {
        return std::nullopt;
    }
    return host::Nanoseconds(when);
}

void countReset()
{
    const StateLock lock(resetsFile().name());
    writeNote(resetsFile(), {resetCount() + 1, std::to_string(host::Clock::get().wall().count())});
}

void resetBoard()
{
    countReset();
    killNode();
    for (;;) {
        kill(getpid(), SIGKILL);
    }
}

} // namespace dorn::board
