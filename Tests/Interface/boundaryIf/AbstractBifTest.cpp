// SPDX-License-Identifier: MIT
// The register of callbacks, and which way an event takes.
#include "Gauge.hpp"
#include "QueueingWorker.hpp"

#include "RecordingPlatform.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using namespace dorn::test;
using namespace vel::hwapi::common;
using namespace vel::hwapi::common::bif;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class AbstractBifTest : public testing::Test {
protected:
    RecordingPlatform m_platform;
    std::vector<int> m_values;
    OnReading m_callback{[this](Reading& reading) { m_values.push_back(reading.getValue()); }};
    QueueingWorker m_worker;
    Gauge m_gauge{m_worker};
};

TEST_F(AbstractBifTest, NullIsNoCallback)
{
    try {
        m_gauge.addCallback(Gauge::HIGH, nullptr);
        FAIL() << "nothing was thrown";
    } catch (const InvalidParameterException& exception) {
        EXPECT_STREQ(exception.what(), "Invalid parameter");
        EXPECT_EQ(exception.getDescription(), "callback null");
        EXPECT_THAT(exception.getFile(), EndsWith("Interface/boundaryIf/AbstractBif.hpp"));
        EXPECT_EQ(exception.getLine(), 108);
    }
}

TEST_F(AbstractBifTest, NullLeavesTheCallbackBeforeInItsPlace)
{
    m_gauge.addCallback(Gauge::HIGH, &m_callback);

    EXPECT_THROW(m_gauge.addCallback(Gauge::HIGH, nullptr), InvalidParameterException);

    m_gauge.raise(Gauge::HIGH, Reading(5));
    EXPECT_THAT(m_values, ElementsAre(5));
}

TEST_F(AbstractBifTest, NullRegistersNothingUnderANewName)
{
    EXPECT_THROW(m_gauge.addCallback(Gauge::LOW, nullptr), InvalidParameterException);

    m_gauge.raise(Gauge::LOW, Reading(5)); // would call null
}

TEST_F(AbstractBifTest, SecondCallbackOfANameReplacesTheFirst)
{
    std::vector<int> others;
    OnReading other([&](Reading& reading) { others.push_back(reading.getValue()); });
    m_gauge.addCallback(Gauge::HIGH, &m_callback);
    m_gauge.raise(Gauge::HIGH, Reading(1));

    m_gauge.addCallback(Gauge::HIGH, &other);
    m_gauge.raise(Gauge::HIGH, Reading(2));

    EXPECT_THAT(m_values, ElementsAre(1));
    EXPECT_THAT(others, ElementsAre(2));
    EXPECT_THAT(m_platform.calls("Warning"), IsEmpty());
}

TEST_F(AbstractBifTest, CallbacksAreKeptByNameAndNotByTheStringObject)
{
    m_gauge.addCallback(std::string(Gauge::HIGH), &m_callback);

    m_gauge.raise(std::string("GaugeHigh") + "Event", Reading(5));

    EXPECT_THAT(m_values, ElementsAre(5));
}

TEST_F(AbstractBifTest, OneCallbackMayTakeSeveralEvents)
{
    m_gauge.addCallback(Gauge::HIGH, &m_callback);
    m_gauge.addCallback(Gauge::LOW, &m_callback);

    m_gauge.raise(Gauge::LOW, Reading(1));
    m_gauge.raise(Gauge::HIGH, Reading(2));

    EXPECT_THAT(m_values, ElementsAre(1, 2));
}

TEST_F(AbstractBifTest, EventWithoutCallbackHasNoEffectAndNoOutput)
{
    m_gauge.addCallback(Gauge::HIGH, &m_callback);
    m_platform.clearCalls();

    m_gauge.raise(Gauge::LOW, Reading(5));

    EXPECT_THAT(m_values, IsEmpty());
    EXPECT_THAT(m_platform.calls(), IsEmpty());
    EXPECT_THAT(m_worker.tasks, IsEmpty());
}

TEST_F(AbstractBifTest, EventWithoutCallbackQueuesNothingAfterInitialization)
{
    m_gauge.initialize();

    m_gauge.raise(Gauge::LOW, Reading(5));

    EXPECT_THAT(m_worker.tasks, IsEmpty());
}

TEST_F(AbstractBifTest, NothingIsDeliveredWhenAllCallbacksAreRemoved)
{
    m_gauge.addCallback(Gauge::HIGH, &m_callback);
    m_gauge.addCallback(Gauge::LOW, &m_callback);

    m_gauge.removeAllCallbacks();

    m_gauge.raise(Gauge::HIGH, Reading(1));
    m_gauge.raise(Gauge::LOW, Reading(2));
    EXPECT_THAT(m_values, IsEmpty());
}

