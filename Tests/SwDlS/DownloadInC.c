/* SPDX-License-Identifier: MIT */
#include "mount.h"

_Static_assert(sizeof(SApiMountReq) == 12, "as in C++");
_Static_assert(sizeof(SApiMountResp) == 16, "as in C++");

/* Asks for both mounts where the first file system needs one. */
uint32_t mountInC(TAaSysComSicad mySicad, uint32_t printFlag);

uint32_t mountInC(TAaSysComSicad mySicad, uint32_t printFlag)
{
    const TBoolean isNeeded = isMountNeeded(printFlag, 1, 1);
    if (isNeeded) {
        MountFilesystemsToRwMode(mySicad, printFlag);
    }
    return isNeeded;
}
