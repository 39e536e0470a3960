// SPDX-License-Identifier: MIT
/// @file ForwardingBenchmark.cpp
/// Time-outs and forwarded requests with 10,000 of them open, next to Boost.Asio's timers and a bare list.
#include "AaConfigRad.h"
#include "AaSysCom.h"
#include "AaTimer.h"
#include "RandomNumbers.hpp"
#include "RunOnNode.hpp"
#include "init/ApiStartup.h"
#include "reqforwarding/Req.hpp"
#include "reqforwarding/ReqHandler.hpp"

#include <benchmark/benchmark.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <list>
#include <memory>
#include <vector>

namespace {

using namespace vel::hwapi::common;

constexpr std::int64_t open = 10'000;
constexpr std::int64_t hour = 3'600'000'000; // micro-seconds
constexpr std::int64_t batch = 1'000;

/// Delays in no order, so that a new time-out falls among those that are armed.
class Delays {
public:
    std::int64_t next() { return hour + std::int64_t{m_numbers.next()}; }

private:
    dorn::benchmarks::RandomNumbers m_numbers;
};

const void* identityOf(std::int64_t number)
{
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(number)); // NOLINT: never followed
}

class PendingTimers {
public:
    PendingTimers()
    {
        for (std::int64_t number = 0; number < open; ++number) {
            m_timers.push_back(AaTimerArm(m_delays.next(), identityOf(number)));
        }
    }
    ~PendingTimers()
    {
        for (const TAaTimerId timer : m_timers) {
            AaTimerCancel(timer);
        }
    }
    PendingTimers(const PendingTimers&) = delete;
    PendingTimers& operator=(const PendingTimers&) = delete;

    std::int64_t nextDelay() { return m_delays.next(); }

private:
    Delays m_delays;
    std::vector<TAaTimerId> m_timers;
};

void armAndCancel(benchmark::State& state)
{
    PendingTimers pending;
    for (auto _ : state) {
        AaTimerCancel(AaTimerArm(pending.nextDelay(), identityOf(1)));
    }
}
BENCHMARK(armAndCancel)->Name("timeout/armCancel/dorn");

