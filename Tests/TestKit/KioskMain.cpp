// SPDX-License-Identifier: MIT
#include "KioskS.hpp"

int main(int argc, char** argv)
{
    kiosk::KioskS kiosk;
    return RunService(kiosk, argc, argv);
}
