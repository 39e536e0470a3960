/* SPDX-License-Identifier: MIT */
/// @file AaTimer.h
/// Time-outs that arrive as messages, so that an EU needs no second place to wait.
///
/// The EU that arms a time-out receives, when the time has passed, the message #AA_TIMER_MSG_TIMEOUT, whose payload is
/// the given identity: one pointer-sized word, which the platform never follows. A time-out that is being delivered
/// while it is cancelled may still arrive. One for an EU whose queue is full arrives when there is room again.
#ifndef AA_TIMER_H
#define AA_TIMER_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Id of the time-out message of a forwarded request.
#define AA_TIMER_MSG_TIMEOUT 0x2BFFU

/// An armed time-out; never 0, never used again within a process.
typedef uint64_t TAaTimerId;

/// Arms a time-out for the calling EU.
/// @param timeout micro-seconds, 0 or more
/// @param identity the word that the message's payload will begin with
/// @return its id; 0 when there is no memory or @p timeout is negative.
TAaTimerId AaTimerArm(int64_t timeout, const void* identity);

/// Cancels a time-out. @return 0; 1 when it has been delivered or cancelled already.
int32_t AaTimerCancel(TAaTimerId timer);

#ifdef __cplusplus
}
#endif

#endif
