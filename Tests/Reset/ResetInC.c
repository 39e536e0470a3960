/* SPDX-License-Identifier: MIT */
#include "ResetShared.h"
#include "RpramShared.h"

_Static_assert(sizeof(ERP_RAM_field) == 4, "as in C++");

int32_t rememberAndResetInC(uint32_t value);

int32_t rememberAndResetInC(uint32_t value)
{
    const int32_t result = ApiResetRpramSet(ERP_RAM_field_user5, value, "from C");
    ApiResetMcu();
    return result;
}
