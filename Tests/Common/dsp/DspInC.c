/* SPDX-License-Identifier: MIT */
#include "dsp.h"

TBoolean readDspInC(const char* name, uint32_t* resetType, uint64_t* runtimeSwAddr);

TBoolean readDspInC(const char* name, uint32_t* resetType, uint64_t* runtimeSwAddr)
{
    SStartUpGlobalParameters config;
    SDspAddressParams addresses;
    const TBoolean isRead = ApiReadDspXml(name, &config, &addresses);
    *resetType = config.bootInfo.resetType;
    *runtimeSwAddr = addresses.runtimeSwAddr;
    return isRead;
}
