/* SPDX-License-Identifier: MIT */
/// @file AaSem.h
/// Counting semaphores and recursive mutexes between the EUs of one process.
#ifndef AA_SEM_H
#define AA_SEM_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// A counting semaphore; made by AaSemCreateC().
typedef struct AaSem AaSem;
/// A recursive mutex; made by AaSemReMutexCreate().
typedef struct AaSemReMutex AaSemReMutex;

/// Creates a counting semaphore. @return it, owned by the caller; null when there is no memory.
AaSem* AaSemCreateC(uint32_t initialCount);

/// Destroys a semaphore and sets the handle to null. Nobody may wait on it. Null (either one) is passed over.
///
/// Who has taken a count may destroy the semaphore although the AaSemGive() that made the count has not returned yet:
/// it must not touch the semaphore any more once the count can be taken.
void AaSemDestroy(AaSem** sem);

/// Takes one count, waiting for it up to @p timeout micro-seconds (#AA_WAIT_FOREVER, #AA_NO_WAIT).
/// @return 0; 1 when the time passed without one, or @p sem is null.
int32_t AaSemTake(AaSem* sem, int32_t timeout);

/// Gives one count and wakes one waiter. May be called from a signal handler.
/// @return 0; 1 when @p sem is null or its count is at its greatest value.
int32_t AaSemGive(AaSem* sem);

/// Creates a recursive mutex. @return it, owned by the caller; null when there is no memory.
AaSemReMutex* AaSemReMutexCreate(void);

/// Destroys a recursive mutex and sets the handle to null. Nobody may hold it. Null (either one) is passed over.
void AaSemReMutexDestroy(AaSemReMutex** mutex);

/// Locks the mutex; the thread that holds it may lock it again. @return 0; 1 when @p mutex is null.
int32_t AaSemReMutexTake(AaSemReMutex* mutex);

/// Undoes one AaSemReMutexTake(). @return 0; 1 when @p mutex is null or the calling thread does not hold it.
int32_t AaSemReMutexGive(AaSemReMutex* mutex);

#ifdef __cplusplus
}
#endif

#endif
