// SPDX-License-Identifier: MIT
// Workers on the host's platform: real threads, a real log.
#include "Worker.hpp"

#include "AaSysCom.h"
#include "Bound.hpp"
#include "FailNth.hpp"
#include "LogCapture.hpp"
#include "Moment.hpp"
#include "TestNode.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace vel::hwapi::common {
namespace {

using dorn::test::Moment;
using dorn::testkit::FailNth;
using dorn::testkit::LogCapture;
using dorn::testkit::TestNode;
using testing::ElementsAre;

constexpr ERadHwapi radId = ERadHwapi_PrintCtrlTask;

class Job : public AbstractWorker::Task {
public:
    explicit Job(std::function<void()> work, std::atomic<int>* deleted = nullptr)
        : m_work(std::move(work)), m_deleted(deleted)
    {
    }
    ~Job() override
    {
        if (m_deleted) {
            m_deleted->fetch_add(1);
        }
    }
    void Perform() override { m_work(); }

private:
    std::function<void()> m_work;
    std::atomic<int>* m_deleted;
};

/// A worker runs as long as the process. It goes on to the next test when a test is over and nothing is queued.
Worker& borrowWorker()
{
    static auto* const instance = [] {
        Worker* const worker = Worker::Get();
        worker->Setup(radId, "Slow");
        return worker;
    }();
    return *instance;
}

class WorkerHostTest : public testing::Test {
protected:
    ~WorkerHostTest() override { finish(); }

    void assign(std::function<void()> work) { m_worker.AssignTaskAndGiveOwnership(new Job(std::move(work))); }
    /// Lets the worker do everything that is queued.
    void finish()
    {
        Moment last;
        m_worker.ResumeWorking();
        assign([&] { last.come(); });
        EXPECT_TRUE(last.waitFor());
        m_worker.SuspendAndWaitWorkToComplete();
        m_worker.ResumeWorking();
    }

