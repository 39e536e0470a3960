// SPDX-License-Identifier: MIT
#include "gateway/PlaceWatch.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace dorn::gateway {

PlaceWatch::PlaceWatch(const host::RunDirectory& directory)
    : m_directory(directory), m_place(fileAt(directory.descriptor(), ""))
{
    m_place.directory = AT_FDCWD;
    m_place.path = directory.path();
}

PlaceWatch::File PlaceWatch::fileAt(int directory, std::string path)
{
    struct stat status {};
    fstatat(directory, path.c_str(), &status, AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH);
    return {directory, std::move(path), status.st_dev, status.st_ino};
}

bool PlaceWatch::File::isGone() const
{
    struct stat status {};
    if (fstatat(directory, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT || errno == ENOTDIR;
    }
    return status.st_dev != device || status.st_ino != number;
}

void PlaceWatch::add(std::string name)
{
    m_sockets.push_back(fileAt(m_directory.descriptor(), std::move(name)));
}

std::optional<std::string> PlaceWatch::whatIsMissing() const
{
    if (m_place.isGone()) {
        return "the run directory '" + m_directory.path() + "' is gone";
    }
    const auto gone = std::find_if(m_sockets.begin(), m_sockets.end(), [](const File& file) { return file.isGone(); });
    if (gone != m_sockets.end()) {
        return "the socket '" + gone->path + "' in '" + m_directory.path() + "' is gone";
    }
    return std::nullopt;
}

} // namespace dorn::gateway
