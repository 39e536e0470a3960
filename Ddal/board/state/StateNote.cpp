// SPDX-License-Identifier: MIT
#include "state/StateNote.hpp"

#include <charconv>
#include <string_view>

namespace dorn::board {
namespace {

std::optional<StateNote> parseNote(std::string_view content)
{
    StateNote note;
    const char* const end = content.data() + content.size();
    const auto [next, error] = std::from_chars(content.data(), end, note.resets);
    if (error != std::errc() || next == end || *next != '\n' || content.back() != '\n') {
        return std::nullopt;
    }
    const std::string_view rest(next + 1, static_cast<std::size_t>(end - next) - 1);
    if (rest.empty() || rest.find('\n') != rest.size() - 1) {
        return std::nullopt;
    }
    note.value = rest.substr(0, rest.size() - 1);
    return note;
}

} // namespace

std::optional<StateNote> readNote(const StateFile& file)
{
    const auto content = file.read();
    if (!content) {
        return std::nullopt;
    }
    auto note = parseNote(*content);
    if (!note) {
        file.setAside("is no note of the board's state");
    }
    return note;
}

void writeNote(const StateFile& file, const StateNote& note)
{
    file.replace(std::to_string(note.resets) + "\n" + note.value + "\n");
}

} // namespace dorn::board
