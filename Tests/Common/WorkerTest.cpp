// SPDX-License-Identifier: MIT
// What the worker asks of the platform, and in which order.
#include "Worker.hpp"
#include "ClassLayout.hpp"
#include "RecordingPlatform.hpp"

#include "InvalidParameterException.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

DORN_EXPOSE(RunningWorkerTag, vel::hwapi::common::Worker, TAaProEuId, m_euId)

namespace vel::hwapi::common {
namespace {

using dorn::test::formatted;
using dorn::test::RecordingPlatform;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr ERadHwapi radId = ERadHwapi_PrintCtrlTask;

/// A task that does what the test says and notes what is asked of it among the platform's calls.
class Job : public AbstractWorker::Task {
public:
    explicit Job(std::string name, std::function<void()> work = {}) : m_name(std::move(name)), m_work(std::move(work))
    {
    }
    ~Job() override { note("deleted"); }

    void Perform() override
    {
        note("Perform");
        if (m_work) {
            m_work();
        }
    }
    bool isOwnedByWorker() const override
    {
        note("isOwnedByWorker");
        if (onIsOwned) {
            onIsOwned();
        }
        return Task::isOwnedByWorker();
    }
    void setOwnedByWorker(bool owned) override
    {
        note(owned ? "setOwnedByWorker(true)" : "setOwnedByWorker(false)");
        Task::setOwnedByWorker(owned);
    }
    void setExecutingWorker(AbstractWorker* worker) override
    {
        note(worker ? "setExecutingWorker(worker)" : "setExecutingWorker(null)");
        if (onSetExecuting) {
            onSetExecuting(worker);
        }
        Task::setExecutingWorker(worker);
    }

    std::function<void()> onIsOwned;
    std::function<void(AbstractWorker*)> onSetExecuting;

private:
    void note(const std::string& call) const { RecordingPlatform::get().note(m_name + " " + call, {}); }

    std::string m_name;
    std::function<void()> m_work;
};

class WorkerTest : public testing::Test {
protected:
    /// Runs the worker's EU through the tasks that are queued and one more, the job called "end", after which the EU
    /// ends. No worker does that in real life.
    void run()
    {
        Job end("end", [this] { m_worker.*exposed(dorn::test::RunningWorkerTag{}) = 0; });
        m_worker.AssignTaskAndKeepOwnership(&end);
        m_worker.Setup(radId, "Slow");
    }
    std::vector<std::string> logged()
    {
        std::vector<std::string> lines;
        for (const std::string& call : m_platform.calls()) {
            if (call.find(" 0x") != std::string::npos && call.find('(') == std::string::npos) {
                lines.push_back(call);
            }
        }
        return lines;
    }
    /// The calls that the platform has seen from the one that reads @p first.
    std::vector<std::string> callsFrom(const std::string& first)
    {
        std::vector<std::string> calls = m_platform.calls();
        calls.erase(calls.begin(), std::find(calls.begin(), calls.end(), first));
        return calls;
    }

