// SPDX-License-Identifier: MIT
// Layout of the worker and the event dispatcher.
#include "ClassLayout.hpp"

#include "EventDispatcher.hpp"
#include "RecordingPlatform.hpp"
#include "Worker.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <type_traits>

namespace {

using namespace vel::hwapi::common;
using TaskQueue = std::deque<AbstractWorker::Task*>;
using WorkerMap = std::map<int, Worker*>;
using PollFds = std::vector<EventDispatcher::TPollFd>;
using HandlerMap = std::map<int, EventHandler*>;

} // namespace

DORN_EXPOSE(WorkerSetupDoneTag, Worker, bool, m_setupDone)
DORN_EXPOSE(WorkerEuTag, Worker, TAaProEuId, m_euId)
DORN_EXPOSE(WorkerPrintIdTag, Worker, ERadHwapi, m_printId)
DORN_EXPOSE(WorkerNameTag, Worker, std::string, m_name)
DORN_EXPOSE(TaskQueueTag, Worker, TaskQueue, m_taskQueue)
DORN_EXPOSE(WaitForTaskSemTag, Worker, AaSem*, m_waitForTaskSem)
DORN_EXPOSE(QueueSemTag, Worker, AaSem*, m_queueSem)
DORN_EXPOSE(SuspendSemTag, Worker, AaSem*, m_suspendSem)
DORN_EXPOSE(ExecutingSemTag, Worker, AaSem*, m_executingSem)
DORN_EXPOSE(WorkingSuspendedTag, Worker, bool, m_workingSuspended)
DORN_EXPOSE(WorkerPriorityTag, Worker, std::uint32_t, m_priority)
DORN_EXPOSE(WorkerStackSizeTag, Worker, std::uint32_t, m_stackSize)
DORN_EXPOSE(WorkerPolicyTag, Worker, EAaProEuSchedulingPolicy, m_policy)
namespace dorn::test {
struct WorkersTag {
    friend WorkerMap** exposed(WorkersTag); // a static member, and so no pointer to member
};
template struct Expose<WorkersTag, &Worker::m_workers>;
} // namespace dorn::test
DORN_EXPOSE(ExitSemTag, EventDispatcher, AaSem*, m_exitSem)
DORN_EXPOSE(HandlerRegSemTag, EventDispatcher, AaSem*, m_handlerRegSem)
DORN_EXPOSE(SafeSemTag, EventDispatcher, AaSem*, m_handlerSfpRemSafeSem)
DORN_EXPOSE(EventFdsTag, EventDispatcher, PollFds, m_eventFileDescriptors)
DORN_EXPOSE(FdsToRemoveTag, EventDispatcher, std::list<int>, m_fdsToRemove)
DORN_EXPOSE(EventHandlersTag, EventDispatcher, HandlerMap, m_eventHandlers)
DORN_EXPOSE(VectorChangedTag, EventDispatcher, std::uint32_t, m_handlerVectorChanged)
DORN_EXPOSE(PollFdsTag, EventDispatcher, PollFds, m_pollFds)
DORN_EXPOSE(DispatcherEuTag, EventDispatcher, TAaProEuId, m_euId)
DORN_EXPOSE(DispatcherPrintIdTag, EventDispatcher, ERadHwapi, m_printId)
DORN_EXPOSE(DispatcherNameTag, EventDispatcher, std::string, m_name)
DORN_EXPOSE(DispatcherPriorityTag, EventDispatcher, std::uint32_t, m_priority)
DORN_EXPOSE(DispatcherStackSizeTag, EventDispatcher, std::uint32_t, m_stackSize)

