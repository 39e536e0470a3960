// SPDX-License-Identifier: MIT
#include "KioskS.hpp"

int main(int argc, char** argv)
{
    // The library's 1 is a normal end; a shell's is 0.
    kiosk::KioskS kiosk;
    return RunService(kiosk, argc, argv) == 1 ? 0 : 1;
}
