// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "AaFile.h"
#include "firmware/UnitIdentity.hpp"

#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <string_view>
#include <syslog.h>

using namespace vel::hwapi::firmware;

namespace {

constexpr const char* function = "find_binary_multiple";

using SearchText = std::array<char, 128>;

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};
using OwnedDirectory = std::unique_ptr<DIR, DirectoryCloser>;

OwnedDirectory openDirectory(const char* path)
{
    std::array<char, PATH_MAX> place{};
    const bool isThere = AaFileGetBoardPath(path, place.data(), static_cast<std::uint32_t>(place.size())) == 0;
    return OwnedDirectory(isThere ? opendir(place.data()) : nullptr);
}

/// Where the files go that are found.
struct Found {
    char (*names)[FIRMWARE_FILE_NAME_SIZE];
    std::int32_t capacity;
    std::int32_t count = 0;

    void add(const char* path, const char* name)
    {
        // Cut where it is too long; a failure leaves no name half made.
        if (count < capacity && std::snprintf(names[count], FIRMWARE_FILE_NAME_SIZE, "%s/%s", path, name) < 0) {
            names[count][0] = '\0';
        }
        ++count;
    }
};

/// Whether a file name has a text, and its first ".bin" at its end.
bool fits(std::string_view name, std::string_view search)
{
    constexpr std::string_view ending = ".bin";
    return name.find(search) != std::string_view::npos && name.ends_with(ending) &&
           name.find(ending) == name.size() - ending.size();
}

/// Looks through a directory. @return whether it could be opened.
bool scan(const char* path, const char* search, void (*logMatch)(const char*), Found& found)
{
    const OwnedDirectory directory = openDirectory(path);
    if (!directory) {
        syslog(LOG_DEBUG, "%s(): opendir(%s) failed", function, path);
        return false;
    }
    syslog(LOG_DEBUG, "%s(): List files in '%s'", function, path);
    while (const dirent* const entry = readdir(directory.get())) { // NOLINT: its own directory stream
        syslog(LOG_DEBUG, "%s():   %s", function, entry->d_name);
        if (fits(entry->d_name, search)) {
            logMatch(entry->d_name);
            found.add(path, entry->d_name);
        }
    }
    return true;
}

/// The first three characters of @p board, or of the unit id where there is none. @return false when that cannot be
/// read.
bool readBoardText(const char* board, UnitIdText& text)
{
    if (board) {
        std::snprintf(text.data(), unitTypeLength + 1, "%s", board);
        return true;
    }
    const bool isRead = readUnitId(text, function);
    text[unitTypeLength] = '\0';
    return isRead;
}

/// @return 0 or the result of find_binary_multiple()
std::int32_t formSearchText(const char* board, const char* chip, SearchText& search)
{
    UnitIdText boardText{};
    if (!readBoardText(board, boardText)) {
        return FIRMWARE_UNIT_ID_NOT_READ;
    }
    const int length = std::snprintf(search.data(), search.size(), "%s-%s", boardText.data(), chip);
    if (length < 0) {
        return FIRMWARE_SEARCH_NOT_FORMED;
    }
    return static_cast<std::size_t>(length) < search.size() ? 0 : FIRMWARE_SEARCH_TOO_LONG;
}

} // namespace

std::int32_t find_binary_multiple(const char* path, const char* board, const char* chip,
                                  char (*file)[FIRMWARE_FILE_NAME_SIZE], std::int32_t items)
{
    if (!path || !chip || !file) {
        return FIRMWARE_ARGUMENT_MISSING;
    }
    syslog(LOG_DEBUG, "%s(): Search for binary chip identifier '%s'", __func__, chip);
    SearchText search{};
    if (const std::int32_t failure = formSearchText(board, chip, search); failure != 0) {
        return failure;
    }
    syslog(LOG_DEBUG, "%s(): Search string '%s'", __func__, search.data());

    Found found{file, items};
    const auto logMatch = [](const char* name) {
        syslog(LOG_DEBUG, "%s(): File '%s' matches to search criteria", function, name);
    };
    if (!scan(path, search.data(), logMatch, found)) {
        return FIRMWARE_DIRECTORY_NOT_OPENED;
    }
    if (found.count > 0) {
        return found.count;
    }

    std::snprintf(search.data(), search.size(), "%s", chip);
    syslog(LOG_DEBUG, "%s(): No board type files, search only chip identifier '%s'", __func__, search.data());
    const auto logFallbackMatch = [](const char* name) {
        syslog(LOG_DEBUG, "%s(): File '%s' matches", function, name);
    };
    return scan(path, search.data(), logFallbackMatch, found) ? found.count : FIRMWARE_DIRECTORY_NOT_OPENED;
}
