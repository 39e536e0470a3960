// SPDX-License-Identifier: MIT
#include "DoorbellS.hpp"

#include "BoardPipe.hpp"
#include "DoorbellMessages.hpp"

#include <cstdio>

int main(int argc, char** argv)
{
    const int contact = dorn::examples::openBoardPipe("/var/run", dorn::examples::doorContactPath);
    if (contact < 0) {
        std::perror("DornDoorbellSExe: the door's contact cannot be opened");
        return 0;
    }
    dorn::examples::DoorbellS service(contact);
    return vel::hwapi::common::RunService(service, argc, argv);
}
