/* SPDX-License-Identifier: MIT */
#include "mount.h"
#include "rioDio.h"

#include <stddef.h>

_Static_assert(sizeof(SApiMountReq) == 12, "as in C++");
_Static_assert(sizeof(SApiMountResp) == 16, "as in C++");

/* Asks for both mounts where the first file system needs one. */
uint32_t mountInC(TAaSysComSicad mySicad, uint32_t printFlag);
/* Loads a device and verifies it. */
int32_t loadInC(uint16_t device, uint64_t address, const char* filename);
/* Dumps two bytes; the name goes to the buffer. */
int32_t dumpInC(char* name);

uint32_t mountInC(TAaSysComSicad mySicad, uint32_t printFlag)
{
    const TBoolean isNeeded = isMountNeeded(printFlag, 1, 1);
    if (isNeeded) {
        MountFilesystemsToRwMode(mySicad, printFlag);
    }
    return isNeeded;
}

int32_t loadInC(uint16_t device, uint64_t address, const char* filename)
{
    const int32_t written = writeBinaryFileToSrio(device, address, filename);
    return written != ERioWrite_Done ? -written : validateSrioWrite(device, address, filename);
}

int32_t dumpInC(char* name)
{
    return DumpDataToFile("C", 2, 0x10, "c", name);
}