TEST_F(AbstractBifTest, EventQueuedBeforeTheRemovalIsStillDelivered)
{
    m_gauge.addCallback(Gauge::HIGH, &m_callback);
    m_gauge.initialize();
    m_gauge.raise(Gauge::HIGH, Reading(1));

    m_gauge.removeAllCallbacks();
    m_gauge.raise(Gauge::HIGH, Reading(2));
    m_worker.work();

    EXPECT_THAT(m_values, ElementsAre(1));
}

TEST_F(AbstractBifTest, CallbacksCanBeRegisteredAgainAfterTheRemoval)
{
    m_gauge.addCallback(Gauge::HIGH, &m_callback);
    m_gauge.removeAllCallbacks();

    m_gauge.addCallback(Gauge::HIGH, &m_callback);

    m_gauge.raise(Gauge::HIGH, Reading(3));
    EXPECT_THAT(m_values, ElementsAre(3));
}

TEST_F(AbstractBifTest, InterfaceDoesNotDeleteCallbacks)
{
    class Counted : public OnReading {
    public:
        explicit Counted(int& deleted) : OnReading([](Reading&) {}), m_deleted(deleted) {}
        ~Counted() override { ++m_deleted; }

    private:
        int& m_deleted;
    };
    int deleted = 0;
    Counted first(deleted);
    Counted second(deleted);
    {
        auto gauge = std::make_unique<Gauge>(m_worker);
        gauge->addCallback(Gauge::HIGH, &first);
        gauge->addCallback(Gauge::HIGH, &second);
        gauge->removeAllCallbacks();
        gauge->addCallback(Gauge::LOW, &first);
    }

    EXPECT_EQ(deleted, 0);
}

TEST_F(AbstractBifTest, BeforeInitializationTheCallbackGetsTheRaisersObjectInItsThread)
{
    const Reading* taken = nullptr;
    std::thread::id thread;
    OnReading callback([&](Reading& reading) {
        taken = &reading;
        thread = std::this_thread::get_id();
        reading.setValue(7);
    });
    m_gauge.addCallback(Gauge::HIGH, &callback);
    Reading reading(5);

    m_gauge.callCallback(Gauge::HIGH, reading);

    EXPECT_EQ(taken, &reading);
    EXPECT_EQ(thread, std::this_thread::get_id());
    EXPECT_EQ(reading.getValue(), 7);
    EXPECT_THAT(m_worker.tasks, IsEmpty());
}

TEST_F(AbstractBifTest, AfterInitializationTheCallbackGetsACopyOfItsOwn)
{
    OnReading callback([&](Reading& reading) {
        m_values.push_back(reading.getValue());
        reading.setValue(7);
    });
    m_gauge.addCallback(Gauge::HIGH, &callback);
    m_gauge.initialize();
    Reading reading(5);

    m_gauge.callCallback(Gauge::HIGH, reading);
    reading.setValue(6);
    EXPECT_THAT(m_values, IsEmpty());
    m_worker.work();

    EXPECT_THAT(m_values, ElementsAre(5));
    EXPECT_EQ(reading.getValue(), 6);
}

TEST_F(AbstractBifTest, WayOfDeliveryIsDecidedForEachEventAsItIsRaised)
{
    m_gauge.addCallback(Gauge::HIGH, &m_callback);
    m_gauge.raise(Gauge::HIGH, Reading(1));
    EXPECT_THAT(m_values, ElementsAre(1));

    m_worker.Setup(ERadHwapi_PrintCtrlTask, "Shared"); // by whoever else shares the worker
    m_gauge.raise(Gauge::HIGH, Reading(2));

    EXPECT_THAT(m_values, ElementsAre(1));
    m_worker.work();
    EXPECT_THAT(m_values, ElementsAre(1, 2));
}

TEST_F(AbstractBifTest, EventsAreQueuedInTheOrderInWhichTheyAreRaised)
{
    m_gauge.addCallback(Gauge::HIGH, &m_callback);
    m_gauge.addCallback(Gauge::LOW, &m_callback);
    m_gauge.initialize();

    m_gauge.raise(Gauge::HIGH, Reading(1));
    m_gauge.raise(Gauge::LOW, Reading(2));
    m_gauge.raise(Gauge::HIGH, Reading(3));
    m_worker.work();

    EXPECT_THAT(m_values, ElementsAre(1, 2, 3));
}

