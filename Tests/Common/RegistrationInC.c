/* SPDX-License-Identifier: MIT */
#include "ApiRegSysLogRingBuf.h"
#include "SupervisorFifo.h"

TBoolean registerRingBufferInC(uint32_t featureId, const char* fileName);
int32_t writeSupervisorFifoInC(const char* text, size_t size);

TBoolean registerRingBufferInC(uint32_t featureId, const char* fileName)
{
    return HwApiRegisterSysLogRingBuffer(featureId, 1024, EAaSysLogSeverityLevel_Debug, NULL, fileName);
}

int32_t writeSupervisorFifoInC(const char* text, size_t size)
{
    return SupervisorFifoWrite(size, text);
}
