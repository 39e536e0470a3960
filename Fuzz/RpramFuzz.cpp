// SPDX-License-Identifier: MIT
/// @file RpramFuzz.cpp
/// Any bytes as the file of a reset-persistent field: it is read without harm, and a write in front of it keeps what it
/// has to keep.
#include "FuzzBoard.hpp"
#include "Require.hpp"
#include "RpramShared.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

constexpr std::size_t longestHistory = 10;
constexpr std::size_t longestLine = 99;

constexpr const char* fieldFile = "/var/tmp/hwapi/RP_RAM_field_user1.txt";

using dorn::fuzz::FuzzBoard;
using dorn::fuzz::require;

/// A board that has the field's directory.
struct FieldBoard : FuzzBoard {
    FieldBoard() { std::filesystem::create_directories(place("/var/tmp/hwapi")); }
};

struct Field {
    std::uint32_t value = 0;
    std::array<char, RPRAM_TEXT_SIZE> text{};
};

Field readField()
{
    Field field;
    field.text.fill('#');
    require(ApiResetRpramGet(ERP_RAM_field_user1, &field.value, field.text.data()) == 0);
    require(std::memchr(field.text.data(), '\0', field.text.size()) != nullptr);
    return field;
}

std::string textBehindColon(const std::string& line)
{
    const std::size_t colon = line.find(':');
    const std::string text = colon == std::string::npos ? "" : line.substr(colon + 1, RPRAM_TEXT_SIZE - 1);
    return text.c_str(); // up to the first zero
}

std::string firstLine(const std::string& content)
{
    return content.substr(0, content.find('\n'));
}

/// What is left of the content as history: its first lines.
std::string historyOf(const std::string& content)
{
    std::size_t end = 0;
    for (std::size_t line = 0; line < longestHistory; ++line) {
        end = content.find('\n', line == 0 ? 0 : end + 1);
        if (end == std::string::npos) {
            return content;
        }
    }
    return content.substr(0, end);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FieldBoard board;
    const std::string content(reinterpret_cast<const char*>(data), size);
    board.write(fieldFile, content);

    require(readField().text.data() == textBehindColon(firstLine(content)));

    constexpr std::uint32_t value = 0xA5;
    require(ApiResetRpramSet(ERP_RAM_field_user1, value, content.c_str()) == 0);
    const std::string line = ("0xA5 :" + std::string(content.c_str())).substr(0, longestLine);
    require(board.read(fieldFile) == line + "\n" + historyOf(content));
    const Field written = readField();
    require(written.value == value && written.text.data() == textBehindColon(firstLine(line)));
    return 0;
}
