// SPDX-License-Identifier: MIT
/// @file Eu.hpp
/// Execution units: the threads of a process, each with its name and message queue.
#pragma once

#include "AaPro.h"
#include "AaSysCom.h"
#include "syscom/MessageQueue.hpp"

#include <array>
#include <atomic>
#include <string_view>

namespace dorn::host {

/// One place for an EU. Places are made when needed, used again and never freed, so that a sender that still holds an
/// old reference does no harm; the id changes with every use.
struct Eu {
    std::atomic<TAaProEuId> id{0};           ///< 0 while no EU lives here
    std::atomic<TAaSysComCpid> firstCpid{0}; ///< the sender of what it creates
    std::array<char, 32> name{};
    TAaProEuId lastId = 0;
    MessageQueue queue;
};

/// The EUs of this process. Reading takes no lock and is safe in a signal handler.
namespace eus {

constexpr std::size_t capacity = 4096;

/// Takes a place for a new EU. @return null when there is none or no memory.
Eu* acquire(std::string_view name);
/// Ends an EU: gives its cpids up, drops its messages, frees its place.
void release(Eu& eu);
/// The live EU with this id, or null.
Eu* find(TAaProEuId id);
/// The calling thread's EU; it becomes one when it is none yet. @return null only when there is no place left.
Eu* current();
/// The calling thread's EU if it is one.
Eu* currentIfAny() noexcept;
/// Makes @p eu the calling thread's EU, until the thread ends.
void adopt(Eu& eu);

} // namespace eus

/// Name of the calling EU; empty when the thread is none.
std::string_view currentEuName() noexcept;

} // namespace dorn::host
