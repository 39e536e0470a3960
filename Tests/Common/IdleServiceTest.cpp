// SPDX-License-Identifier: MIT
// What a service costs that has nothing to do.
#include "Process.hpp"
#include "Sanitizers.hpp"
#include "TestNode.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <ostream>
#include <string>
#include <thread>
#include <utility>

namespace dorn::test {
namespace {

/// What the kernel tells of a thread.
struct ThreadStatus {
    std::string name;
    std::string state;
    unsigned long switches = 0; ///< how often it has run since, both of its own will and not

    bool operator==(const ThreadStatus&) const = default;
};

void PrintTo(const ThreadStatus& thread, std::ostream* stream)
{
    *stream << thread.name << ", " << thread.state << ", " << thread.switches << " context switches";
}

using Threads = std::map<pid_t, ThreadStatus>;

ThreadStatus readStatus(const std::filesystem::path& file)
{
    ThreadStatus thread;
    std::ifstream status(file);
    for (std::string line; std::getline(status, line);) {
        const std::size_t colon = line.find(":\t");
        const std::string key = line.substr(0, colon);
        const std::string value = colon == std::string::npos ? "" : line.substr(colon + 2);
        if (key == "Name") {
            thread.name = value;
        } else if (key == "State") {
            thread.state = value;
        } else if (key.ends_with("voluntary_ctxt_switches")) {
            thread.switches += std::stoul(value);
        }
    }
    return thread;
}

Threads threadsOf(const std::string& process)
{
    Threads threads;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + process + "/task")) {
        threads[std::stoi(task.path().filename())] = readStatus(task.path() / "status");
    }
    return threads;
}

bool allSleep(const Threads& threads)
{
    return std::all_of(threads.begin(), threads.end(),
                       [](const auto& entry) { return entry.second.state == "S (sleeping)"; });
}

/// The threads of a process as soon as all of them have come to rest. That nothing happens cannot be waited for by an
/// event, here and below.
Threads threadsAtRest(const std::string& process)
{
    const auto until = std::chrono::steady_clock::now() + testkit::generousBound;
    Threads before;
    Threads now = threadsOf(process);
    while ((now != before || !allSleep(now)) && std::chrono::steady_clock::now() < until) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        before = std::exchange(now, threadsOf(process));
    }
    return now;
}

TEST(IdleServiceTest, ServiceWithoutWorkHasOneThreadBesidesMainAndNoneOfThemRuns)
{
    if (hasThreadSanitizer || threadsOf("self").size() != 1) {
        GTEST_SKIP() << "a sanitizer or an emulator has threads of its own";
    }
    const testkit::TestNode node;
    testkit::Process service(DORN_SIGNAL_TEST_EXE);
    ASSERT_TRUE(service.waitForOutput("waiting\n"));
    const std::string pid = std::to_string(service.pid());

    const Threads atRest = threadsAtRest(pid);
    std::this_thread::sleep_for(std::chrono::seconds(3));

    EXPECT_EQ(threadsOf(pid), atRest);
    ASSERT_EQ(atRest.size(), 2U) << testing::PrintToString(atRest);
    EXPECT_EQ(atRest.begin()->second.name, "signal_service");
    EXPECT_EQ(atRest.rbegin()->second.name, "SignalMain");
    service.signal(SIGTERM);
    EXPECT_EQ(service.waitForEnd(), 1);
}

} // namespace
} // namespace dorn::test