TEST_F(AbstractBifTest, CallbacksCanBeCalledEitherWayWhateverTheWorkerDoes)
{
    Reading reading(5);

    m_gauge.callEventAsynchronously(m_callback, reading);
    EXPECT_THAT(m_values, IsEmpty());
    m_worker.work();
    EXPECT_THAT(m_values, ElementsAre(5));

    m_gauge.initialize();
    m_gauge.callEventSynchronously(m_callback, reading);
    EXPECT_THAT(m_values, ElementsAre(5, 5));
}

TEST_F(AbstractBifTest, CallbackThatIsNotRegisteredTakesTheSameWay)
{
    Reading reading(5);
    m_gauge.callCallbackWithParameter(m_callback, reading);
    EXPECT_THAT(m_values, ElementsAre(5));

    m_gauge.initialize();
    m_gauge.callCallbackWithParameter(m_callback, reading);
    EXPECT_THAT(m_values, ElementsAre(5));
    EXPECT_EQ(m_worker.tasks.size(), 1U);
    m_worker.work();
    EXPECT_THAT(m_values, ElementsAre(5, 5));
}

TEST_F(AbstractBifTest, WhatTheCallbackThrowsReachesTheRaiserOnTheSynchronousWay)
{
    OnReading callback([](Reading&) { throw std::runtime_error("broken"); });
    m_gauge.addCallback(Gauge::HIGH, &callback);

    EXPECT_THROW(m_gauge.raise(Gauge::HIGH, Reading(5)), std::runtime_error);
}

TEST_F(AbstractBifTest, DriverMayStepIntoEveryVirtualFunction)
{
    class Muted : public Gauge {
    public:
        using Gauge::Gauge;
        int queued = 0;
        bool isInitializationDone() override { return true; }

    protected:
        void queueEvent(Event* event) override
        {
            ++queued;
            Gauge::queueEvent(event);
        }
    };
    Muted muted(m_worker);
    muted.addCallback(Gauge::HIGH, &m_callback);

    muted.raise(Gauge::HIGH, Reading(5));

    EXPECT_EQ(muted.queued, 1);
    EXPECT_EQ(m_worker.tasks.size(), 1U);
    m_worker.work();
    EXPECT_THAT(m_values, ElementsAre(5));
}

TEST_F(AbstractBifTest, InitializationSetsTheWorkerUpOnce)
{
    EXPECT_FALSE(m_gauge.isInitializationDone());

    m_gauge.initialize();
    m_gauge.initialize();

    EXPECT_TRUE(m_gauge.isInitializationDone());
    EXPECT_THAT(m_worker.calls, ElementsAre("Setup " + std::to_string(0x20075) + " BoundaryIf"));
}

TEST_F(AbstractBifTest, WorkerThatRunsAlreadyIsLeftAlone)
{
    QueueingWorker running(true);
    Gauge gauge(running);
    EXPECT_TRUE(gauge.isInitializationDone());

    gauge.initialize();

    EXPECT_THAT(running.calls, IsEmpty());
}

TEST_F(AbstractBifTest, SuspensionAndResumptionAreTheWorkers)
{
    m_gauge.suspend();
    m_gauge.resume();

    EXPECT_THAT(m_worker.calls, ElementsAre("SuspendWorking", "ResumeWorking"));
}

TEST_F(AbstractBifTest, InterfacesOnOneWorkerShareItsStateAndItsOrder)
{
    Gauge second(m_worker);
    m_gauge.addCallback(Gauge::HIGH, &m_callback);
    second.addCallback(Gauge::HIGH, &m_callback);

    m_gauge.initialize();
    EXPECT_TRUE(second.isInitializationDone());
    second.raise(Gauge::HIGH, Reading(1));
    m_gauge.raise(Gauge::HIGH, Reading(2));
    second.raise(Gauge::HIGH, Reading(3));
    m_worker.work();

    EXPECT_THAT(m_values, ElementsAre(1, 2, 3));
}

TEST_F(AbstractBifTest, WorkerOfItsOwnIsMadeInAnyCaseAndStartedOnlyByInitialization)
{
    m_platform.clearCalls();
    {
        const Gauge given(m_worker);
        const Gauge own;
    }

    EXPECT_EQ(m_platform.calls("AaSemCreateC").size(), 8U); // four of a worker's
    EXPECT_EQ(m_platform.calls("AaSemDestroy").size(), 8U);
    EXPECT_THAT(m_platform.calls("AaSysComEuCreateAndStartWithPolicy"), IsEmpty());
}

