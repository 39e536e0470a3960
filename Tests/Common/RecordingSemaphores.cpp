// SPDX-License-Identifier: MIT
// The recording platform's counting semaphores. They block as real ones do; nobody waits for ever.
#include "RecordingPlatform.hpp"

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

struct AaSem {
    unsigned number;
    std::mutex mutex;
    std::condition_variable given;
    std::uint32_t count;
};

namespace {

using dorn::test::formatted;
using dorn::test::RecordingPlatform;

constexpr std::chrono::seconds bound{20};

std::int32_t note(const std::string& call)
{
    return RecordingPlatform::get().note(call, call.substr(0, call.find('(')));
}

unsigned numberOf(const AaSem* sem)
{
    return sem ? sem->number : 0;
}

} // namespace

AaSem* AaSemCreateC(std::uint32_t initialCount)
{
    if (note(formatted("AaSemCreateC(%u)", initialCount)) != 0) {
        return nullptr;
    }
    auto& all = RecordingPlatform::get().semaphores;
    auto made = std::make_shared<AaSem>();
    made->number = static_cast<unsigned>(all.size() + 1);
    made->count = initialCount;
    all.push_back(made);
    return made.get();
}

void AaSemDestroy(AaSem** sem)
{
    note(formatted("AaSemDestroy(%u)", numberOf(std::exchange(*sem, nullptr))));
}

std::int32_t AaSemTake(AaSem* sem, std::int32_t timeout)
{
    if (note(formatted("AaSemTake(%u, %d)", numberOf(sem), timeout)) != 0 || !sem) {
        return 1;
    }
    std::unique_lock lock(sem->mutex);
    if (!sem->given.wait_for(lock, timeout < 0 ? bound : std::chrono::seconds(0), [&] { return sem->count > 0; })) {
        if (timeout < 0) {
            std::fprintf(stderr, "semaphore %u is waited for too long\n", sem->number);
            std::abort();
        }
        return 1;
    }
    --sem->count;
    return 0;
}

std::int32_t AaSemGive(AaSem* sem)
{
    if (note(formatted("AaSemGive(%u)", numberOf(sem))) != 0 || !sem) {
        return 1;
    }
    const std::lock_guard lock(sem->mutex);
    ++sem->count;
    sem->given.notify_one();
    return 0;
}