namespace {

using namespace dorn::test;
using namespace dorn::test::layout;
using testing::ElementsAre;

class ThreadLayoutTest : public testing::Test {
protected:
    const RecordingPlatform m_platform;
};

TEST_F(ThreadLayoutTest, WorkerAddsItsVirtualFunctionsBehindTheAbstractOnes)
{
    using ShortSetup = void (Worker::*)(ERadHwapi, std::string);
    using LongSetup = void (Worker::*)(ERadHwapi, std::string, unsigned int, unsigned int, EAaProEuSchedulingPolicy);

    EXPECT_EQ(slotOf(&Worker::SuspendWorking), 0);
    EXPECT_EQ(slotOf(&Worker::SuspendAndWaitWorkToComplete), 1);
    EXPECT_EQ(slotOf(&Worker::ResumeWorking), 2);
    EXPECT_EQ(slotOf(&Worker::IsWorkingSuspended), 3);
    EXPECT_EQ(slotOf(static_cast<ShortSetup>(&Worker::Setup)), 6);
    EXPECT_EQ(slotOf(&Worker::AssignTaskAndGiveOwnership), 7);
    EXPECT_EQ(slotOf(&Worker::AssignTaskAndKeepOwnership), 8);
    EXPECT_EQ(slotOf(&Worker::IsSetupDone), 9);
    EXPECT_EQ(slotOf(&Worker::startWorkerThread), 10);
    EXPECT_EQ(slotOf(static_cast<LongSetup>(&Worker::Setup)), 11);
    EXPECT_EQ(slotOf(&Worker::AssignTask), 12);
}

TEST_F(ThreadLayoutTest, MembersOfWorkerKeepTheirPlaces)
{
    const Worker worker;
    constexpr std::size_t name = aligned(word + 12);
    constexpr std::size_t queue = name + text;
    constexpr std::size_t semaphores = queue + sizeof(TaskQueue);
    constexpr std::size_t suspended = semaphores + 4 * word;

    EXPECT_THAT(offsetsIn(worker, exposed(WorkerSetupDoneTag{}), exposed(WorkerEuTag{}), exposed(WorkerPrintIdTag{}),
                          exposed(WorkerNameTag{}), exposed(TaskQueueTag{}), exposed(WaitForTaskSemTag{}),
                          exposed(QueueSemTag{}), exposed(SuspendSemTag{}), exposed(ExecutingSemTag{}),
                          exposed(WorkingSuspendedTag{}), exposed(WorkerPriorityTag{}), exposed(WorkerStackSizeTag{}),
                          exposed(WorkerPolicyTag{})),
                ElementsAre(word, word + 4, word + 8, name, queue, semaphores, semaphores + word, semaphores + 2 * word,
                            semaphores + 3 * word, suspended, suspended + 4, suspended + 8, suspended + 12));
    EXPECT_EQ(sizeof worker, aligned(suspended + 16));
}

TEST_F(ThreadLayoutTest, MembersOfAFreshWorkerHaveTheirFirstValues)
{
    const Worker worker;

    EXPECT_FALSE(worker.*exposed(WorkerSetupDoneTag{}));
    EXPECT_EQ(worker.*exposed(WorkerEuTag{}), 0U);
    EXPECT_EQ(worker.*exposed(WorkerPrintIdTag{}), ERadHwapi_Last);
    EXPECT_EQ(worker.*exposed(WorkerNameTag{}), "");
    EXPECT_TRUE((worker.*exposed(TaskQueueTag{})).empty());
    EXPECT_FALSE(worker.*exposed(WorkingSuspendedTag{}));
    EXPECT_EQ(worker.*exposed(WorkerPriorityTag{}), 5U);
    EXPECT_EQ(worker.*exposed(WorkerStackSizeTag{}), 4096U);
    EXPECT_EQ(worker.*exposed(WorkerPolicyTag{}), EAaProEuSchedulingPolicy_Background);
}

TEST_F(ThreadLayoutTest, RegisteredWorkersStandInAMapById)
{
    Worker* const worker = Worker::Get(-4711);
    const WorkerMap* const workers = *exposed(WorkersTag{});

    ASSERT_NE(workers, nullptr);
    ASSERT_TRUE(workers->contains(-4711));
    EXPECT_EQ(workers->at(-4711), worker);
}

TEST_F(ThreadLayoutTest, VirtualFunctionsOfEventHandlerKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&EventHandler::HandleEvent), 0); // before the destructor's two
    EXPECT_EQ(slotOf(&EventDispatcher::HandleEvent), 0);
    EXPECT_EQ(slotOf(&EventDispatcher::Start), -1);
    EXPECT_EQ(slotOf(&EventDispatcher::Stop), -1);
    EXPECT_EQ(slotOf(&EventDispatcher::Setup), -1);
    EXPECT_EQ(slotOf(&EventDispatcher::RegisterEventHandler), -1);
    EXPECT_EQ(slotOf(&EventDispatcher::UnregisterEventHandler), -1);
    EXPECT_EQ(slotOf(&EventDispatcher::WaitSafeSem), -1);
    EXPECT_EQ(slotOf(&EventDispatcher::PostSafeSem), -1);
}