    RecordingPlatform m_platform;
    Worker m_worker; ///< its semaphores: 1 task count, 2 queue, 3 suspension, 4 execution
};

TEST_F(WorkerTest, ConstructorCreatesTheSemaphores)
{
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSemCreateC(0)", "AaSemCreateC(1)", "AaSemCreateC(1)", "AaSemCreateC(1)"));
    EXPECT_FALSE(m_worker.IsSetupDone());
    EXPECT_FALSE(m_worker.IsWorkingSuspended());
}

TEST_F(WorkerTest, DestructorDestroysTheSemaphoresAndNoTask)
{
    Job job("job");
    {
        Worker worker; // semaphores 5 to 8
        worker.AssignTaskAndGiveOwnership(&job);
        m_platform.clearCalls();
    }

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSemDestroy(5)", "AaSemDestroy(6)", "AaSemDestroy(7)", "AaSemDestroy(8)"));
}

TEST_F(WorkerTest, SemaphoresThatDoNotExistAreNotDestroyed)
{
    m_platform.setResult("AaSemCreateC", 1);
    m_platform.clearCalls();
    {
        Worker worker;
    }

    EXPECT_THAT(m_platform.calls("AaSemDestroy"), IsEmpty());
}

TEST_F(WorkerTest, SetupStartsTheEuAndDoesNotWaitForItsEnd)
{
    m_platform.setResult("AaSysComEuCreateAndStartWithPolicy", 11);
    m_platform.clearCalls();

    m_worker.Setup(radId, "Slow");

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("Info 0x20000 Starting Worker 'Slow'",
                            formatted("AaSysComEuCreateAndStartWithPolicy(\"Slow\", stack 4096, policy 1, priority 5, "
                                      "argsSize %zu, wait 0)",
                                      sizeof(void*))));
}

TEST_F(WorkerTest, LongSetupStartsAnEuOfTheCallersChoice)
{
    m_platform.setResult("AaSysComEuCreateAndStartWithPolicy", 11);

    m_worker.Setup(radId, "Slow", 17, 65536, EAaProEuSchedulingPolicy_Fifo);

    EXPECT_THAT(m_platform.calls("AaSysCom"),
                ElementsAre(formatted("AaSysComEuCreateAndStartWithPolicy(\"Slow\", stack 65536, policy 3, priority "
                                      "17, argsSize %zu, wait 0)",
                                      sizeof(void*))));
}

TEST_F(WorkerTest, LongSetupStoresItsParametersEvenWhenItThrows)
{
    m_platform.setResult("AaSysComEuCreateAndStartWithPolicy", 11);
    EXPECT_THROW(m_worker.Setup(radId, "", 17, 65536, EAaProEuSchedulingPolicy_RoundRobin), InvalidParameterException);

    m_worker.Setup(radId, "Slow");

    EXPECT_THAT(m_platform.calls("AaSysCom"),
                ElementsAre(formatted("AaSysComEuCreateAndStartWithPolicy(\"Slow\", stack 65536, policy 2, priority "
                                      "17, argsSize %zu, wait 0)",
                                      sizeof(void*))));
}

TEST_F(WorkerTest, EuThatCannotBeCreatedIsNotReported)
{
    m_platform.setResult("AaSysComEuCreateAndStartWithPolicy", 11);

    m_worker.Setup(radId, "Slow");

    EXPECT_TRUE(m_worker.IsSetupDone());
    EXPECT_NO_THROW(m_worker.Setup(radId, "Slow")); // there is no EU yet
}

TEST_F(WorkerTest, EmptyNameIsRefusedByAFreshWorker)
{
    m_platform.clearCalls();
    try {
        m_worker.Setup(radId, "");
        FAIL();
    } catch (const InvalidParameterException& failure) {
        EXPECT_STREQ(failure.what(), "Invalid parameter");
        EXPECT_EQ(failure.getDescription(), "invalid worker name");
        EXPECT_EQ(failure.getFile(), "Common/src/Worker.cpp");
        EXPECT_GT(failure.getLine(), 0);
    }

    EXPECT_THAT(m_platform.calls(),
                ElementsAre(formatted("Warning 0x%X Illegal name '' for Worker thread", unsigned{ERadHwapi_Last})));
    EXPECT_FALSE(m_worker.IsSetupDone());
}

TEST_F(WorkerTest, SecondSetupIsRefused)
{
    std::vector<std::string> calls;
    Job again("again", [&] {
        m_platform.clearCalls();
        try {
            m_worker.Setup(ERadHwapi_Last, "Other");
            ADD_FAILURE();
        } catch (const AbstractWorker::SetupAlreadyDoneException& failure) {
            EXPECT_STREQ(failure.what(), "Worker setup already done");
            EXPECT_EQ(failure.getDescription(), "execution is already done");
            EXPECT_EQ(failure.getFile(), "Common/src/Worker.cpp");
            EXPECT_GT(failure.getLine(), 0);
        }
        calls = m_platform.calls();
    });
    m_worker.AssignTaskAndKeepOwnership(&again);

    run();

    EXPECT_THAT(calls, ElementsAre("Warning 0x20000 Worker 'Slow' setup already done"));
}

TEST_F(WorkerTest, EmptyNameIsRefusedBeforeTheSecondSetupIs)
{
    m_worker.*exposed(dorn::test::RunningWorkerTag{}) = 7;

    EXPECT_THROW(m_worker.Setup(radId, ""), InvalidParameterException);
    EXPECT_THROW(m_worker.Setup(radId, "Slow"), AbstractWorker::SetupAlreadyDoneException);
}

TEST_F(WorkerTest, SetupStartsTheThreadThroughItsVirtualFunction)
{
    class Threadless : public Worker {
    public:
        void startWorkerThread() override
        {
            ++starts;
            EXPECT_FALSE(IsSetupDone()); // not before it has been started
        }
        int starts = 0;
    };
    Threadless worker;

    worker.Setup(radId, "Slow");

    EXPECT_EQ(worker.starts, 1);
    EXPECT_TRUE(worker.IsSetupDone());
    EXPECT_THAT(m_platform.calls("AaSysCom"), IsEmpty());
}

TEST_F(WorkerTest, AssignedTaskIsQueuedUnderTheLockAndThenCounted)
{
    Job job("job");
    m_platform.clearCalls();

    m_worker.AssignTaskAndKeepOwnership(&job);

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("job setOwnedByWorker(false)", "AaSemTake(2, -1)", "AaSemGive(2)", "AaSemGive(1)"));
}

