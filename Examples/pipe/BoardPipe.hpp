// SPDX-License-Identifier: MIT
/// @file BoardPipe.hpp
/// Named pipes of the board that a service reads.
#pragma once

#include "AaFile.h"

#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>

namespace dorn::examples {

/// Opens a named pipe without waiting for writers, and makes it where the board has none yet. For writing as well: a
/// pipe without writers would be at its end all the time.
/// @param directory the folder of @p path
/// @return the descriptor, or -1 with `errno` set
inline int openBoardPipe(const char* directory, const char* path)
{
    std::array<char, PATH_MAX> place{};
    AaFileCreateDir(directory);
    if (AaFileGetBoardPath(path, place.data(), place.size()) != 0 ||
        (mkfifo(place.data(), 0600) != 0 && errno != EEXIST)) {
        return -1;
    }
    return open(place.data(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
}

} // namespace dorn::examples