TEST_F(ThreadLayoutTest, PollRecordIsThatOfPosix)
{
    using Record = EventDispatcher::TPollFd;
    static_assert(std::is_same_v<decltype(Record::fd), int>);
    static_assert(std::is_same_v<decltype(Record::events), short>);
    static_assert(std::is_same_v<decltype(Record::revents), short>);
    const Record record(3, POLLIN);

    EXPECT_EQ(record.fd, 3);
    EXPECT_EQ(record.events, POLLIN);
    EXPECT_EQ(record.revents, 0);
    EXPECT_THAT((offsetsIn<pollfd>(record, &pollfd::fd, &pollfd::events, &pollfd::revents)), ElementsAre(0U, 4U, 6U));
    EXPECT_EQ(sizeof record, 8U);
}

TEST_F(ThreadLayoutTest, MembersOfEventDispatcherKeepTheirPlaces)
{
    const EventDispatcher dispatcher;
    constexpr std::size_t fds = 4 * word;
    constexpr std::size_t toRemove = fds + sizeof(PollFds);
    constexpr std::size_t handlers = toRemove + sizeof(std::list<int>);
    constexpr std::size_t changed = handlers + sizeof(HandlerMap);
    constexpr std::size_t pollFds = aligned(changed + 4);
    constexpr std::size_t eu = pollFds + sizeof(PollFds);
    constexpr std::size_t name = eu + 8;

    EXPECT_THAT(offsetsIn(dispatcher, exposed(ExitSemTag{}), exposed(HandlerRegSemTag{}), exposed(SafeSemTag{}),
                          exposed(EventFdsTag{}), exposed(FdsToRemoveTag{}), exposed(EventHandlersTag{}),
                          exposed(VectorChangedTag{}), exposed(PollFdsTag{}), exposed(DispatcherEuTag{}),
                          exposed(DispatcherPrintIdTag{}), exposed(DispatcherNameTag{}),
                          exposed(DispatcherPriorityTag{}), exposed(DispatcherStackSizeTag{})),
                ElementsAre(word, 2 * word, 3 * word, fds, toRemove, handlers, changed, pollFds, eu, eu + 4, name,
                            name + text, name + text + 4));
    EXPECT_EQ(sizeof dispatcher, name + text + 8);
}

TEST_F(ThreadLayoutTest, MembersOfAFreshEventDispatcherHaveTheirFirstValues)
{
    const EventDispatcher dispatcher;

    EXPECT_TRUE((dispatcher.*exposed(EventFdsTag{})).empty());
    EXPECT_TRUE((dispatcher.*exposed(FdsToRemoveTag{})).empty());
    EXPECT_TRUE((dispatcher.*exposed(EventHandlersTag{})).empty());
    EXPECT_EQ(dispatcher.*exposed(VectorChangedTag{}), 0U);
    EXPECT_TRUE((dispatcher.*exposed(PollFdsTag{})).empty());
    EXPECT_EQ(dispatcher.*exposed(DispatcherEuTag{}), 0U);
    EXPECT_EQ(static_cast<int>(dispatcher.*exposed(DispatcherPrintIdTag{})), 0);
    EXPECT_EQ(dispatcher.*exposed(DispatcherNameTag{}), "");
    EXPECT_EQ(dispatcher.*exposed(DispatcherPriorityTag{}), 0U);
    EXPECT_EQ(dispatcher.*exposed(DispatcherStackSizeTag{}), 0U);
}

} // namespace
