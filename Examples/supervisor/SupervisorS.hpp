// SPDX-License-Identifier: MIT
/// @file SupervisorS.hpp
/// The other end of the supervisor's pipe.
#pragma once

#include "EventDispatcher.hpp"
#include "EventHandler.hpp"
#include "Service.hpp"

#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t supervisorServiceCpid = 0x021B;

/// Reads what services write with SupervisorFifoWrite() and logs it; a real supervisor acts on it.
class SupervisorS : public vel::hwapi::common::Service, private vel::hwapi::common::EventHandler {
public:
    /// @param fifo the reading end of the pipe. Stays the caller's.
    explicit SupervisorS(int fifo);
    ~SupervisorS() override;

private:
    void Init() override;
    void HandleEvent(int fd) override;

    const int m_fifo;
    vel::hwapi::common::EventDispatcher& m_dispatcher;
};

} // namespace dorn::examples
