// SPDX-License-Identifier: MIT
#include "device/FileSystem.hpp"

#include "device/Resets.hpp"
#include "state/StateNote.hpp"

#include <charconv>

namespace dorn::board {
namespace {

StateFile modeFile(std::uint32_t id)
{
    return StateFile("file-system-" + std::to_string(id) + ".mode");
}

} // namespace

std::uint32_t FileSystem::mode() const
{
    const std::uint32_t described = m_node.cell("dorn,mode");
    const StateFile file = modeFile(id());
    const auto note = readNote(file);
    if (!note || note->resets != resetCount()) {
        return described;
    }
    std::uint32_t mode = described;
    const char* const end = note->value.data() + note->value.size();
    if (const auto [next, error] = std::from_chars(note->value.data(), end, mode);
        error != std::errc() || next != end) {
        file.setAside("is no mount mode");
        return described;
    }
    return mode;
}

void FileSystem::mount(std::uint32_t mode) const
{
    const StateFile file = modeFile(id());
    const StateLock lock(file.name());
    writeNote(file, {resetCount(), std::to_string(mode)});
}

} // namespace dorn::board
