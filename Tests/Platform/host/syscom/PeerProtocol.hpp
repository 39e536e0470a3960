// SPDX-License-Identifier: MIT
/// @file PeerProtocol.hpp
/// What a test tells the peer program, and what that answers.
#pragma once

#include "AaSysCom.h"

#include <cstdint>

namespace dorn::host::test {

constexpr TAaSysComMsgId commandId = 0x7001;
constexpr TAaSysComMsgId answerId = 0x7002;

/// Each is answered once it has been done.
enum class Order : std::uint32_t {
    Register,        ///< the main EU registers `cpid`; `first` is what was granted
    Deregister,      ///< `first` is the result
    RegisterInEu,    ///< an EU registers `cpid` and receives nothing; `first` is what was granted
    Drain,           ///< has the EU of RegisterInEu take all that is there
    EndEu,           ///< ends the EU of RegisterInEu
    Send,            ///< sends `count` patterns of `size` bytes to `cpid`, as `sender` unless 0; `first` were accepted
    SendForever,     ///< an EU sends patterns of `size` bytes to `cpid` without pause
    StopSending,     ///< ends the EU of SendForever; `first` were accepted
    RegisterForever, ///< an EU registers and deregisters `cpid` without pause
    Collect,         ///< an EU registers `cpid` and takes patterns; `first` is what was granted
    Collected,       ///< `first` patterns were taken, `second` of them broken, `third` out of order
    Return,          ///< sends `count` messages of `size` bytes to the asker as fast as it can, each in answer to one
    Watch,           ///< an EU becomes a watcher of the node and takes nothing; `first` is its cpid, or 0
    Fork,            ///< forks a process that ends at once, as a program does that cannot be started
    Exit             ///< returns from `main`
};

struct Command {
    Order order = Order::Exit;
    TAaSysComCpid cpid = 0;
    std::uint16_t size = 16;
    std::uint32_t count = 0;
    TAaSysComSicad sender = 0;
};

struct Answer {
    std::uint32_t first;
    std::uint32_t second;
    std::uint32_t third;
};

} // namespace dorn::host::test