TEST_F(WorkerTest, TaskIsTakenAfterCountSuspensionAndExecutionInThisOrder)
{
    m_platform.clearCalls();

    run();

    EXPECT_THAT(callsFrom("AaSemTake(1, -1)"),
                ElementsAre("AaSemTake(1, -1)", "AaSemTake(3, -1)", "AaSemTake(4, -1)", "AaSemGive(3)",
                            "AaSemTake(2, -1)", "AaSemGive(2)", "Debug 0x20000 WORKER: EXECUTE TASK",
                            "end setExecutingWorker(worker)", "end Perform", "end setExecutingWorker(null)",
                            "end isOwnedByWorker", "AaSemGive(4)", "Info 0x20000 Terminating Worker 'Slow'",
                            "end deleted")); // by the test
}

TEST_F(WorkerTest, TaskGivenAwayIsDeletedAfterItHasRun)
{
    m_worker.AssignTaskAndGiveOwnership(new Job("job"));

    run();

    EXPECT_THAT(m_platform.calls("job "),
                ElementsAre("job setOwnedByWorker(true)", "job setExecutingWorker(worker)", "job Perform",
                            "job setExecutingWorker(null)", "job isOwnedByWorker", "job deleted"));
}

TEST_F(WorkerTest, TaskKeptIsNotDeletedAndHasNoExecutingWorkerAfterwards)
{
    AbstractWorker* during = nullptr;
    Job job("job", [&] { during = job.getExecutingWorker(); });
    m_worker.AssignTaskAndKeepOwnership(&job);

    run();

    EXPECT_THAT(m_platform.calls("job deleted"), IsEmpty());
    EXPECT_EQ(during, &m_worker);
    EXPECT_EQ(job.getExecutingWorker(), nullptr);
    EXPECT_FALSE(job.isOwnedByWorker());
}

TEST_F(WorkerTest, AssignTaskGivesOwnershipOnlyForOne)
{
    Job job("job");
    for (const unsigned int give : {0U, 1U, 2U, 0xFFFFFFFFU}) {
        m_worker.AssignTask(&job, give);
    }

    EXPECT_THAT(m_platform.calls("job "), ElementsAre("job setOwnedByWorker(false)", "job setOwnedByWorker(true)",
                                                      "job setOwnedByWorker(false)", "job setOwnedByWorker(false)"));
}

