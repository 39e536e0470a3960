// SPDX-License-Identifier: MIT
#include "ServiceUnderTest.hpp"

#include "RadWait.hpp"
#include "Service.hpp"
#include "seam/OwnMessages.hpp"
#include "seam/RealSeam.hpp"
#include "seam/ShutdownHandler.hpp"

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace dorn::testkit {
namespace {

using vel::hwapi::common::MsgDelegateBase;
using vel::hwapi::common::Service;

/// What a service tells only its subclasses.
struct Inside : Service {
    static TAaConfigRadId stateId(const Service& service) { return service.*&Inside::m_uRadStateId; }
    static TAaSysComCpid wantedCpid(const Service& service) { return service.*&Inside::m_id; }
};

} // namespace

/// Counts the barrier messages that have gone through the service's loop.
class ServiceUnderTest::Barrier {
public:
    /// The service owns it; it may outlive the ServiceUnderTest.
    class Delegate : public MsgDelegateBase {
    public:
        explicit Delegate(std::shared_ptr<Barrier> barrier)
            : MsgDelegateBase(serviceBarrierId), m_barrier(std::move(barrier))
        {
        }
        void HandleMsg(void* /*message*/) override { m_barrier->pass(); }

    private:
        const std::shared_ptr<Barrier> m_barrier;
    };

    /// @return false when @p number barriers have not passed within @p bound.
    bool waitFor(unsigned number, Bound bound)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, bound, [&] { return m_passed >= number; });
    }
    unsigned nextNumber() { return ++m_sent; }

private:
    void pass()
    {
        const std::lock_guard lock(m_mutex);
        ++m_passed;
        m_changed.notify_all();
    }

    unsigned m_sent = 0;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    unsigned m_passed = 0;
};

/// The thread in which `Startup` runs, and its result.
class ServiceUnderTest::Run {
public:
    Run(Service& service, std::vector<std::string> commandLine)
        : m_commandLine(std::move(commandLine)), m_thread([this, &service] { run(service); })
    {
    }
    ~Run() { m_thread.join(); }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    bool hasEnded() const
    {
        const std::lock_guard lock(m_mutex);
        return m_hasEnded;
    }

    bool waitForEnd(Bound bound)
    {
        std::unique_lock lock(m_mutex);
        return m_ended.wait_for(lock, bound, [this] { return m_hasEnded; });
    }

    unsigned result() const
    {
        const std::lock_guard lock(m_mutex);
        if (m_exception) {
            std::rethrow_exception(m_exception);
        }
        return m_result;
    }

private:
    void run(Service& service)
    {
        std::vector<char*> argv;
        for (std::string& argument : m_commandLine) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);
        unsigned result = 0;
        std::exception_ptr exception;
        try {
            result = service.Startup(static_cast<int>(m_commandLine.size()), argv.data());
        } catch (...) {
            exception = std::current_exception();
        }
        {
            const std::lock_guard lock(m_mutex);
            m_result = result;
            m_exception = std::move(exception);
            m_hasEnded = true;
            m_ended.notify_all();
        }
        stirRadWaits();
        stirShutdownWait();
    }

    std::vector<std::string> m_commandLine;
    mutable std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_hasEnded = false;
    unsigned m_result = 0;
    std::exception_ptr m_exception;
    std::thread m_thread;
};

ServiceUnderTest::ServiceUnderTest(Service& service, const std::vector<std::string>& arguments)
    : m_service(service), m_barrier(std::make_shared<Barrier>())
{
    service.RemoveMsgDelegate(serviceBarrierId); // an earlier one's
    service.AddMsgDelegate(std::make_unique<Barrier::Delegate>(m_barrier).release());
    std::vector<std::string> commandLine{"Dorn" + service.GetName() + "Exe"};
    commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
    m_run = std::make_unique<Run>(service, std::move(commandLine));
}

ServiceUnderTest::~ServiceUnderTest()
{
    requestShutdown(generousBound, [this] { return m_run->hasEnded(); });
    if (!m_run->waitForEnd(generousBound)) {
        std::fprintf(stderr, "service '%s' does not end\n", m_service.GetName().c_str());
        std::abort();
    }
}

TAaSysComSicad ServiceUnderTest::address() const
{
    return __real_AaSysComSicadGet(Inside::wantedCpid(m_service), __real_AaSysComGetOwnNid());
}

bool ServiceUnderTest::hasEnded() const
{
    return m_run->hasEnded();
}

bool ServiceUnderTest::waitForState(unsigned state, Bound bound)
{
    const TAaConfigRadId id = Inside::stateId(m_service);
    const auto isReached = [&] { return waitForRad(id, state, Bound(0)); };
    return waitForRadChange([&] { return isReached() || hasEnded(); }, bound) && isReached();
}

void ServiceUnderTest::sync(Bound bound)
{
    const unsigned number = m_barrier->nextNumber();
    void* message = __real_AaSysComMsgCreate(serviceBarrierId, 0, address());
    if (__real_AaSysComMsgSendS(&message, 0) != EAaSysComStatus_Ok) {
        throw std::runtime_error("service '" + m_service.GetName() + "' cannot be reached");
    }
    if (!m_barrier->waitFor(number, bound)) {
        throw std::runtime_error("service '" + m_service.GetName() + "' does not handle its messages");
    }
}

unsigned ServiceUnderTest::terminate(Bound bound)
{
    requestShutdown(bound, [this] { return m_run->hasEnded(); });
    return waitForEnd(bound);
}

unsigned ServiceUnderTest::waitForEnd(Bound bound)
{
    if (!m_run->waitForEnd(bound)) {
        throw std::runtime_error("service '" + m_service.GetName() + "' still runs");
    }
    return m_run->result();
}

} // namespace dorn::testkit
