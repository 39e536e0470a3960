// SPDX-License-Identifier: MIT
#include "config/TagFile.hpp"

#include "AaSysLog.h"
#include "config/TagStore.hpp"
#include "node/BoardRoot.hpp"
#include "port/CancellationOff.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::host {
namespace {

constexpr off_t largestFile = off_t{16} << 20;

void warn(const std::string& path, std::uint32_t line, const std::string& reason)
{
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "%s:%u: %s", path.c_str(), static_cast<unsigned>(line),
                  reason.c_str());
}

/// The content of an open regular file; nothing, and `errno` set, when it cannot be read.
std::optional<std::string> readAll(int descriptor)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode) || status.st_size > largestFile) {
        errno = S_ISREG(status.st_mode) ? EFBIG : S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return std::nullopt;
    }
    std::string text;
    std::array<char, 16384> piece{};
    for (;;) {
        const ssize_t count = ::read(descriptor, piece.data(), piece.size());
        if (count < 0 && errno != EINTR) {
            return std::nullopt;
        }
        if (count == 0) {
            return text;
        }
        text.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

std::optional<std::string> readFile(const std::string& targetPath)
{
    const int descriptor = ::open(boardPath(targetPath).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return std::nullopt;
    }
    std::optional<std::string> text = readAll(descriptor);
    const int error = errno;
    close(descriptor);
    errno = error;
    return text;
}

/// @return whether the tag is set.
bool setTag(const std::string& targetPath, const TagFileContent::Entry& entry)
{
    try {
        return PerNode<TagStore>::get().set(entry.tag.name, entry.tag.value);
    } catch (const std::exception& error) {
        warn(targetPath, entry.line, "tag '" + entry.tag.name + "' cannot be set: " + error.what());
        return false;
    }
}

} // namespace

std::int32_t readTagFile(const std::string& targetPath)
{
    const CancellationOff untilDone;
    const std::optional<std::string> text = readFile(targetPath);
    if (!text) {
        const auto severity = errno == ENOENT ? EAaSysLogSeverityLevel_Debug : EAaSysLogSeverityLevel_Warning;
        AaSysLogPrint(severity, "configuration file '%s' cannot be read: %s", targetPath.c_str(), std::strerror(errno));
        return 1;
    }
    const TagFileContent content = parseTagFile(*text);
    bool isAllUsed = content.complaints.empty();
    for (const TagFileContent::Entry& entry : content.entries) {
        isAllUsed = setTag(targetPath, entry) && isAllUsed;
    }
    for (const TagFileContent::Complaint& complaint : content.complaints) {
        warn(targetPath, complaint.line, complaint.reason);
    }
    return isAllUsed ? 0 : 2;
}

} // namespace dorn::host
