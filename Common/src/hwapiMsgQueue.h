/* SPDX-License-Identifier: MIT */
/// @file hwapiMsgQueue.h
/// The message queue of the calling execution unit (EU). Every receive of the library goes through here.
#ifndef HWAPI_MSG_QUEUE_H
#define HWAPI_MSG_QUEUE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Prepares the calling EU's queue. Does nothing: the platform creates the queue with the EU.
void hwapiMsgQueueInit(void);

/// Prepares the process for queues that several EUs use. Does nothing.
void hwapiMsgQueueCreateAccessMutex(void);

/// Gives up the calling EU's queue. Does nothing: the queue ends with its EU.
void hwapiMsgQueueDestroy(void);

/// Takes the calling EU's next message.
/// @param timeout micro-seconds; -1 waits without limit, 0 does not wait
/// @return the message, owned by the caller, who ends it with AaSysComMsgDestroy() or AaSysComMsgSend(); null when none
///   came in time or the EU was woken.
void* hwapiMsgQueueReceive(int32_t timeout);

/// Takes the calling EU's first message whose id is listed; the others stay queued in their order.
/// @param timeout as for hwapiMsgQueueReceive()
/// @param filter 16-bit words: the number of ids, then the ids
/// @return as for hwapiMsgQueueReceive()
void* hwapiMsgQueueReceiveSelective(int32_t timeout, const uint16_t* filter);

#ifdef __cplusplus
}
#endif

#endif
