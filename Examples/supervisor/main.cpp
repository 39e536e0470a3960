// SPDX-License-Identifier: MIT
#include "SupervisorS.hpp"

#include "BoardPipe.hpp"

#include <cstdio>

int main(int argc, char** argv)
{
    const int fifo = dorn::examples::openBoardPipe("/tmp", "/tmp/SupervisorFifo");
    if (fifo < 0) {
        std::perror("DornSupervisorSExe: the supervisor's pipe cannot be opened");
        return 0;
    }
    dorn::examples::SupervisorS service(fifo);
    return vel::hwapi::common::RunService(service, argc, argv);
}
