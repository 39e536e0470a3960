// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "binary/OwnedFile.hpp"
#include "firmware/UnitIdentity.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <syslog.h>

using namespace vel::hwapi::firmware;

namespace {

using MarkerName = std::array<char, 128>;

/// What reading a number came to, as `fscanf` says it: 1, 0 without digits, EOF without anything.
struct ReadNumber {
    int result;
    std::int32_t value;
};

ReadNumber readNumber(AaFile* file)
{
    std::array<char, 64> text{};
    const std::int32_t count = AaFileRead(file, text.data(), static_cast<std::uint32_t>(text.size() - 1));
    const std::string_view read(text.data(), static_cast<std::size_t>(std::max(count, 0)));
    if (read.find_first_not_of(" \t\n\v\f\r") == std::string_view::npos) {
        return {EOF, 0};
    }
    char* end = nullptr;
    const long value = std::strtol(text.data(), &end, 10);
    constexpr long least = std::numeric_limits<std::int32_t>::min();
    constexpr long greatest = std::numeric_limits<std::int32_t>::max();
    return {end == text.data() ? 0 : 1, static_cast<std::int32_t>(std::clamp(value, least, greatest))};
}

/// Writes the number in place of the marker, never through a link that somebody has put there.
bool rewrite(const char* name, std::int32_t number, const char* function)
{
    AaFileRemove(name);
    const OwnedFile file(AaFileOpen(name, "wx"));
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