TEST_F(WorkerTest, NullTaskIsRefusedAndNothingIsQueued)
{
    m_platform.clearCalls();

    EXPECT_THROW(m_worker.AssignTaskAndGiveOwnership(nullptr), InvalidParameterException);
    EXPECT_THROW(m_worker.AssignTaskAndKeepOwnership(nullptr), InvalidParameterException);
    EXPECT_THROW(m_worker.AssignTask(nullptr, 1), InvalidParameterException);

    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(WorkerTest, TasksRunInTheOrderInWhichTheyWereAssigned)
{
    std::vector<std::string> expected;
    for (int number = 0; number < 200; ++number) {
        m_worker.AssignTaskAndGiveOwnership(new Job(formatted("job%d", number)));
        expected.push_back(formatted("job%d Perform", number));
    }
    expected.emplace_back("end Perform");

    run();

    std::vector<std::string> performed;
    for (const std::string& call : m_platform.calls()) {
        if (call.ends_with(" Perform")) {
            performed.push_back(call);
        }
    }
    EXPECT_EQ(performed, expected);
}

TEST_F(WorkerTest, TaskExceptionIsLoggedAndTheTaskNeitherResetNorDeleted)
{
    Job job("job", [] { throw AbstractWorker::Task::TaskException("no link", "port 3 is down", __FILE__, __LINE__); });
    m_worker.AssignTaskAndGiveOwnership(&job);

    run();

    EXPECT_THAT(logged(), ElementsAre("Info 0x20000 Starting Worker 'Slow'", "Debug 0x20000 WORKER: EXECUTE TASK",
                                      "Error 0x20000 Task - no link: port 3 is down",
                                      "Debug 0x20000 WORKER: EXECUTE TASK", "Info 0x20000 Terminating Worker 'Slow'"));
    EXPECT_THAT(m_platform.calls("job "),
                ElementsAre("job setOwnedByWorker(true)", "job setExecutingWorker(worker)", "job Perform"));
    EXPECT_EQ(job.getExecutingWorker(), &m_worker);
}

TEST_F(WorkerTest, AnyOtherExceptionIsLoggedAsUndefined)
{
    Job standard("standard", [] { throw std::runtime_error("broken"); });
    Job family("family", [] { throw InvalidParameterException("wrong", __FILE__, __LINE__); });
    Job number("number", [] { throw 5; });
    for (Job* const job : {&standard, &family, &number}) {
        m_worker.AssignTaskAndGiveOwnership(job);
    }

    run();

    EXPECT_THAT(m_platform.calls("Error "),
                ElementsAre("Error 0x20000 Task - undefined exception", "Error 0x20000 Task - undefined exception",
                            "Error 0x20000 Task - undefined exception"));
    EXPECT_EQ(m_platform.calls("end Perform").size(), 1U);
    EXPECT_EQ(standard.getExecutingWorker(), &m_worker);
}

TEST_F(WorkerTest, ExecutionIsGivenBackWhenATaskThrows)
{
    Job job("job", [] { throw 5; });
    m_worker.AssignTaskAndKeepOwnership(&job);

    run();

    const std::vector<std::string> calls = callsFrom("Error 0x20000 Task - undefined exception");
    ASSERT_GE(calls.size(), 3U);
    EXPECT_EQ(calls[1], "AaSemGive(4)");
    EXPECT_EQ(calls[2], "AaSemTake(1, -1)");
}

TEST_F(WorkerTest, ExceptionAroundPerformIsLoggedTheSameWay)
{
    Job before("before");
    before.onSetExecuting = [](AbstractWorker*) {
        throw AbstractWorker::Task::TaskException("not now", "", __FILE__, __LINE__);
    };
    Job after("after");
    after.onIsOwned = [] { throw 5; };
    m_worker.AssignTaskAndGiveOwnership(&before);
    m_worker.AssignTaskAndGiveOwnership(&after);

    run();

    EXPECT_THAT(m_platform.calls("Error "),
                ElementsAre("Error 0x20000 Task - not now: ", "Error 0x20000 Task - undefined exception"));
    EXPECT_THAT(m_platform.calls("before Perform"), IsEmpty());
    EXPECT_EQ(m_platform.calls("end Perform").size(), 1U);
}

TEST_F(WorkerTest, WorkerWithoutSemaphoresRunsWhatIsThere)
{
    m_platform.setResult("AaSemCreateC", 1);
    Worker worker;
    int rounds = 0;
    m_platform.onCall = [&](const std::string& call) {
        if (call == "AaSemTake(0, -1)" && ++rounds == 10) { // with nothing to run, it does not touch the queue
            worker.*exposed(dorn::test::RunningWorkerTag{}) = 0;
        }
    };
    Job job("job");
    worker.AssignTaskAndKeepOwnership(&job);

    worker.Setup(radId, "Slow");

    m_platform.onCall = {};
    EXPECT_EQ(m_platform.calls("job Perform").size(), 1U);
    EXPECT_THAT(m_platform.calls("Error"), IsEmpty());
}

TEST_F(WorkerTest, SuspensionByATaskHoldsUpTheNextOne)
{
    Job suspend("suspend", [this] {
        m_worker.SuspendWorking();
        m_platform.onCall = [this](const std::string& call) {
            if (call == "AaSemTake(3, -1)") { // the worker is held up here
                EXPECT_THAT(m_platform.calls("end Perform"), IsEmpty());
                m_worker.ResumeWorking();
            }
        };
    });
    m_worker.AssignTaskAndKeepOwnership(&suspend);

    run();

    m_platform.onCall = {};
    EXPECT_EQ(m_platform.calls("end Perform").size(), 1U);
    EXPECT_FALSE(m_worker.IsWorkingSuspended());
}

// Registered workers live as long as the process, longer than any test's platform: they are made, never destroyed.

TEST_F(WorkerTest, RegisteredWorkerIsTheSameEachTime)
{
    Worker* const first = Worker::Get(7);

    EXPECT_NE(first, nullptr);
    EXPECT_EQ(Worker::Get(7), first);
    EXPECT_NE(Worker::Get(8), first);
    EXPECT_NE(Worker::Get(-7), first);
}

TEST_F(WorkerTest, UnregisteredWorkersAreAlwaysNew)
{
    const std::unique_ptr<Worker> first(Worker::Get());
    const std::unique_ptr<Worker> second(Worker::Get());

    EXPECT_NE(first, second);
    EXPECT_NE(Worker::Get(7), first.get());
}

TEST_F(WorkerTest, RegistryMayBeAskedByManyThreads)
{
    std::vector<std::thread> threads;
    std::vector<Worker*> found(8);
    for (Worker*& worker : found) {
        threads.emplace_back([&worker] { worker = Worker::Get(4711); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(std::set<Worker*>(found.begin(), found.end()).size(), 1U);
}

} // namespace
} // namespace vel::hwapi::common
