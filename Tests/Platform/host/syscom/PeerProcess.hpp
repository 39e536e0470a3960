// SPDX-License-Identifier: MIT
/// @file PeerProcess.hpp
/// Another process of a test's node that does what it is told.
#pragma once

#include "AaSysCom.h"
#include "PeerProtocol.hpp"
#include "Process.hpp"

namespace dorn::host::test {

/// Runs the peer program. The EU that tells it what to do has a cpid.
class PeerProcess {
public:
    /// Returns when it is ready. @throws std::runtime_error
    PeerProcess();

    /// Has it do something and waits until that is done. @throws std::runtime_error when no answer comes.
    Answer ask(const Command& command);
    /// Has it do something whose end is not waited for.
    void tell(const Command& command);
    /// Takes the answer to tell(). @throws std::runtime_error when none comes.
    Answer answer();

    pid_t pid() const { return m_process.pid(); }
    /// Where it takes commands, and whatever else is sent to it.
    TAaSysComSicad address() const { return m_address; }
    std::string log() const { return m_process.standardError(); }
    /// Kills it and waits for its end.
    void kill();
    /// Waits for its end. @return as Process::waitForEnd()
    int waitForEnd() { return m_process.waitForEnd(); }

private:
    testkit::Process m_process;
    TAaSysComSicad m_address = 0;
};

/// Ends everything of one test in the queue of the calling EU.
void emptyQueue();

} // namespace dorn::host::test
