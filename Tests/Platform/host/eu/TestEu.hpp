// SPDX-License-Identifier: MIT
/// @file TestEu.hpp
/// An EU that runs a function of a test.
#pragma once

#include "AaSem.h"
#include "AaSysCom.h"

#include <cstdint>
#include <functional>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace dorn::testkit {

/// Runs while its function does. A thread of its own waits for the EU's end, so that ended() means: with all that it
/// held.
class TestEu {
public:
    explicit TestEu(std::function<void()> body, std::string name = "TestEu")
        : m_body(std::move(body)), m_name(std::move(name)), m_waiter([this] { start(); })
    {
        AaSemTake(m_started, AA_WAIT_FOREVER);
        if (m_id == 0) {
            m_waiter.join();
            AaSemDestroy(&m_started);
            throw std::runtime_error("EU not created");
        }
    }
    ~TestEu()
    {
        wait();
        AaSemDestroy(&m_started);
    }
    TestEu(const TestEu&) = delete;
    TestEu& operator=(const TestEu&) = delete;

    TAaProEuId id() const { return m_id; }
    /// Asks for the thread's cancellation; only while the EU is known to live.
    void cancel() { pthread_cancel(m_thread); }
    /// Waits until the EU has ended.
    void wait()
    {
        if (m_waiter.joinable()) {
            m_waiter.join();
        }
    }

private:
    static void* run(void* args)
    {
        TestEu& self = **static_cast<TestEu**>(args);
        self.m_thread = pthread_self();
        self.m_id = AaProEuCurrent();
        AaSemGive(self.m_started);
        self.m_body();
        return nullptr;
    }

    void start()
    {
        TestEu* const self = this;
        if (AaSysComEuCreateAndStartWithPolicy(nullptr, m_name.c_str(), run, 4096, EAaProEuSchedulingPolicy_NotDefined,
                                               0, &self, sizeof self, 1) != 0) {
            AaSemGive(m_started);
        }
    }

    const std::function<void()> m_body;
    const std::string m_name;
    AaSem* m_started = AaSemCreateC(0);
    TAaProEuId m_id = 0;
    pthread_t m_thread{};
    std::thread m_waiter;
};

} // namespace dorn::testkit