TEST_F(AbstractBifTest, InterfaceOfAnyKindIsDestroyedThroughItsRoot)
{
    bool isDestroyed = false;
    class Noticed : public Gauge {
    public:
        Noticed(QueueingWorker& worker, bool& destroyed) : Gauge(worker), m_destroyed(destroyed) {}
        ~Noticed() override { m_destroyed = true; }

    private:
        bool& m_destroyed;
    };

    std::unique_ptr<AbstractBaseBif> bif = std::make_unique<Noticed>(m_worker, isDestroyed);
    bif.reset();

    EXPECT_TRUE(isDestroyed);
}

/// Notes what happens to it.
class NotedEvent : public Gauge::Event {
public:
    NotedEvent(OnReading& callback, Reading* reading, std::vector<std::string>& notes)
        : Event(callback, reading), m_notes(notes)
    {
    }
    void setup() override { m_notes.emplace_back("setup"); }
    void teardown() override { m_notes.emplace_back("teardown"); }

private:
    std::vector<std::string>& m_notes;
};

TEST_F(AbstractBifTest, EventIsSetUpDeliveredAndTornDown)
{
    std::vector<std::string> notes;
    Reading reading(5);
    OnReading callback([&](Reading& given) {
        EXPECT_EQ(&given, &reading);
        notes.emplace_back("callback");
    });
    NotedEvent event(callback, &reading, notes);

    event.Perform();

    EXPECT_THAT(notes, ElementsAre("setup", "callback", "teardown"));
}

TEST_F(AbstractBifTest, EventWhoseCallbackThrowsIsNotTornDown)
{
    std::vector<std::string> notes;
    Reading reading(5);
    OnReading callback([&](Reading&) { throw std::runtime_error("broken"); });
    NotedEvent event(callback, &reading, notes);

    EXPECT_THROW(event.Perform(), std::runtime_error);

    EXPECT_THAT(notes, ElementsAre("setup"));
}

TEST_F(AbstractBifTest, PlainEventKeepsItsParameter)
{
    Reading first(1);
    Reading second(2);
    Gauge::Event event(m_callback, &first);

    event.Perform();
    EXPECT_EQ(event.getParameter(), &first);
    event.setParameter(&second);
    event.Perform();

    EXPECT_EQ(event.getParameter(), &second);
    EXPECT_THAT(m_values, ElementsAre(1, 2));
}

/// A reading that tells when it is deleted.
class CountedReading : public Reading {
public:
    explicit CountedReading(int& deleted) : m_deleted(deleted) {}
    ~CountedReading() override { ++m_deleted; }

private:
    int& m_deleted;
};

TEST_F(AbstractBifTest, CallbackEventDeletesItsParameterAsWhatItIsWhenTornDown)
{
    int deleted = 0;
    Gauge::CallbackEvent event(m_callback, new CountedReading(deleted));

    event.Perform();
    EXPECT_EQ(deleted, 1);
    EXPECT_EQ(event.getParameter(), nullptr);
    event.teardown();

    EXPECT_EQ(deleted, 1);
}

TEST_F(AbstractBifTest, CallbackEventThatIsNotDeliveredDoesNotDeleteItsParameter)
{
    int deleted = 0;
    const auto reading = std::make_unique<CountedReading>(deleted);
    {
        const Gauge::CallbackEvent event(m_callback, reading.get());
    }

    EXPECT_EQ(deleted, 0);
}

TEST_F(AbstractBifTest, CallbackEventWhoseCallbackThrowsKeepsItsParameter)
{
    int deleted = 0;
    const auto reading = std::make_unique<CountedReading>(deleted);
    OnReading callback([](Reading&) { throw std::runtime_error("broken"); });
    Gauge::CallbackEvent event(callback, reading.get());

    EXPECT_THROW(event.Perform(), std::runtime_error);

    EXPECT_EQ(deleted, 0);
    EXPECT_EQ(event.getParameter(), reading.get());
}

TEST(AbstractBifTypes, CannotBeCopiedOrMadeFromOutside)
{
    static_assert(!std::is_copy_constructible_v<Gauge>);
    static_assert(!std::is_copy_assignable_v<Gauge>);
    static_assert(!std::is_default_constructible_v<AbstractBif<Reading>>);
    static_assert(!std::is_constructible_v<AbstractBif<Reading>, AbstractWorker&>);
    static_assert(!std::is_constructible_v<AbstractAsynchronousBif<Reading>, AbstractWorker&>);
    static_assert(std::is_abstract_v<AbstractBif<Reading>::CallbackFunctor>);
    static_assert(!std::is_convertible_v<AbstractWorker&, Gauge>);
    SUCCEED();
}

} // namespace
