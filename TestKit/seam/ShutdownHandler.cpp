// SPDX-License-Identifier: MIT
#include "seam/ShutdownHandler.hpp"

#include <condition_variable>
#include <mutex>

namespace dorn::testkit {
namespace {

struct State {
    std::mutex mutex;
    std::condition_variable changed;
    TAaStartupShutdownHandler handler = nullptr;
};

State& state()
{
    static auto* const instance = new State; // services may end after static objects
    return *instance;
}

} // namespace

void noteShutdownHandler(TAaStartupShutdownHandler handler)
{
    const std::lock_guard lock(state().mutex);
    state().handler = handler;
    state().changed.notify_all();
}

bool requestShutdown(Bound bound, const std::function<bool()>& isEnough)
{
    std::unique_lock lock(state().mutex);
    if (!state().changed.wait_for(lock, bound, [&] { return state().handler || isEnough(); })) {
        return false;
    }
    if (state().handler) {
        state().handler();
    }
    return true;
}

void stirShutdownWait()
{
    const std::lock_guard lock(state().mutex);
    state().changed.notify_all();
}

} // namespace dorn::testkit
