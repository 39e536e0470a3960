// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "binary/OwnedFile.hpp"
#include "firmware/UnitIdentity.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <syslog.h>

using namespace vel::hwapi::firmware;

namespace {

using MarkerName = std::array<char, 128>;

/// What reading a number came to, as `fscanf` says it: 1, 0 without digits, EOF without anything.
struct ReadNumber {
    int result;
    std::int32_t value;
};

/// The next character; EOF at the end and where the file cannot be read.
int nextCharacter(AaFile* file)
{
    unsigned char character = 0;
    return AaFileRead(file, &character, 1) == 1 ? character : EOF;
}

ReadNumber readNumber(AaFile* file)
{
    int character = nextCharacter(file);
    while (std::isspace(character) != 0) {
        character = nextCharacter(file);
    }
    if (character == EOF) {
        return {EOF, 0};
    }
    const bool isNegative = character == '-';
    if (isNegative || character == '+') {
        character = nextCharacter(file);
    }
    if (std::isdigit(character) == 0) {
        return {0, 0};
    }
    constexpr std::int64_t greatest = std::numeric_limits<std::int32_t>::max();
    std::int64_t value = 0;
    for (; std::isdigit(character) != 0; character = nextCharacter(file)) {
        value = std::min(value * 10 + (character - '0'), greatest);
    }
    return {1, static_cast<std::int32_t>(isNegative ? -value : value)};
}

/// Opens a marker for writing, in place of a link that somebody has put there and never through it.
OwnedFile openToRewrite(const char* name)
{
    OwnedFile file(AaFileOpen(name, "wl"));
    if (!file && errno == ELOOP && AaFileRemove(name) == 0) {
        file.reset(AaFileOpen(name, "wx"));
    }
    return file;
}

/// Writes the number into the marker.
bool rewrite(const char* name, std::int32_t number, const char* function)
{
    const OwnedFile file = openToRewrite(name);
    if (!file) {
        syslog(LOG_INFO, "%s(): fopen() failed %d", function, errno);
        return false;
    }
    const std::string text = std::to_string(number);
    const std::int32_t written = AaFileWrite(file.get(), text.data(), static_cast<std::uint32_t>(text.size()));
    if (written < 1) {
        syslog(LOG_INFO, "%s(): fprintf() failed %d", function, written);
        return false;
    }
    return true;
}

} // namespace

std::int32_t is_firmware_update_disabled()
{
    if (const OwnedFile marker(AaFileOpen("/ffs/run/logs/disable-firmware-update", "r")); marker) {
        return 1;
    }
    MarkerName name{};
    std::snprintf(name.data(), name.size(), "/ffs/run/logs/disable-firmware-update-%s", smallUnitType().c_str());
    const OwnedFile marker(AaFileOpen(name.data(), "r"));
    return marker ? 1 : 0;
}

std::int32_t is_firmware_update_forced(const char* part)
{
    MarkerName name{};
    std::snprintf(name.data(), name.size(), "/ffs/run/logs/force-firmware-update-%s-%s", smallUnitType().c_str(), part);
    OwnedFile marker(AaFileOpen(name.data(), "r"));
    if (!marker) {
        return 0;
    }
    errno = 0;
    const ReadNumber count = readNumber(marker.get());
    if (count.result != 1) {
        syslog(LOG_INFO, "%s(): fscanf() failed %d %d", __func__, count.result, errno);
        return 0;
    }
    marker.reset();
    if (count.value < 1 || !rewrite(name.data(), count.value - 1, __func__)) {
        return 0;
    }
    syslog(LOG_INFO, "%s(): yes %s %d", __func__, part, count.value);
    return 1;
}
