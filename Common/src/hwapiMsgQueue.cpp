// SPDX-License-Identifier: MIT
#include "hwapiMsgQueue.h"

#include "AaSysCom.h"

void hwapiMsgQueueInit() {}

void hwapiMsgQueueCreateAccessMutex() {}

void hwapiMsgQueueDestroy() {}

void* hwapiMsgQueueReceive(int32_t timeout)
{
    return AaSysComMsgReceive(timeout);
}

void* hwapiMsgQueueReceiveSelective(int32_t timeout, const uint16_t* filter)
{
    return AaSysComMsgReceiveSelective(timeout, filter);
}