    TestNode m_node{{.logLevel = "debug"}};
    LogCapture m_log;
    Worker& m_worker = borrowWorker();
};

TEST_F(WorkerHostTest, TaskRunsOnAnEuOfTheWorkersName)
{
    std::array<char, 16> name{};
    TAaProEuId eu = 0;
    assign([&] {
        pthread_getname_np(pthread_self(), name.data(), name.size());
        eu = AaProEuCurrent();
    });

    finish();

    EXPECT_STREQ(name.data(), "Slow");
    EXPECT_NE(eu, 0U);
    EXPECT_NE(eu, AaProEuCurrent());
}

TEST_F(WorkerHostTest, TasksRunOneAtATimeInTheOrderOfAssignment)
{
    std::vector<int> order;
    std::atomic<int> running{0};
    std::atomic<bool> hasOverlapped{false};
    for (int number = 0; number < 1000; ++number) {
        assign([&, number] {
            hasOverlapped = hasOverlapped || running.fetch_add(1) != 0;
            order.push_back(number);
            running.fetch_sub(1);
        });
    }

    finish();

    EXPECT_FALSE(hasOverlapped);
    ASSERT_EQ(order.size(), 1000U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_F(WorkerHostTest, TasksOfEachThreadKeepTheirOrder)
{
    constexpr int each = 2000;
    std::array<std::vector<int>, 4> orders;
    std::vector<std::thread> threads;
    for (std::vector<int>& order : orders) {
        threads.emplace_back([&] {
            for (int number = 0; number < each; ++number) {
                assign([&order, number] { order.push_back(number); });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    finish();

    for (const std::vector<int>& order : orders) {
        EXPECT_EQ(order.size(), std::size_t{each});
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    }
}

TEST_F(WorkerHostTest, OwnedTaskIsDeletedOnceAndKeptOneIsNot)
{
    std::atomic<int> deleted{0};
    int keptRuns = 0;
    Job kept([&] { ++keptRuns; }, &deleted);
    m_worker.AssignTaskAndGiveOwnership(new Job([] {}, &deleted));
    m_worker.AssignTaskAndKeepOwnership(&kept);

    finish();

    EXPECT_EQ(deleted.load(), 1);
    EXPECT_EQ(keptRuns, 1);
    EXPECT_EQ(kept.getExecutingWorker(), nullptr);
}

TEST_F(WorkerHostTest, OthersSeeWhichWorkerIsAtWork)
{
    Moment started;
    Moment release;
    Job job([&] {
        started.come();
        EXPECT_TRUE(release.waitFor());
    });
    m_worker.AssignTaskAndKeepOwnership(&job);
    ASSERT_TRUE(started.waitFor());

    EXPECT_EQ(job.getExecutingWorker(), &m_worker);

    release.come();
    finish();
    EXPECT_EQ(job.getExecutingWorker(), nullptr);
}

TEST_F(WorkerHostTest, TasksAssignedWhileSuspendedRunOnlyAfterTheResumption)
{
    std::atomic<int> runs{0};
    m_worker.SuspendAndWaitWorkToComplete();
    for (int count = 0; count < 10; ++count) {
        assign([&] { runs.fetch_add(1); });
    }

    // The wait below passes through the worker's execution: a task that it had begun would have ended.
    m_worker.SuspendAndWaitWorkToComplete();
    EXPECT_TRUE(m_worker.IsWorkingSuspended());
    EXPECT_EQ(runs.load(), 0);

    m_worker.ResumeWorking();
    EXPECT_FALSE(m_worker.IsWorkingSuspended());
    finish();
    EXPECT_EQ(runs.load(), 10);
}

TEST_F(WorkerHostTest, WaitForTheWorkReturnsWhenTheTaskInHandHasEnded)
{
    Moment started;
    Moment release;
    std::atomic<bool> hasEnded{false};
    std::atomic<bool> hasNextRun{false};
    assign([&] {
        started.come();
        EXPECT_TRUE(release.waitFor());
        hasEnded = true;
    });
    assign([&] { hasNextRun = true; });
    ASSERT_TRUE(started.waitFor());
    std::thread suspender([&] {
        m_worker.SuspendAndWaitWorkToComplete();
        EXPECT_TRUE(hasEnded);
        EXPECT_FALSE(hasNextRun);
    });
    ASSERT_TRUE(m_log.waitFor("Debug 0x20000 WORKER: WAITING WORK TO COMPLETE"));
    EXPECT_FALSE(hasEnded);

    release.come();

    suspender.join();
    finish();
    EXPECT_TRUE(hasNextRun);
}

TEST_F(WorkerHostTest, SuspensionDoesNotWaitForTheTaskInHand)
{
    Moment started;
    Moment release;
    assign([&] {
        started.come();
        EXPECT_TRUE(release.waitFor());
    });
    ASSERT_TRUE(started.waitFor());

    m_worker.SuspendWorking(); // returns although the task goes on

    EXPECT_TRUE(m_worker.IsWorkingSuspended());
    release.come();
    finish();
}

TEST_F(WorkerHostTest, TaskMaySuspendItsOwnWorkerAndAnotherThreadResumesIt)
{
    Moment suspended;
    std::atomic<bool> hasNextRun{false};
    assign([&] {
        m_worker.SuspendWorking();
        suspended.come();
    });
    assign([&] { hasNextRun = true; });
    ASSERT_TRUE(suspended.waitFor());
    m_worker.SuspendAndWaitWorkToComplete();
    EXPECT_FALSE(hasNextRun);

    finish();

    EXPECT_TRUE(hasNextRun);
}

TEST_F(WorkerHostTest, TaskMayAssignTasks)
{
    Moment done;
    assign([&] { assign([&] { done.come(); }); });

    EXPECT_TRUE(done.waitFor());
    finish();
}

TEST_F(WorkerHostTest, OneResumptionUndoesAnyNumberOfSuspensions)
{
    m_worker.SuspendWorking();
    m_worker.SuspendWorking();
    std::atomic<bool> hasRun{false};
    assign([&] { hasRun = true; });
    m_worker.SuspendAndWaitWorkToComplete();
    EXPECT_FALSE(hasRun);

    m_worker.ResumeWorking();
    finish();

    EXPECT_TRUE(hasRun);
}

TEST_F(WorkerHostTest, FailuresOfTasksAreLoggedAndTheWorkerGoesOn)
{
    Job reporting([] { throw AbstractWorker::Task::TaskException("No link", "port 3", __FILE__, __LINE__); });
    Job broken([] { throw std::runtime_error("broken"); });
    m_worker.AssignTaskAndGiveOwnership(&reporting);
    m_worker.AssignTaskAndGiveOwnership(&broken);

    finish();

    EXPECT_EQ(m_log.count("Error 0x20000 Task - No link: port 3"), 1U);
    EXPECT_EQ(m_log.count("Error 0x20000 Task - undefined exception"), 1U);
    EXPECT_EQ(reporting.getExecutingWorker(), &m_worker); // neither reset nor deleted
    EXPECT_EQ(broken.getExecutingWorker(), &m_worker);
}

TEST_F(WorkerHostTest, LogTellsWhatTheWorkerDoes)
{
    finish();
    m_log.clear();
    m_worker.SuspendWorking();
    m_worker.ResumeWorking();
    assign([] {});
    ASSERT_TRUE(m_log.waitFor("Debug 0x20000 WORKER: EXECUTE TASK"));

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Debug 0x20000 WORKER: SUSPEND WORKING", "Debug 0x20000 WORKER: RESUME WORKING",
                            "Debug 0x20000 WORKER: EXECUTE TASK"));
}

/// A worker that is set up in a test and idle for the rest of the process.
Worker& leaveBehind(Worker* worker)
{
    static auto* const all = new std::deque<Worker*>;
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    all->push_back(worker);
    return *worker;
}

TEST_F(WorkerHostTest, TasksAssignedBeforeSetupRunAfterIt)
{
    Worker& early = leaveBehind(Worker::Get());
    Moment done;
    early.AssignTaskAndGiveOwnership(new Job([&] { done.come(); }));
    EXPECT_FALSE(early.IsSetupDone());

    early.Setup(ERadHwapi_PrintCtrlTask, "Early", 5, 16384, EAaProEuSchedulingPolicy_Fifo);

    EXPECT_TRUE(early.IsSetupDone());
    EXPECT_TRUE(done.waitFor());
    EXPECT_EQ(m_log.count("Info 0x20000 Starting Worker 'Early'"), 1U);
    EXPECT_THROW(early.Setup(radId, "Early"), AbstractWorker::SetupAlreadyDoneException);
    EXPECT_EQ(m_log.count("Warning 0x20000 Worker 'Early' setup already done"), 1U);
    early.SuspendAndWaitWorkToComplete();
    early.ResumeWorking();
}

TEST_F(WorkerHostTest, WorkerWhoseEuCouldNotBeCreatedIsSetUpAgain)
{
    Worker& late = leaveBehind(Worker::Get());
    Moment done;
    {
        const FailNth<AaSysComEuCreateAndStartWithPolicy> noEu(1);
        late.Setup(radId, "Late");
        EXPECT_TRUE(noEu.hasFailed());
    }
    EXPECT_TRUE(late.IsSetupDone());
    late.AssignTaskAndGiveOwnership(new Job([&] { done.come(); }));

    late.Setup(radId, "Late");

    EXPECT_TRUE(done.waitFor());
    late.SuspendAndWaitWorkToComplete();
    late.ResumeWorking();
}

/// Tasks of every kind for one worker: some stay the assigner's, some throw, some assign more.
class Turmoil {
public:
    static constexpr int assigners = 4;
    static constexpr int tasksOfEach = 1000;

    explicit Turmoil(Worker& worker) : m_worker(worker)
    {
        for (int number = 0; number < assigners * rounds; ++number) {
            m_kept.emplace_back([this] { runs.fetch_add(1); });
            m_throwing.push_back(std::make_unique<Job>([this] {
                runs.fetch_add(1);
                throw 5;
            }));
        }
    }

    /// Has several threads assign everything while another suspends the worker and one looks at it.
    void run()
    {
        std::vector<std::thread> threads;
        for (int assigner = 0; assigner < assigners; ++assigner) {
            threads.emplace_back([this, assigner] { assignShareOf(assigner); });
        }
        std::thread suspender([this] { suspendAgainAndAgain(); });
        std::thread observer([this] { lookAgainAndAgain(); });
        for (std::thread& thread : threads) {
            thread.join();
        }
        m_isOver = true;
        suspender.join();
        observer.join();
    }

    std::atomic<int> runs{0};
    std::atomic<int> deleted{0};

private:
    static constexpr int rounds = tasksOfEach / 4; ///< each has four tasks

    void assignShareOf(int assigner)
    {
        for (int round = 0; round < rounds; ++round) {
            const auto place = static_cast<std::size_t>(assigner * rounds + round);
            m_worker.AssignTaskAndKeepOwnership(&m_kept[place]);
            m_worker.AssignTaskAndGiveOwnership(m_throwing[place].get());
            m_worker.AssignTaskAndGiveOwnership(new Job(
                [this] {
                    runs.fetch_add(1);
                    m_worker.AssignTaskAndGiveOwnership(new Job([this] { runs.fetch_add(1); }, &deleted));
                },
                &deleted));
        }
    }

    void suspendAgainAndAgain()
    {
        while (!m_isOver) {
            m_worker.SuspendAndWaitWorkToComplete();
            const int before = runs.load();
            std::this_thread::yield();
            EXPECT_EQ(runs.load(), before); // nothing runs while suspended
            m_worker.ResumeWorking();
        }
    }

    void lookAgainAndAgain()
    {
        while (!m_isOver) {
            m_worker.IsWorkingSuspended();
            m_kept.front().getExecutingWorker();
            std::this_thread::yield();
        }
    }

    Worker& m_worker;
    std::deque<Job> m_kept;
    std::vector<std::unique_ptr<Job>> m_throwing; ///< the worker deletes none that has thrown
    std::atomic<bool> m_isOver{false};
};

TEST_F(WorkerHostTest, NothingIsLostWhenEverythingHappensAtOnce)
{
    constexpr int tasks = Turmoil::assigners * Turmoil::tasksOfEach;
    Turmoil turmoil(m_worker);

    turmoil.run();
    finish();
    finish(); // what tasks have assigned stands behind the first one's last task

    EXPECT_EQ(turmoil.runs.load(), tasks);
    EXPECT_EQ(turmoil.deleted.load(), tasks / 2);
    EXPECT_EQ(m_log.count("Error 0x20000 Task - undefined exception"), std::size_t{tasks / 4});
}

} // namespace
} // namespace vel::hwapi::common
