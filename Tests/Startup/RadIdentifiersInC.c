/* SPDX-License-Identifier: MIT */
#include "init/ApiStartup.h"
#include "rad/ERadHwapi.h"
#include "rad/ERadHwapiState.h"

_Static_assert(sizeof(ERadHwapi) == 4 && sizeof(ERadHwapiState) == 4, "32-bit values");

uint32_t radIdentifierInC(int index);

uint32_t radIdentifierInC(int index)
{
    static const uint32_t identifiers[] = {ERadHwapi_PrintCtrlTask, ERadHwApi_AnnounceMsgSendToClockS, ERadHwapi_Last,
                                           ERadHwapiState_CpriState, ERadHwapiState_Last};
    return identifiers[index];
}
