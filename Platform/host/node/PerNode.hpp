// SPDX-License-Identifier: MIT
/// @file PerNode.hpp
/// Things of which a process has one per node: opened at first use, closed together.
#pragma once

#include "port/CancellationOff.hpp"

#include <atomic>
#include <memory>
#include <mutex>

namespace dorn::host {

/// Has @p close called by closeNode(), the latest first.
void atNodeClose(void (*close)());

/// Closes everything that this process has opened on its node, so that the environment is read anew at the next use.
/// For tests, between two nodes, with no EU running; not needed at the end of a process.
void closeNode();

/// The process's one @p T for its node. `T` is constructed by get() at the first call; a constructor that throws is
/// tried again at the next.
template <class T>
class PerNode {
public:
    static T& get()
    {
        T* instance = s_instance.load(std::memory_order_acquire);
        return instance ? *instance : open();
    }

    /// The instance if it is open, else null; never opens it.
    static T* ifOpen() { return s_instance.load(std::memory_order_acquire); }

private:
    static T& open()
    {
        const CancellationOff off; // opening is no wait, and closes descriptors in destructors
        const std::lock_guard lock(s_mutex);
        T* instance = s_instance.load(std::memory_order_acquire);
        if (!instance) {
            instance = std::make_unique<T>().release();
            s_instance.store(instance, std::memory_order_release);
            atNodeClose([] { delete s_instance.exchange(nullptr, std::memory_order_acq_rel); });
        }
        return *instance;
    }

    static inline std::atomic<T*> s_instance{nullptr};
    static inline std::mutex s_mutex;
};

} // namespace dorn::host
