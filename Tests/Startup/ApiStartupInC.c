/* SPDX-License-Identifier: MIT */
#include "init/ApiStartup.h"

TBoolean initialiseInC(char** argv);
void declareParametersInC(void);

TBoolean initialiseInC(char** argv)
{
    return ApiStartupInitializeExecutable(1, argv, "Ping", 0xFEDC);
}

void declareParametersInC(void)
{
    ApiStartupInitializeRadParameters();
    ApiStartupInitializeStateRadParameters();
}