/// A batch that is due at once, and every message received.
void armAndReceive(benchmark::State& state)
{
    const PendingTimers pending;
    for (auto _ : state) {
        for (std::int64_t number = 0; number < batch; ++number) {
            AaTimerArm(0, identityOf(number));
        }
        for (std::int64_t number = 0; number < batch; ++number) {
            void* message = AaSysComMsgReceive(AA_WAIT_FOREVER);
            AaSysComMsgDestroy(&message);
        }
    }
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(armAndReceive)->Name("timeout/expire/dorn")->UseRealTime();

/// What many programs use for the same purpose.
class AsioTimers {
public:
    AsioTimers()
    {
        for (std::int64_t number = 0; number < open; ++number) {
            arm(m_delays.next());
        }
    }

    std::int64_t nextDelay() { return m_delays.next(); }
    boost::asio::io_context& context() { return m_context; }

    boost::asio::steady_timer& arm(std::int64_t delay)
    {
        m_timers.push_back(std::make_unique<boost::asio::steady_timer>(m_context, std::chrono::microseconds(delay)));
        m_timers.back()->async_wait([this](const boost::system::error_code& error) { m_expired += error ? 0 : 1; });
        return *m_timers.back();
    }
    /// Ends the latest timer; its handler is run, as every handler has to be.
    void cancelLatest()
    {
        m_timers.pop_back();
        m_context.poll();
    }
    void dropLatest(std::int64_t count) { m_timers.resize(m_timers.size() - static_cast<std::size_t>(count)); }
    std::int64_t expired() const { return m_expired; }

private:
    boost::asio::io_context m_context;
    Delays m_delays;
    std::vector<std::unique_ptr<boost::asio::steady_timer>> m_timers;
    std::int64_t m_expired = 0;
};

void armAndCancelInAsio(benchmark::State& state)
{
    AsioTimers timers;
    for (auto _ : state) {
        timers.arm(timers.nextDelay());
        timers.cancelLatest();
    }
}
BENCHMARK(armAndCancelInAsio)->Name("timeout/armCancel/asio");

void armAndRunInAsio(benchmark::State& state)
{
    AsioTimers timers;
    for (auto _ : state) {
        const std::int64_t until = timers.expired() + batch;
        for (std::int64_t number = 0; number < batch; ++number) {
            timers.arm(0);
        }
        while (timers.expired() < until) {
            timers.context().run_one();
        }
        timers.dropLatest(batch);
    }
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(armAndRunInAsio)->Name("timeout/expire/asio")->UseRealTime();

/// A request that knows its reply by a number, which stands at the beginning of the message.
class BenchReq : public Req {
public:
    BenchReq(ReqHandler& owner, std::uint64_t number) : Req(owner, ERadHwapi_GENIO, nullptr), m_number(number) {}
    void HandleReq() override {}
    void HandleForwardedReqResp(void* msgHandle) override
    {
        if (*static_cast<const std::uint64_t*>(msgHandle) == m_number) {
            m_owner.ReqCompleted(this);
        }
    }
    void HandleForwardedReqTimeout() override { m_owner.ReqCompleted(this); }

private:
    const std::uint64_t m_number;
};

class BenchReqs : public ReqHandler {
public:
    BenchReqs() : ReqHandler(ERadHwapi_GENIO)
    {
        for (std::int64_t count = 0; count < open; ++count) {
            add();
        }
    }
    Req* NewReq(void* /*msgHandle*/) override { return new BenchReq(*this, m_next++); }
    void add() { HandleNewReq(NewReq(nullptr)); }
    Req* youngest() const { return m_reqs.back(); }
    std::uint64_t oldestNumber() const { return m_next - open; }
    std::uint64_t youngestNumber() const { return m_next - 1; }

private:
    std::uint64_t m_next = 1;
};

void replyToTheOldest(benchmark::State& state)
{
    BenchReqs reqs;
    for (auto _ : state) {
        std::uint64_t number = reqs.oldestNumber();
        reqs.HandleForwardedReqResp(&number);
        reqs.add();
    }
}
BENCHMARK(replyToTheOldest)->Name("request/replyOldest/dorn");

void replyToTheYoungest(benchmark::State& state)
{
    BenchReqs reqs;
    for (auto _ : state) {
        std::uint64_t number = reqs.youngestNumber();
        reqs.HandleForwardedReqResp(&number);
        reqs.add();
    }
}
BENCHMARK(replyToTheYoungest)->Name("request/replyYoungest/dorn");

void replyToNobody(benchmark::State& state)
{
    BenchReqs reqs;
    std::uint64_t number = 0;
    for (auto _ : state) {
        reqs.HandleForwardedReqResp(&number);
    }
}
BENCHMARK(replyToNobody)->Name("request/replyNobody/dorn");

void timeOutOfTheYoungest(benchmark::State& state)
{
    BenchReqs reqs;
    void* message = AaSysComMsgCreate(API_FORWARD_TIMEOUT_OUT, sizeof(void*), 0);
    for (auto _ : state) {
        const Req* const req = reqs.youngest();
        std::memcpy(AaSysComMsgGetPayload(message), &req, sizeof req);
        reqs.HandleForwardedReqTimeout(message);
        reqs.add();
    }
    AaSysComMsgDestroy(&message);
}
BENCHMARK(timeOutOfTheYoungest)->Name("request/timeoutYoungest/dorn");

/// The least that any walk through the requests has to do.
class BareReq {
public:
    explicit BareReq(std::uint64_t number) : m_number(number) {}
    virtual ~BareReq() = default;
    BareReq(const BareReq&) = delete;
    BareReq& operator=(const BareReq&) = delete;
    virtual bool takes(const void* reply) const { return *static_cast<const std::uint64_t*>(reply) == m_number; }

private:
    const std::uint64_t m_number;
};

class BareReqs {
public:
    BareReqs()
    {
        for (std::int64_t count = 0; count < open; ++count) {
            add();
        }
    }
    ~BareReqs()
    {
        for (const BareReq* req : m_reqs) {
            delete req;
        }
    }
    BareReqs(const BareReqs&) = delete;
    BareReqs& operator=(const BareReqs&) = delete;

    void add() { m_reqs.push_back(new BareReq(m_next++)); }
    void reply(const std::uint64_t& number)
    {
        for (auto place = m_reqs.begin(); place != m_reqs.end(); ++place) {
            if ((*place)->takes(&number)) {
                delete *place;
                m_reqs.erase(place);
                return;
            }
        }
    }
    std::uint64_t oldestNumber() const { return m_next - open; }
    std::uint64_t youngestNumber() const { return m_next - 1; }

private:
    std::list<BareReq*> m_reqs;
    std::uint64_t m_next = 1;
};

void replyToTheOldestInABareList(benchmark::State& state)
{
    BareReqs reqs;
    for (auto _ : state) {
        reqs.reply(reqs.oldestNumber());
        reqs.add();
    }
}
BENCHMARK(replyToTheOldestInABareList)->Name("request/replyOldest/bareList");

void replyToTheYoungestInABareList(benchmark::State& state)
{
    BareReqs reqs;
    for (auto _ : state) {
        reqs.reply(reqs.youngestNumber());
        reqs.add();
    }
}
BENCHMARK(replyToTheYoungestInABareList)->Name("request/replyYoungest/bareList");

void replyToNobodyInABareList(benchmark::State& state)
{
    BareReqs reqs;
    for (auto _ : state) {
        reqs.reply(0);
    }
}
BENCHMARK(replyToNobodyInABareList)->Name("request/replyNobody/bareList");

} // namespace

int main(int argc, char** argv)
{
    // Lines go where a service's usually do.
    return dorn::benchmarks::runOnNode(argc, argv, {.log = ""}, [](const auto&) {
        AaConfigRadRegisterDomain(RAD_HWAPI_DOMAIN, "HWA", ApiStartupInitializeRadParameters);
    });
}
