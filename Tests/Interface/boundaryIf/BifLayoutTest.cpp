// SPDX-License-Identifier: MIT
// Layout of what every boundary interface is made of.
#include "ClassLayout.hpp"
#include "Gauge.hpp"
#include "QueueingWorker.hpp"

#include "RecordingPlatform.hpp"

#include <gmock/gmock.h>

#include <map>
#include <type_traits>

namespace {

using dorn::test::AbstractBif;
using dorn::test::AbstractWorker;
using dorn::test::Reading;
using vel::hwapi::common::Worker;
using vel::hwapi::common::bif::AbstractAsynchronousBif;
using vel::hwapi::common::bif::AbstractBaseBif;

using ReadingBif = AbstractBif<Reading>;
using AsynchronousBif = AbstractAsynchronousBif<Reading>;
using CallbackMap = std::map<std::string, ReadingBif::CallbackFunctor*>;
using AddCallback = void(const std::string&, ReadingBif::CallbackFunctor*);
using CallCallback = void(const std::string&, Reading&);
using QueueEvent = void(AsynchronousBif::Event*);

} // namespace

DORN_EXPOSE(InternalWorkerTag, ReadingBif, Worker, m_internalWorker)
DORN_EXPOSE(CallbacksTag, ReadingBif, CallbackMap, m_callbacks)
DORN_EXPOSE(EventParameterTag, AsynchronousBif::Event, Reading*, m_parameter)
DORN_EXPOSE(AddCallbackTag, ReadingBif, AddCallback, addCallback)
DORN_EXPOSE(CallCallbackTag, ReadingBif, CallCallback, callCallback)
DORN_EXPOSE(QueueEventTag, AsynchronousBif, QueueEvent, queueEvent)

namespace {

using namespace dorn::test;
using namespace dorn::test::layout;
using testing::ElementsAre;

std::ptrdiff_t distance(const void* begin, const void* place)
{
    return static_cast<const char*>(place) - static_cast<const char*>(begin);
}

class BifLayoutTest : public testing::Test {
protected:
    RecordingPlatform m_platform;
    QueueingWorker m_worker;
    Gauge m_gauge{m_worker};
};

TEST_F(BifLayoutTest, RootHasADestructorAndNothingElse)
{
    static_assert(std::has_virtual_destructor_v<AbstractBaseBif>);
    EXPECT_EQ(sizeof(AbstractBaseBif), word);
}

TEST_F(BifLayoutTest, RootIsTheFirstBaseAndTheAsynchronousHalfTheSecond)
{
    static_assert(std::is_convertible_v<ReadingBif*, AbstractBaseBif*>);
    static_assert(std::is_convertible_v<ReadingBif*, AsynchronousBif*>);
    const ReadingBif& bif = m_gauge;

    EXPECT_EQ(distance(&bif, static_cast<const AbstractBaseBif*>(&bif)), 0);
    EXPECT_EQ(distance(&bif, static_cast<const AsynchronousBif*>(&bif)), word);
}

TEST_F(BifLayoutTest, AsynchronousHalfHasTheReferenceToItsWorkerAndNothingElse)
{
    EXPECT_EQ(sizeof(AsynchronousBif), 2 * word);
    const AbstractWorker* stored = nullptr;
    std::memcpy(&stored, reinterpret_cast<const char*>(static_cast<const AsynchronousBif*>(&m_gauge)) + word, word);
    EXPECT_EQ(stored, &m_worker);
}

TEST_F(BifLayoutTest, WorkerOfItsOwnStandsBeforeTheCallbacks)
{
    const ReadingBif& bif = m_gauge;

    EXPECT_THAT(offsetsIn(bif, exposed(InternalWorkerTag{}), exposed(CallbacksTag{})),
                ElementsAre(3 * word, 3 * word + sizeof(Worker)));
    EXPECT_EQ(sizeof(ReadingBif), 3 * word + sizeof(Worker) + sizeof(CallbackMap));
}

TEST_F(BifLayoutTest, WithoutAnotherWorkerTheOwnOneTakesTheEvents)
{
    Gauge own;
    const AbstractWorker* stored = nullptr;
    std::memcpy(&stored, reinterpret_cast<const char*>(static_cast<AsynchronousBif*>(&own)) + word, word);

    EXPECT_EQ(stored, &(own.*exposed(InternalWorkerTag{})));
}

TEST_F(BifLayoutTest, VirtualFunctionsOfTheInterfaceKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&ReadingBif::removeAllCallbacks), 2); // behind the destructor's two
    EXPECT_EQ(slotOf(exposed(AddCallbackTag{})), 3);
    EXPECT_EQ(slotOf(exposed(CallCallbackTag{})), 4);
}

