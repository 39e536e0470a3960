/* SPDX-License-Identifier: MIT */
#include "hwapiMsgQueue.h"

void* receiveInC(int32_t timeout);
void* receiveSelectiveInC(int32_t timeout, uint16_t id);

void* receiveInC(int32_t timeout)
{
    hwapiMsgQueueCreateAccessMutex();
    hwapiMsgQueueInit();
    void* message = hwapiMsgQueueReceive(timeout);
    hwapiMsgQueueDestroy();
    return message;
}

void* receiveSelectiveInC(int32_t timeout, uint16_t id)
{
    const uint16_t filter[] = {1, id};
    return hwapiMsgQueueReceiveSelective(timeout, filter);
}
