/* SPDX-License-Identifier: MIT */
#include "firmware.h"

#include <stddef.h>

int32_t updateFpgaInC(void);

/* What a service in C does about its FPGA. */
int32_t updateFpgaInC(void)
{
    char name[FIRMWARE_FILE_NAME_SIZE];
    if (is_firmware_update_disabled()) {
        return 0;
    }
    const int32_t needed = is_fpga_update_needed(name, sizeof name);
    return needed == 1 ? update_fpga(name) : needed;
}
