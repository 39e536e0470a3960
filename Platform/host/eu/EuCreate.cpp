// SPDX-License-Identifier: MIT
#include "AaSysCom.h"
#include "AaSysLog.h"
#include "eu/Eu.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <pthread.h>
#include <sched.h>
#include <string>
#include <unistd.h>

namespace dorn::host {
namespace {

/// What the runtime below an EU needs: formatting a log line and unwinding are far beyond the few KiB that targets ask
/// for. It is address space; only what is touched becomes memory.
constexpr std::size_t leastStackSize = std::size_t{1} << 20;

/// Everything the new thread needs; its own.
struct Start {
    Eu* eu;
    TAaSysComEuEntry entry;
    std::unique_ptr<std::max_align_t[]> args;
};

void* run(void* argument)
{
    const std::unique_ptr<Start> start(static_cast<Start*>(argument));
    eus::adopt(*start->eu);
    pthread_setname_np(pthread_self(), std::string(start->eu->name.data()).substr(0, 15).c_str());
    start->entry(start->args.get());
    return nullptr;
}

/// Thread attributes that are released with their scope.
class Attributes {
public:
    Attributes() { pthread_attr_init(&m_value); }
    ~Attributes() { pthread_attr_destroy(&m_value); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    pthread_attr_t* get() { return &m_value; }

private:
    pthread_attr_t m_value{};
};

std::size_t stackBytes(std::uint32_t wanted)
{
    const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t size = std::max<std::size_t>(wanted, leastStackSize);
    return (size + pageSize - 1) / pageSize * pageSize;
}

/// Waits for a thread's end; lets it go on alone when the wait is cancelled.
class ThreadEnd {
public:
    explicit ThreadEnd(pthread_t thread) : m_thread(thread) {}
    ~ThreadEnd()
    {
        if (!m_isJoined) {
            pthread_detach(m_thread);
        }
    }
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;

    void await()
    {
        pthread_join(m_thread, nullptr);
        m_isJoined = true;
    }

private:
    pthread_t m_thread;
    bool m_isJoined = false;
};

bool isRealTime(EAaProEuSchedulingPolicy policy)
{
    return policy == EAaProEuSchedulingPolicy_RoundRobin || policy == EAaProEuSchedulingPolicy_Fifo;
}

void askForRealTime(pthread_attr_t* attributes, EAaProEuSchedulingPolicy policy, std::uint32_t priority)
{
    const int native = policy == EAaProEuSchedulingPolicy_Fifo ? SCHED_FIFO : SCHED_RR;
    sched_param parameter{};
    parameter.sched_priority = std::clamp(static_cast<int>(std::min(priority, std::uint32_t{INT_MAX})),
                                          sched_get_priority_min(native), sched_get_priority_max(native));
    pthread_attr_setinheritsched(attributes, PTHREAD_EXPLICIT_SCHED);
    pthread_attr_setschedpolicy(attributes, native);
    pthread_attr_setschedparam(attributes, &parameter);
}

void sayOnceThatRealTimeIsDenied(const char* euName)
{
    static std::atomic<bool> isSaid{false};
    if (!isSaid.exchange(true)) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Debug,
                      "EU %s and others run time-shared: this process may not use real-time scheduling", euName);
    }
}

int createThread(pthread_t& thread, Start* start, std::uint32_t stackSize, EAaProEuSchedulingPolicy policy,
                 std::uint32_t priority, bool isDetached)
{
    for (bool realTime = isRealTime(policy);; realTime = false) {
        Attributes attributes;
        pthread_attr_setstacksize(attributes.get(), stackBytes(stackSize));
        pthread_attr_setdetachstate(attributes.get(), isDetached ? PTHREAD_CREATE_DETACHED : PTHREAD_CREATE_JOINABLE);
        if (realTime) {
            askForRealTime(attributes.get(), policy, priority);
        }
        const int result = pthread_create(&thread, attributes.get(), run, start);
        if (result != EPERM || !realTime) {
            return result;
        }
        sayOnceThatRealTimeIsDenied(start->eu->name.data());
    }
}

std::unique_ptr<std::max_align_t[]> copyOf(const void* args, std::uint32_t size)
{
    const std::size_t words = size / sizeof(std::max_align_t) + 1;
    std::unique_ptr<std::max_align_t[]> copy(new (std::nothrow) std::max_align_t[words]);
    if (copy && size > 0) {
        std::memcpy(copy.get(), args, size);
    }
    return copy;
}

} // namespace
} // namespace dorn::host

int32_t AaProEeGetDefaultSchedulingPolicy(EAaProEuSchedulingPolicy* policy)
{
    if (!policy) {
        return 1;
    }
    *policy = EAaProEuSchedulingPolicy_Background;
    return 0;
}

int32_t AaSysComEuCreateAndStart(TAaProEuId* euId, const char* name, TAaSysComEuEntry entry, uint32_t stackSize,
                                 uint32_t priority, const void* args, uint32_t argsSize)
{
    return AaSysComEuCreateAndStartWithPolicy(euId, name, entry, stackSize, EAaProEuSchedulingPolicy_NotDefined,
                                              priority, args, argsSize, 0);
}

int32_t AaSysComEuCreateAndStartWithPolicy(TAaProEuId* euId, const char* name, TAaSysComEuEntry entry,
                                           uint32_t stackSize, EAaProEuSchedulingPolicy policy, uint32_t priority,
                                           const void* args, uint32_t argsSize, TBoolean waitForEnd)
{
    using namespace dorn::host;
    if (!name || !entry || (!args && argsSize > 0)) {
        return EINVAL;
    }
    Eu* const eu = eus::acquire(name);
    if (!eu) {
        return EAGAIN;
    }
    std::unique_ptr<Start> start(new (std::nothrow) Start{eu, entry, copyOf(args, argsSize)});
    if (!start || !start->args) {
        eus::release(*eu);
        return ENOMEM;
    }
    const TAaProEuId idBefore = euId ? *euId : 0;
    if (euId) {
        *euId = eu->id.load(); // before the thread exists, so that it finds its own id there
    }
    pthread_t thread{};
    const int result = createThread(thread, start.get(), stackSize, policy, priority, !waitForEnd);
    if (result != 0) {
        if (euId) {
            *euId = idBefore;
        }
        eus::release(*eu);
        return result;
    }
    start.release(); // NOLINT(bugprone-unused-return-value): the thread owns it
    if (waitForEnd) {
        ThreadEnd(thread).await();
    }
    return 0;
}

void AaSysComEuWakeUp(TAaProEuId euId)
{
    if (dorn::host::Eu* const eu = dorn::host::eus::find(euId)) {
        eu->queue.requestWakeUp();
    }
}
