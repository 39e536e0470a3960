// SPDX-License-Identifier: MIT
#include "AaSem.h"

#include "sem/Semaphore.hpp"

#include <new>
#include <pthread.h>
#include <utility>

struct AaSem {
    explicit AaSem(std::uint32_t count) : semaphore(count) {}
    dorn::host::Semaphore semaphore;
};

struct AaSemReMutex {
    pthread_mutex_t mutex;
};

AaSem* AaSemCreateC(uint32_t initialCount)
{
    return new (std::nothrow) AaSem(initialCount);
}

void AaSemDestroy(AaSem** sem)
{
    if (sem) {
        delete std::exchange(*sem, nullptr);
    }
}

int32_t AaSemTake(AaSem* sem, int32_t timeout)
{
    using namespace dorn::host;
    if (!sem) {
        return 1;
    }
    if (sem->semaphore.tryTake()) {
        return 0;
    }
    return timeout != AA_NO_WAIT && sem->semaphore.take(Clock::get().after(timeout)) ? 0 : 1;
}

int32_t AaSemGive(AaSem* sem)
{
    return sem && sem->semaphore.give() ? 0 : 1;
}

AaSemReMutex* AaSemReMutexCreate()
{
    auto* const mutex = new (std::nothrow) AaSemReMutex;
    if (mutex) {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutex_init(&mutex->mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    return mutex;
}

void AaSemReMutexDestroy(AaSemReMutex** mutex)
{
    if (mutex && *mutex) {
        pthread_mutex_destroy(&(*mutex)->mutex);
        delete std::exchange(*mutex, nullptr);
    }
}

int32_t AaSemReMutexTake(AaSemReMutex* mutex)
{
    return mutex && pthread_mutex_lock(&mutex->mutex) == 0 ? 0 : 1;
}

int32_t AaSemReMutexGive(AaSemReMutex* mutex)
{
    return mutex && pthread_mutex_unlock(&mutex->mutex) == 0 ? 0 : 1;
}
