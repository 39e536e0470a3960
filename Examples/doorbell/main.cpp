// SPDX-License-Identifier: MIT
#include "DoorbellS.hpp"

#include "AaFile.h"
#include "DoorbellMessages.hpp"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

/// Opens the door's contact, and makes it where the board has none yet. For writing as well: a pipe without writers
/// would be at its end all the time.
int openContact()
{
    std::array<char, PATH_MAX> path{};
    AaFileCreateDir("/var/run");
    if (AaFileGetBoardPath(dorn::examples::doorContactPath, path.data(), path.size()) != 0 ||
        (mkfifo(path.data(), 0600) != 0 && errno != EEXIST)) {
        return -1;
    }
    return open(path.data(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
}

} // namespace

int main(int argc, char** argv)
{
    const int contact = openContact();
    if (contact < 0) {
        std::perror("DornDoorbellSExe: the door's contact cannot be opened");
        return 0;
    }
    dorn::examples::DoorbellS service(contact);
    return vel::hwapi::common::RunService(service, argc, argv);
}
