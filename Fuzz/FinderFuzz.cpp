// SPDX-License-Identifier: MIT
/// @file FinderFuzz.cpp
/// Any names in the directory of firmware images, any unit id and chip identifier: the finder finds the files that the
/// rule names, and writes no further than it has room.
///
/// The input is a byte that says how much room there is and whether the board is given, and texts that end with '/' or
/// NUL, which stand in no name: the board's text, the chip identifier, and the names.
#include "FuzzBoard.hpp"
#include "Require.hpp"
#include "ddal_devicetree.h"
#include "ddal_error.h"
#include "firmware.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using dorn::fuzz::FuzzBoard;
using dorn::fuzz::require;

constexpr const char* directory = "/images";
constexpr std::size_t mostRoom = 15;

std::string& unitId()
{
    static std::string only;
    return only;
}

std::vector<std::string> textsIn(std::string_view input)
{
    constexpr std::size_t most = 30;
    std::vector<std::string> texts(1);
    for (const char character : input) {
        if (character != '/' && character != '\0') {
            texts.back() += character;
        } else if (texts.size() < most) {
            texts.emplace_back();
        } else {
            break;
        }
    }
    texts.resize(std::max<std::size_t>(texts.size(), 2));
    return texts;
}

/// The files of these names, those that can be made, as long as it lives.
class Files {
public:
    explicit Files(const std::string& place, const std::vector<std::string>& names) : m_place(place + "/")
    {
        for (const std::string& name : names) {
            const int descriptor = open((m_place + name).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
            if (descriptor >= 0) {
                close(descriptor);
                m_names.push_back(name);
            }
        }
    }
    ~Files()
    {
        for (const std::string& name : m_names) {
            unlink((m_place + name).c_str());
        }
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    /// The target's paths, as far as 127 characters go, of those whose names have @p search and end with their first
    /// ".bin".
    std::vector<std::string> matching(const std::string& search) const
    {
        std::vector<std::string> paths;
        for (const std::string& name : m_names) {
            const std::size_t ending = name.find(".bin");
            if (name.find(search) != std::string::npos && ending != std::string::npos && ending + 4 == name.size()) {
                paths.push_back((std::string(directory) + "/" + name).substr(0, FIRMWARE_FILE_NAME_SIZE - 1));
            }
        }
        return paths;
    }

private:
    std::string m_place;
    std::vector<std::string> m_names;
};

/// Compares what was found with what there is.
void check(std::int32_t result, const char (*found)[FIRMWARE_FILE_NAME_SIZE], std::size_t room,
           std::vector<std::string> there)
{
    require(result == static_cast<std::int32_t>(there.size()));
    for (std::size_t index = 0; index < mostRoom + 1; ++index) {
        const std::string name(found[index], strnlen(found[index], FIRMWARE_FILE_NAME_SIZE));
        if (index >= std::min(room, there.size())) {
            require(name == "untouched");
        } else {
            const auto same = std::find(there.begin() + static_cast<std::ptrdiff_t>(index), there.end(), name);
            require(same != there.end());
            std::iter_swap(there.begin() + static_cast<std::ptrdiff_t>(index), same);
        }
    }
}

} // namespace

// The board says what the input has it say, and what the finder logs is nobody's business here.
extern "C" {
std::int32_t ddal_devicetree_get_unit_id(std::uint32_t /*unit*/, std::uint32_t maxLength, char* buffer)
{
    std::snprintf(buffer, maxLength + 1, "%s", unitId().c_str());
    return DDAL_OK;
}
std::int32_t ddal_strerror(std::int32_t /*code*/, char* /*buffer*/, std::uint32_t /*maxLength*/)
{
    return DDAL_OK;
}
void syslog(int /*priority*/, const char* /*format*/, ...) {}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzBoard board;
    std::filesystem::create_directory(board.place(directory));
    if (size == 0) {
        return 0;
    }
    const std::size_t room = data[0] & mostRoom;
    const bool isBoardGiven = (data[0] & 0x80U) != 0;
    const std::vector<std::string> texts = textsIn({reinterpret_cast<const char*>(data) + 1, size - 1});
    unitId() = texts[0];
    const std::string& chip = texts[1];
    const Files files(board.place(directory), {texts.begin() + 2, texts.end()});

    char found[mostRoom + 1][FIRMWARE_FILE_NAME_SIZE];
    for (char(&name)[FIRMWARE_FILE_NAME_SIZE] : found) {
        std::snprintf(name, sizeof name, "untouched");
    }
    const std::int32_t result = find_binary_multiple(directory, isBoardGiven ? texts[0].c_str() : nullptr, chip.c_str(),
                                                     found, static_cast<std::int32_t>(room));

    const std::string search = texts[0].substr(0, 3) + "-" + chip;
    if (search.size() > 127) {
        require(result == FIRMWARE_SEARCH_TOO_LONG);
        return 0;
    }
    const std::vector<std::string> ofTheBoard = files.matching(search);
    check(result, found, room, ofTheBoard.empty() ? files.matching(chip) : ofTheBoard);
    return 0;
}
