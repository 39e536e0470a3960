// SPDX-License-Identifier: MIT
#include "SupervisorS.hpp"

#include "AaSysLog.h"
#include "OwnUnit.hpp"

#include <array>
#include <poll.h>
#include <sstream>
#include <string>
#include <unistd.h>

namespace dorn::examples {
namespace {

using vel::hwapi::common::EventDispatcher;

constexpr unsigned int dispatcherId = 2;
constexpr unsigned int priority = 5;
constexpr unsigned int stackSize = 16384;

} // namespace

SupervisorS::SupervisorS(int fifo)
    : Service("SupervisorS", supervisorServiceCpid, ERadHwapi_STARTUP, ERadHwapiState_SupervisorServiceState),
      m_fifo(fifo),
      m_dispatcher(*EventDispatcher::Get(dispatcherId))
{
}

void SupervisorS::Init()
{
    logOwnUnit(GetRadId());
    m_dispatcher.RegisterEventHandler(m_fifo, *this, POLLIN);
    m_dispatcher.Setup(GetRadId(), "SupervisorFifo", priority, stackSize);
}

void SupervisorS::HandleEvent(int fd)
{
    std::array<char, PIPE_BUF> buffer{}; // what is written at once and is no longer arrives in one piece
    const ssize_t size = read(fd, buffer.data(), buffer.size());
    if (size <= 0) {
        return;
    }
    std::istringstream messages(std::string(buffer.data(), static_cast<std::size_t>(size)));
    for (std::string line; std::getline(messages, line);) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Supervisor is told: %s", line.c_str());
    }
}

SupervisorS::~SupervisorS()
{
    m_dispatcher.Stop();
    m_dispatcher.UnregisterEventHandler(m_fifo);
}

} // namespace dorn::examples
