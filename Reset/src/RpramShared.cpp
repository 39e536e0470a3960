// SPDX-License-Identifier: MIT
#include "RpramShared.h"

#include "AaFile.h"
#include "AaSysLog.h"
#include "RpramFiles.hpp"
#include "rad/ERadHwapi.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <fstream>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

using namespace vel::hwapi::reset;

namespace {

enum Result : std::int32_t { Done = 0, NotOpened = 1, NotSupported = 3 };

constexpr std::size_t longestHistory = 10;
constexpr std::size_t longestText = RPRAM_TEXT_SIZE - 1;

/// Where a path of the target is opened; a path that cannot be opened when there is no place for it.
std::string placeOf(const std::string& path)
{
    std::array<char, PATH_MAX> place{};
    return AaFileGetBoardPath(path.c_str(), place.data(), place.size()) == 0 ? place.data() : "";
}

void provideDirectory()
{
    if (AaFileDirExists(rpramPathForAaFile)) {
        return;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RESET, "ApiResetRpramSet: Creating dir %s", RPRAMPath);
    const std::int32_t result = AaFileCreateDir(rpramPathForAaFile);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RESET, "ApiResetRpramSet: AaFileCreateDir returned %d",
                   result);
}

/// Reads a line. @throws std::exception when there is no memory for it, or the file cannot be read.
void readLine(std::ifstream& file, std::string& line)
{
    file.exceptions(std::ios::badbit); // otherwise a stream keeps to itself why a line is cut
    std::getline(file, line);
}

/// The lines of a file that will be its history; none when there is no file.
std::vector<std::string> readHistory(const std::string& place)
{
    std::vector<std::string> history;
    std::ifstream file(place);
    std::string line;
    while (file.good()) {
        readLine(file, line);
        if (history.size() < longestHistory) {
            history.push_back(line);
        }
    }
    return history;
}

/// The number at the beginning of a text, as a 32-bit board's strtoul() reads it: one that is too great is the
/// greatest, whatever its sign; any other behind a minus sign is negated.
std::uint32_t numberIn(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool isNegated = text.starts_with('-');
    text.remove_prefix(isNegated || text.starts_with('+') ? 1 : 0);
    text.remove_prefix(text.starts_with("0x") || text.starts_with("0X") ? 2 : 0);
    std::uint32_t number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number, 16).ec == std::errc::result_out_of_range) {
        return std::numeric_limits<std::uint32_t>::max();
    }
    return isNegated ? 0 - number : number;
}

std::int32_t set(ERP_RAM_field field, std::uint32_t value, const char* text)
{
    const std::string path = getFileName(field);
    if (path.empty()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, ERadHwapi_RESET, "ApiResetRpramSet: Field %d is not supported",
                       field);
        return NotSupported;
    }
    provideDirectory();
    const std::string place = placeOf(path);
    const std::vector<std::string> history = readHistory(place);
    std::array<char, 2048> buffer; // for all lines; a stream that has none needs memory when the old content is gone
    std::ofstream file;
    file.rdbuf()->pubsetbuf(buffer.data(), buffer.size());
    file.open(place, std::ios::trunc);
    if (!file.is_open()) {
        return NotOpened;
    }
    std::array<char, RPRAM_TEXT_SIZE> line{};
    std::snprintf(line.data(), line.size(), "0x%X :%s", value, text ? text : "");
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RESET, "ApiResetRpramSet: Writing %s to %s", line.data(),
                   path.c_str());
    file << line.data();
    for (const std::string& earlier : history) {
        file << '\n' << earlier;
    }
    file.flush();
    return Done;
}

std::int32_t get(ERP_RAM_field field, std::uint32_t& value, char* text)
{
    const std::string path = getFileName(field);
    if (path.empty()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_RESET, "ApiResetRpramGet: Field %d is not supported",
                       field);
        return NotSupported;
    }
    std::ifstream file(placeOf(path));
    if (!file.good()) {
        return NotOpened;
    }
    std::string line;
    readLine(file, line);
    const std::string_view content = line;
    const std::size_t colon = std::min(content.find(':'), content.size());
    const std::string_view found = content.substr(std::min(colon + 1, content.size()), longestText);
    value = numberIn(content.substr(0, colon));
    *std::copy(found.begin(), found.end(), text) = '\0';
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RESET, "ApiResetRpramGet: Found value 0x%X : %s from %s",
                   value, text, path.c_str());
    return Done;
}

} // namespace

std::int32_t ApiResetRpramSet(ERP_RAM_field field, std::uint32_t value, const char* text)
try {
    return set(field, value, text);
} catch (const std::exception&) {
    return NotOpened;
}

std::int32_t ApiResetRpramGet(ERP_RAM_field field, std::uint32_t* value, char* text)
try {
    return get(field, *value, text);
} catch (const std::exception&) {
    return NotOpened;
}
