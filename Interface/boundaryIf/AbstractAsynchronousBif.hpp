// SPDX-License-Identifier: MIT
/// @file AbstractAsynchronousBif.hpp
/// The half of a boundary interface that lets its callbacks run on a worker's thread; see AbstractBif.hpp for the
/// whole.
#pragma once

#include "AbstractWorker.hpp"
#include "rad/ERadHwapi.h"

namespace vel::hwapi::common::bif {

/// @tparam T what an event tells: the interface's callback parameter
template <class T>
class AbstractAsynchronousBif {
public:
    class Event;
    class EventFunctor;

    AbstractAsynchronousBif(const AbstractAsynchronousBif&) = delete;
    AbstractAsynchronousBif& operator=(const AbstractAsynchronousBif&) = delete;

    /// Has the event worker take no further event; the one in hand goes on. Events raised from now on wait in its
    /// queue, none is lost. A worker that others use as well is suspended for them too.
    virtual void suspend() { m_eventWorker.SuspendWorking(); }
    /// Has the event worker take events again, oldest first.
    virtual void resume() { m_eventWorker.ResumeWorking(); }
    /// Starts the event worker's thread, "BoundaryIf": events are delivered there from now on. Does nothing when it
    /// runs already, whoever started it. To be called by one thread, when all callbacks are registered.
    virtual void initialize();
    /// Tells whether events are delivered by the event worker.
    virtual bool isInitializationDone() { return m_eventWorker.IsSetupDone(); }

    virtual ~AbstractAsynchronousBif() = default;

protected:
    /// @param worker delivers the events; has to outlive them all. It is only stored here.
    explicit AbstractAsynchronousBif(AbstractWorker& worker) : m_eventWorker(worker) {}

    /// Hands an event over to the event worker, which deletes it after it has run.
    /// @throws std::bad_alloc when the queue cannot grow; the event is still the caller's then. An implementation that
    /// overrides this throws only as long as that is so.
    virtual void queueEvent(Event* event) { m_eventWorker.AssignTaskAndGiveOwnership(event); }

private:
    AbstractWorker& m_eventWorker;
};

/// What an event is delivered to. The interface never deletes it: it belongs to the client, who keeps it alive as long
/// as it is registered and as long as an event for it may be queued.
template <class T>
class AbstractAsynchronousBif<T>::EventFunctor {
public:
    EventFunctor() = default;
    EventFunctor(const EventFunctor&) = default;
    EventFunctor& operator=(const EventFunctor&) = default;
    virtual ~EventFunctor() = default;

    /// Takes the event, in the thread that raised it or in the event worker's. On the event worker, one that throws
    /// leaves the event and its parameter in memory for good.
    virtual void operator()(T& parameter) = 0;
};

/// An event on its way to its callback.
template <class T>
class AbstractAsynchronousBif<T>::Event : public AbstractWorker::Task {
public:
    /// @param parameter may be null only until Perform(); it is not deleted by the destructor
    Event(EventFunctor& callback, T* parameter) : m_callback(callback), m_parameter(parameter) {}

    /// Delivers: setup(), the callback, teardown(). When the callback throws, teardown() is left out.
    void Perform() override
    {
        setup();
        m_callback(*m_parameter);
        teardown();
    }

    /// @{
    /// The copy that the callback is given; the task frees it in teardown().
    virtual T* getParameter() { return m_parameter; }
    virtual void setParameter(T* parameter) { m_parameter = parameter; }
    /// @}

    /// Called before the callback; does nothing.
    virtual void setup() {}
    /// Called when the callback has returned; does nothing.
    virtual void teardown() {}

private:
    EventFunctor& m_callback;
    T* m_parameter;
};

template <class T>
void AbstractAsynchronousBif<T>::initialize()
{
    if (!isInitializationDone()) {
        m_eventWorker.Setup(ERadHwapi_PrintBoundaryIf, "BoundaryIf");
    }
}

} // namespace vel::hwapi::common::bif
