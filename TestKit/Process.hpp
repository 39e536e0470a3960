// SPDX-License-Identifier: MIT
/// @file Process.hpp
/// Runs an executable as a child, on the same TestNode.
#pragma once

#include "Bound.hpp"

#include <array>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace dorn::testkit {

/// A child process with the environment of this one, nothing on its standard input, and its output collected.
///
///     Process greeter(DORN_GREETER_EXE, {"-v"});
///     ASSERT_TRUE(waitForRad(ERadHwapiState_BasebandState, 2));
///     greeter.signal(SIGTERM);
///     EXPECT_EQ(greeter.waitForEnd(), 1);
///
/// It is killed at the end of this object, and when the thread that made this object ends. All functions may be called
/// from any thread.
class Process {
public:
    /// Starts @p program, a path.
    /// @throws std::system_error when it cannot be started.
    explicit Process(const std::string& program, const std::vector<std::string>& arguments = {});
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// The child's process id, also when it has ended.
    pid_t pid() const { return m_pid; }
    /// False from the moment on when it has ended and been waited for.
    bool isRunning() const;

    /// Sends a signal; does nothing when the child has ended. After SIGSTOP it has stopped.
    void signal(int number);
    /// Waits until the child has ended and all its output is here.
    /// @return its exit status, 0 to 255, or the negative number of the signal that ended it.
    /// @throws std::runtime_error when it still runs after @p bound.
    int waitForEnd(Bound bound = generousBound);

    /// What it has written so far.
    std::string standardOutput() const;
    /// What it has written so far.
    std::string standardError() const;
    /// Waits until its standard output contains @p text.
    /// @return false when it has not within @p bound, or has ended without.
    [[nodiscard]] bool waitForOutput(const std::string& text, Bound bound = generousBound) const;

private:
    void readOutput(int output, int error);
    void append(std::size_t stream, const char* text, std::size_t size);
    void awaitEnd();

    pid_t m_pid = -1;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::array<std::string, 2> m_texts; ///< standard output, standard error
    std::optional<int> m_status;        ///< set when the child has been reaped
    bool m_isOutputComplete = false;
    int m_readerStop = -1;
    std::thread m_reader;
    std::thread m_reaper;
};

} // namespace dorn::testkit
