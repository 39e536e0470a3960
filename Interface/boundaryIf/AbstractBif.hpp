// SPDX-License-Identifier: MIT
/// @file AbstractBif.hpp
/// A boundary interface (Bif) offers one piece of hardware to the services: operations that a driver implements, and
/// named events that clients take with callbacks. This is what every boundary interface is made of.
///
/// 1. A driver derives from a concrete interface, such as sfp::AbstractSfpBif, and implements its operations.
/// 2. Clients register one callback for each event that they want.
/// 3. They call initialize() if they want the events on a thread of the interface, or leave it.
/// 4. The driver raises events. Before initialize(), each is delivered in the thread that raises it, with the driver's
///    own parameter object, and has been delivered when the call returns. Afterwards each is queued with a copy of the
///    parameter, and the event worker's thread delivers them one at a time, in the order in which they were raised.
///
/// Whether the event worker runs is asked anew for every event; there is no choice per callback or per event. To queue
/// an event costs two allocations, the copy and the event, and a place in the worker's queue. The thread that raises it
/// may use its parameter object again as soon as the call returns.
///
/// Threads: any number may raise events at the same time. The callbacks have no lock: register them before events flow,
/// and remove them when none does any more.
///
/// Life: an interface must not be destroyed while an event of it is queued, nor must a callback. An interface with a
/// worker of its own runs its thread until the process ends: once initialized, it must not be destroyed at all. One
/// that was given a worker may be, after the worker has run everything that was queued.
///
/// A concrete interface derives its callback class from CallbackFunctor, declares its operations, and for each event
/// has a public set<Event>Callback() that calls addCallback(), a protected virtual call<Event>Callback() that calls
/// callCallback(), and the event's name as a static member of type std::string, written as
///
///     [[gnu::init_priority(101)]] inline static const std::string SFP_EVENT_NAME = "SfpEvent";
///
/// Such a name is there before any ordinary static object of any source file is initialized, and until the last of them
/// is destroyed; it never changes, so all threads may use it. (Without the priority, a static object whose source file
/// does not see the interface's header could come before it; and no string of this length can be made at compile time.)
#pragma once

#include "InvalidParameterException.hpp"
#include "Worker.hpp"
#include "boundaryIf/AbstractAsynchronousBif.hpp"
#include "boundaryIf/AbstractBaseBif.hpp"

#include <map>
#include <memory>
#include <string>

namespace vel::hwapi::common::bif {

/// @tparam T what an event tells: a value class with a virtual destructor and a copy constructor
template <class T>
class AbstractBif : public AbstractBaseBif, public AbstractAsynchronousBif<T> {
public:
    class CallbackFunctor;
    class CallbackEvent;

    /// Empties the register of callbacks. Events that are queued are still delivered.
    virtual void removeAllCallbacks() { m_callbacks.clear(); }

protected:
    /// Events are delivered by a worker of the interface's own.
    AbstractBif() : AbstractAsynchronousBif<T>(m_internalWorker) {}

    /// Events are delivered by @p worker, which may serve several interfaces: their events then run on one thread, in
    /// the order in which they were raised. It has to outlive the interface.
    explicit AbstractBif(AbstractWorker& worker) : AbstractAsynchronousBif<T>(worker) {}

    /// Registers @p callback for the event @p name, in place of the one before. It stays the caller's.
    /// @throws InvalidParameterException "callback null" when it is null; the one before stays then.
    virtual void addCallback(const std::string& name, CallbackFunctor* callback);

    /// Raises the event @p name. Nothing happens when no callback is registered for it.
    /// @throws std::bad_alloc when it cannot be queued; whatever the callback throws when it is called at once.
    virtual void callCallback(const std::string& name, T& parameter);

    /// Calls back in the way that is right at this moment: asynchronously when isInitializationDone().
    void callCallbackWithParameter(CallbackFunctor& callback, T& parameter);

    /// Calls back at once, in this thread, with @p parameter itself.
    void callEventSynchronously(CallbackFunctor& callback, T& parameter);

    /// Queues an event with a copy of @p parameter. Never waits for the callback.
    /// @throws std::bad_alloc when there is no memory; nothing is queued and nothing left behind then.
    void callEventAsynchronously(CallbackFunctor& callback, T& parameter);

private:
    using TCallbackMappings = std::map<std::string, CallbackFunctor*>;

    Worker m_internalWorker; ///< is the event worker when no other was given
    TCallbackMappings m_callbacks;
};

/// What a concrete interface derives its own callback class from.
template <class T>
class AbstractBif<T>::CallbackFunctor : public AbstractAsynchronousBif<T>::EventFunctor {
};

/// An event that owns its parameter until it has been delivered.
template <class T>
class AbstractBif<T>::CallbackEvent : public AbstractAsynchronousBif<T>::Event {
public:
    using AbstractAsynchronousBif<T>::Event::Event;
    /// Deletes the parameter.
    void teardown() override;
};

template <class T>
void AbstractBif<T>::addCallback(const std::string& name, CallbackFunctor* callback)
{
    if (!callback) {
        // Known to readers of logs as line 108; a test holds it there.
        throw InvalidParameterException("callback null", __FILE__, __LINE__);
    }
    m_callbacks[name] = callback;
}

template <class T>
void AbstractBif<T>::callCallback(const std::string& name, T& parameter)
{
    const auto found = m_callbacks.find(name);
    if (found != m_callbacks.end()) {
        callCallbackWithParameter(*found->second, parameter);
    }
}

template <class T>
void AbstractBif<T>::callCallbackWithParameter(CallbackFunctor& callback, T& parameter)
{
    if (this->isInitializationDone()) {
        callEventAsynchronously(callback, parameter);
    } else {
        callEventSynchronously(callback, parameter);
    }
}

template <class T>
void AbstractBif<T>::callEventSynchronously(CallbackFunctor& callback, T& parameter)
{
    callback(parameter);
}

template <class T>
void AbstractBif<T>::callEventAsynchronously(CallbackFunctor& callback, T& parameter)
{
    auto copy = std::make_unique<T>(parameter);
    auto event = std::make_unique<CallbackEvent>(callback, copy.get());
    this->queueEvent(event.get());
    // The worker owns both now, and may have deleted them.
    static_cast<void>(event.release());
    static_cast<void>(copy.release());
}

template <class T>
void AbstractBif<T>::CallbackEvent::teardown()
{
    const std::unique_ptr<T> parameter(this->getParameter());
    this->setParameter(nullptr);
}

} // namespace vel::hwapi::common::bif
