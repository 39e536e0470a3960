// SPDX-License-Identifier: MIT
// What a worker without a thread asks of the platform when it is suspended and resumed.
#include "RecordingPlatform.hpp"
#include "Worker.hpp"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace vel::hwapi::common {
namespace {

using dorn::test::formatted;
using dorn::test::RecordingPlatform;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class WorkerSuspensionTest : public testing::Test {
protected:
    /// What IsWorkingSuspended() tells when the platform is asked for @p wanted.
    void lookDuring(const std::string& wanted)
    {
        m_platform.onCall = [this, wanted](const std::string& call) {
            if (call == wanted) {
                m_seen = m_worker.IsWorkingSuspended();
            }
        };
    }

    RecordingPlatform m_platform;
    Worker m_worker; ///< its semaphores: 3 suspension, 4 execution
    std::optional<bool> m_seen;
};

TEST_F(WorkerSuspensionTest, SuspensionTakesItsSemaphoreOnce)
{
    m_platform.clearCalls();

    m_worker.SuspendWorking();
    m_worker.SuspendWorking();

    EXPECT_TRUE(m_worker.IsWorkingSuspended());
    EXPECT_THAT(
        m_platform.calls(),
        ElementsAre(formatted("Debug 0x%X WORKER: SUSPEND WORKING", unsigned{ERadHwapi_Last}), "AaSemTake(3, -1)"));
}

TEST_F(WorkerSuspensionTest, ResumptionGivesItsSemaphoreOnce)
{
    m_worker.SuspendWorking();
    m_platform.clearCalls();

    m_worker.ResumeWorking();
    m_worker.ResumeWorking();

    EXPECT_FALSE(m_worker.IsWorkingSuspended());
    EXPECT_THAT(m_platform.calls(),
                ElementsAre(formatted("Debug 0x%X WORKER: RESUME WORKING", unsigned{ERadHwapi_Last}), "AaSemGive(3)"));
}

TEST_F(WorkerSuspensionTest, ResumptionWithoutSuspensionDoesNothing)
{
    m_platform.clearCalls();

    m_worker.ResumeWorking();

    EXPECT_THAT(m_platform.calls(), IsEmpty());
}

TEST_F(WorkerSuspensionTest, WaitForTheWorkTakesTheExecutionAndGivesItBack)
{
    m_platform.clearCalls();

    m_worker.SuspendAndWaitWorkToComplete();
    m_worker.SuspendAndWaitWorkToComplete(); // it waits again although it is suspended

    const std::string printId = formatted("Debug 0x%X ", unsigned{ERadHwapi_Last});
    EXPECT_THAT(m_platform.calls(),
                ElementsAre(printId + "WORKER: SUSPEND WORKING", "AaSemTake(3, -1)",
                            printId + "WORKER: WAITING WORK TO COMPLETE", "AaSemTake(4, -1)", "AaSemGive(4)",
                            printId + "WORKER: WAITING WORK TO COMPLETE", "AaSemTake(4, -1)", "AaSemGive(4)"));
}

TEST_F(WorkerSuspensionTest, WorkerCountsAsSuspendedOnlyOnceItsSemaphoreIsTaken)
{
    lookDuring("AaSemTake(3, -1)");

    m_worker.SuspendWorking();

    EXPECT_EQ(m_seen, false);
    EXPECT_TRUE(m_worker.IsWorkingSuspended());
}

TEST_F(WorkerSuspensionTest, WorkerCountsAsResumedBeforeItsSemaphoreIsGiven)
{
    m_worker.SuspendWorking();
    lookDuring("AaSemGive(3)");

    m_worker.ResumeWorking();

    EXPECT_EQ(m_seen, false);
}

TEST_F(WorkerSuspensionTest, OfTwoThreadsThatResumeAtOnceOneGivesTheSemaphore)
{
    m_worker.SuspendWorking();
    m_platform.clearCalls();
    bool isFirst = true;
    m_platform.onCall = [&](const std::string& call) {
        if (call.ends_with("WORKER: RESUME WORKING") && std::exchange(isFirst, false)) {
            std::thread([this] { m_worker.ResumeWorking(); }).join(); // after the first has found it suspended
        }
    };

    m_worker.ResumeWorking();

    EXPECT_THAT(m_platform.calls("Debug "), SizeIs(2)); // both were at it
    EXPECT_THAT(m_platform.calls("AaSemGive(3)"), SizeIs(1));
}

} // namespace
} // namespace vel::hwapi::common