TEST_F(BifLayoutTest, VirtualFunctionsOfTheAsynchronousHalfKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&AsynchronousBif::suspend), 0);
    EXPECT_EQ(slotOf(&AsynchronousBif::resume), 1);
    EXPECT_EQ(slotOf(&AsynchronousBif::initialize), 2);
    EXPECT_EQ(slotOf(&AsynchronousBif::isInitializationDone), 3);
    EXPECT_EQ(slotOf(exposed(QueueEventTag{})), 6); // behind the destructor's two
}

TEST_F(BifLayoutTest, OtherFunctionsAreNotVirtual)
{
    EXPECT_EQ(slotOf(&Gauge::callCallbackWithParameter), -1);
    EXPECT_EQ(slotOf(&Gauge::callEventSynchronously), -1);
    EXPECT_EQ(slotOf(&Gauge::callEventAsynchronously), -1);
}

TEST_F(BifLayoutTest, VirtualFunctionsOfEventKeepTheirOrder)
{
    using Event = AsynchronousBif::Event;
    static_assert(std::is_base_of_v<AbstractWorker::Task, Event>);
    EXPECT_EQ(slotOf(&Event::Perform), 2);
    EXPECT_EQ(slotOf(&Event::setOwnedByWorker), 6);
    EXPECT_EQ(slotOf(&Event::getParameter), 7);
    EXPECT_EQ(slotOf(&Event::setParameter), 8);
    EXPECT_EQ(slotOf(&Event::setup), 9);
    EXPECT_EQ(slotOf(&Event::teardown), 10);
}

TEST_F(BifLayoutTest, CallbackEventOverridesAndAddsNothing)
{
    using CallbackEvent = ReadingBif::CallbackEvent;
    static_assert(std::is_base_of_v<AsynchronousBif::Event, CallbackEvent>);
    EXPECT_EQ(slotOf(&CallbackEvent::teardown), 10);
    EXPECT_EQ(sizeof(CallbackEvent), sizeof(AsynchronousBif::Event));
}

TEST_F(BifLayoutTest, MembersOfEventKeepTheirPlaces)
{
    Reading reading;
    OnReading callback([](Reading&) {});
    const AsynchronousBif::Event event(callback, &reading);
    const AsynchronousBif::EventFunctor* stored = nullptr;
    constexpr std::size_t begin = sizeof(AbstractWorker::Task);
    std::memcpy(&stored, reinterpret_cast<const char*>(&event) + begin, word);

    EXPECT_EQ(stored, &callback);
    EXPECT_THAT(offsetsIn(event, exposed(EventParameterTag{})), ElementsAre(begin + word));
    EXPECT_EQ(sizeof event, begin + 2 * word);
}

TEST_F(BifLayoutTest, CallbacksHaveTheCallBehindTheDestructor)
{
    EXPECT_EQ(slotOf(&AsynchronousBif::EventFunctor::operator()), 2);
    EXPECT_EQ(slotOf(&ReadingBif::CallbackFunctor::operator()), 2);
    EXPECT_EQ(slotOf(&Gauge::GaugeCallback::operator()), 2);
    EXPECT_EQ(sizeof(ReadingBif::CallbackFunctor), word);
}

} // namespace
