// SPDX-License-Identifier: MIT
#include "EventDispatcher.hpp"

#include "AaSysCom.h"
#include "AaSysLog.h"
#include "SemLock.hpp"

#include <atomic>
#include <exception>
#include <iterator>
#include <mutex>
#include <utility>

namespace vel::hwapi::common {
namespace {

constexpr int pollTime = 200; // milliseconds
constexpr short readable = POLLIN | POLLPRI | POLLRDNORM;
static_assert(readable == 0x43);
static_assert(sizeof(EventDispatcher::TPollFd) == sizeof(pollfd));

constinit std::mutex registryMutex;

} // namespace

EventDispatcher* EventDispatcher::Get(unsigned int id)
{
    static auto* const dispatchers = new std::map<unsigned int, EventDispatcher>; // outlives static objects
    const std::lock_guard lock(registryMutex);
    return &(*dispatchers)[id];
}

EventDispatcher* EventDispatcher::Get()
{
    return new EventDispatcher;
}

EventDispatcher::EventDispatcher()
    : m_exitSem(AaSemCreateC(1)), m_handlerRegSem(AaSemCreateC(1)), m_handlerSfpRemSafeSem(AaSemCreateC(1))
{
}

EventDispatcher::~EventDispatcher()
{
    Stop();
}

void EventDispatcher::Setup(ERadHwapi printId, std::string name, unsigned int priority, unsigned int stackSize)
{
    if (isRunning()) {
        Stop();
    }
    m_printId = printId;
    m_name = std::move(name);
    m_priority = priority;
    m_stackSize = stackSize;
    Start();
}

void EventDispatcher::Start()
{
    const TAaProEuId euId = std::atomic_ref(m_euId).load();
    if (euId != 0 || m_name.empty()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, m_printId, "Event Dispatcher cannot be started (name=%s, euId=%d)",
                       m_name.c_str(), static_cast<int>(euId));
        return;
    }
    AaSemTake(m_exitSem, AA_WAIT_FOREVER);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, m_printId, "Starting Event Dispatcher %s", m_name.c_str());
    EventDispatcher* const self = this;
    const std::int32_t status = AaSysComEuCreateAndStart(&m_euId, m_name.c_str(), DispatcherFunction, m_stackSize,
                                                         m_priority, &self, sizeof(self));
    if (status != 0) {
        AaSemGive(m_exitSem); // nobody else would, and Stop() would wait for ever
    }
}

void EventDispatcher::Stop()
{
    std::atomic_ref(m_euId).store(0);
    const SemLock exit(m_exitSem);
}

bool EventDispatcher::isRunning()
{
    return std::atomic_ref(m_euId).load() != 0;
}

void EventDispatcher::RegisterEventHandler(int fd, EventHandler& handler, short events)
{
    const SemLock lock(m_handlerRegSem);
    EventHandler*& place = m_eventHandlers[fd];
    m_eventFileDescriptors.emplace_back(fd, events);
    std::atomic_ref(place).store(&handler);
    std::atomic_ref(m_handlerVectorChanged).store(1);
}

void EventDispatcher::UnregisterEventHandler(int fd)
{
    const SemLock lock(m_handlerRegSem);
    m_fdsToRemove.push_back(fd);
    const auto found = m_eventHandlers.find(fd);
    if (found != m_eventHandlers.end()) {
        std::atomic_ref(found->second).store(this);
    }
    // Also goes on behind an entry that it has erased, so that of two neighbours only the first goes.
    for (std::size_t index = 0; index < m_eventFileDescriptors.size(); ++index) {
        if (m_eventFileDescriptors[index].fd == fd) {
            m_eventFileDescriptors.erase(std::next(m_eventFileDescriptors.begin(), static_cast<std::ptrdiff_t>(index)));
        }
    }
    std::atomic_ref(m_handlerVectorChanged).store(1);
}

void EventDispatcher::WaitSafeSem()
{
    AaSemTake(m_handlerSfpRemSafeSem, AA_WAIT_FOREVER);
}

void EventDispatcher::PostSafeSem()
{
    AaSemGive(m_handlerSfpRemSafeSem);
}

void EventDispatcher::HandleEvent(int /*fd*/) {}

void* EventDispatcher::DispatcherFunction(void* args)
{
    EventDispatcher* const dispatcher = *static_cast<EventDispatcher**>(args);
    dispatcher->PollLoop();
    return nullptr;
}

void EventDispatcher::PollLoop()
{
    HandlerPlaces handlers;
    if (!m_pollFds.empty()) { // left over from an earlier life
        const SemLock lock(m_handlerRegSem);
        handlers = findHandlers();
    }
    while (isRunning()) {
        if (std::atomic_ref(m_handlerVectorChanged).load() == 1) {
            const SemLock lock(m_handlerRegSem);
            takeOverChanges();
            handlers = findHandlers();
        }
        const int count = poll(m_pollFds.data(), m_pollFds.size(), pollTime);
        if (count < 0) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_printId, "Event Handler %s - poll() failed", m_name.c_str());
        } else if (count > 0) {
            callHandlers(handlers);
        }
    }
    // Once the semaphore is given the dispatcher may be set up anew or be gone.
    const ERadHwapi printId = m_printId;
    const std::string name = m_name;
    AaSemGive(m_exitSem);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, printId, "Event Dispatcher %s finished polling", name.c_str());
}

void EventDispatcher::takeOverChanges()
{
    for (const int fd : m_fdsToRemove) {
        m_eventHandlers.erase(fd);
    }
    m_fdsToRemove.clear();
    m_pollFds = m_eventFileDescriptors;
    std::atomic_ref(m_handlerVectorChanged).store(0);
}

/// A place in the map stays where it is until takeOverChanges() removes it, whatever other threads register meanwhile:
/// so handlers are looked up without the lock that guards the map.
EventDispatcher::HandlerPlaces EventDispatcher::findHandlers()
{
    HandlerPlaces places;
    places.reserve(m_pollFds.size());
    for (const TPollFd& entry : m_pollFds) {
        const auto found = m_eventHandlers.find(entry.fd);
        places.push_back(found == m_eventHandlers.end() ? nullptr : &found->second);
    }
    return places;
}

void EventDispatcher::callHandlers(const HandlerPlaces& handlers)
{
    for (std::size_t index = 0; index < m_pollFds.size(); ++index) {
        callHandler(m_pollFds[index], handlers[index]);
    }
}

void EventDispatcher::callHandler(const TPollFd& entry, EventHandler** place)
{
    const SemLock lock(m_handlerSfpRemSafeSem);
    EventHandler* const handler = (entry.revents & readable) && place ? std::atomic_ref(*place).load() : nullptr;
    if (!handler) {
        return;
    }
    try {
        handler->HandleEvent(entry.fd);
    } catch (const std::exception& failure) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_printId, "Event Handler %s - HandleEvent(%d) failed: %s",
                       m_name.c_str(), entry.fd, failure.what());
    } catch (...) {
        if (!std::current_exception()) {
            throw; // no exception, but the thread being cancelled
        }
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_printId, "Event Handler %s - HandleEvent(%d) failed",
                       m_name.c_str(), entry.fd);
    }
}

} // namespace vel::hwapi::common
