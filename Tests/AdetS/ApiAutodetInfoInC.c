/* SPDX-License-Identifier: MIT */
#include "new/ApiAutodetInfo.h"

#include <string.h>

_Static_assert(sizeof(EUnitType) == 4 && (EUnitType)-1 < 0, "signed, of 32 bits, as in C++");
_Static_assert(sizeof(EUnitVersion) == 4 && (EUnitVersion)-1 < 0, "signed, of 32 bits, as in C++");
_Static_assert(sizeof(EModuleVersion) == 4 && (EModuleVersion)-1 < 0, "signed, of 32 bits, as in C++");
_Static_assert(sizeof(ETarnBoardType) == 4 && (ETarnBoardType)-1 < 0, "signed, of 32 bits, as in C++");
_Static_assert(sizeof(ETarnRatType) == 4 && (ETarnRatType)-1 < 0, "signed, of 32 bits, as in C++");

TBoolean isTarnUnitInC(void);

TBoolean isTarnUnitInC(void)
{
    char id[8] = {0};
    return ApiGetLocalUnitId(id, sizeof id - 1) == 1 && strcmp(id, "TARN") == 0 &&
           ApiGetLocalUnitType() == EUnitType_Tarn && ApiGetLocalUnitVersion() == EUnitVersion_Tarn &&
           ApiGetSlotIdFromBoardId(0x21) == ADETS_NO_SLOT;
}
