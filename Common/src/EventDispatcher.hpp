// SPDX-License-Identifier: MIT
/// @file EventDispatcher.hpp
/// Waits for file descriptors and calls the handler of each that becomes readable.
///
/// 1. Take a dispatcher with Get(id), which everybody shares who knows the id, or with Get(), which is the caller's.
/// 2. Setup() starts its execution unit (EU), which waits with `poll`, at most 200 ms at a time.
/// 3. Any thread registers and unregisters descriptors, before Setup() as well. The EU takes changes over between two
///    waits, so a new descriptor is watched after 200 ms at the latest.
/// 4. Stop() ends the EU; Start() begins anew with the descriptors as they are registered.
///
/// Threads: handlers run on the dispatcher's EU, one at a time. A handler may register and unregister descriptors, its
/// own included, and close them after that. It must not call Stop(), Setup() or WaitSafeSem() of its own dispatcher:
/// they would wait for it. What it throws is logged at error severity and the dispatcher goes on.
///
/// The dispatcher owns neither descriptors nor handlers. To remove a handler whose call may be under way:
///
///     dispatcher.UnregisterEventHandler(fd);
///     dispatcher.WaitSafeSem(); // returns when no handler runs
///     dispatcher.PostSafeSem(); // from here on this handler is not called any more
///     close(fd);
#pragma once

#include "AaPro.h"
#include "AaSem.h"
#include "EventHandler.hpp"
#include "rad/ERadHwapi.h"

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

#include <poll.h>

namespace vel::hwapi::common {

/// Waits for descriptors on an EU of its own and calls their handlers.
class EventDispatcher : public EventHandler {
public:
    /// A descriptor that is waited for: POSIX's own record, in which nothing has happened yet.
    struct TPollFd : pollfd {
        /// @param eventMask what is waited for, as `poll()` has it
        TPollFd(int fileDescriptor, short eventMask) : pollfd{fileDescriptor, eventMask, 0} {}
    };

    /// The dispatcher registered under @p id; it is made when there is none. It is never destroyed.
    static EventDispatcher* Get(unsigned int id);
    /// A new dispatcher that is registered nowhere. The caller owns it.
    static EventDispatcher* Get();

    EventDispatcher();
    /// Stops the EU first. Not to be called by a handler. The semaphores are left behind.
    ~EventDispatcher() override;

    /// Starts the EU; one that runs is stopped before, which takes up to 200 ms.
    /// @param printId feature id of the dispatcher's log lines
    /// @param name the EU's name
    /// @param priority the EU's real-time priority where it has a real-time policy
    /// @param stackSize the EU's stack in bytes; the platform raises it to what it needs
    void Setup(ERadHwapi printId, std::string name, unsigned int priority, unsigned int stackSize);

    /// Starts the EU with the values of the last Setup(). Without a name, and when the EU runs, it only logs.
    /// That the EU could not be created is not reported; Start() may be called again.
    void Start();

    /// Ends the EU and returns when it has ended its last round: at most 200 ms and the handlers in progress later. At
    /// once when none runs.
    void Stop();

    /// Has @p handler called whenever @p fd is readable (POLLIN, POLLPRI or POLLRDNORM). Errors, hang-ups and
    /// writability alone call no handler.
    ///
    /// A descriptor that is registered twice is polled twice, and its later handler is the one that is called. One that
    /// was unregistered must not be registered again before the EU has taken that over: it would be polled, and its
    /// handler lost.
    /// @param handler must live until it has been unregistered, see above
    /// @param events an event mask of `poll`
    /// @throws std::bad_alloc
    void RegisterEventHandler(int fd, EventHandler& handler, short events);

    /// Has no handler called for @p fd any more, not even for an event that has been seen already. Of two registrations
    /// of @p fd that follow each other directly only the first is removed. One that is not registered is passed over.
    /// @throws std::bad_alloc
    void UnregisterEventHandler(int fd);

    /// Waits until no handler runs and lets none run until PostSafeSem().
    void WaitSafeSem();
    /// Lets handlers run again.
    void PostSafeSem();

    /// Does nothing: stands in for the handler of a descriptor that has been unregistered.
    void HandleEvent(int fd) override;

private:
    /// For each entry of m_pollFds where its handler stands in m_eventHandlers; null when it has none.
    using HandlerPlaces = std::vector<EventHandler**>;

    static void* DispatcherFunction(void* args);
    void PollLoop();
    bool isRunning();
    void takeOverChanges();       ///< m_handlerRegSem is held
    HandlerPlaces findHandlers(); ///< m_handlerRegSem is held
    void callHandlers(const HandlerPlaces& handlers);
    void callHandler(const TPollFd& entry, EventHandler** place);

    AaSem* m_exitSem;              ///< taken while the EU runs
    AaSem* m_handlerRegSem;        ///< guards the tables below
    AaSem* m_handlerSfpRemSafeSem; ///< held around each handler call
    std::vector<TPollFd> m_eventFileDescriptors;
    std::list<int> m_fdsToRemove;
    std::map<int, EventHandler*> m_eventHandlers;
    std::uint32_t m_handlerVectorChanged = 0;
    std::vector<TPollFd> m_pollFds; ///< the EU's own copy
    TAaProEuId m_euId = 0;          ///< the EU runs while it is not 0
    ERadHwapi m_printId = static_cast<ERadHwapi>(0);
    std::string m_name;
    std::uint32_t m_priority = 0;
    std::uint32_t m_stackSize = 0;
};

} // namespace vel::hwapi::common
