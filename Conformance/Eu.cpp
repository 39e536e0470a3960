// SPDX-License-Identifier: MIT
#include "Eu.hpp"

#include "Check.hpp"
#include "Finding.hpp"

#include <atomic>
#include <exception>

namespace dorn::conformance {
namespace {

constexpr uint32_t stackSize = 256 * 1024;
constexpr uint32_t priority = 10;

} // namespace

struct Eu::Body {
    std::function<void()> function;
    std::promise<pthread_t> thread;
    std::promise<void> end;
    std::shared_future<pthread_t> itsThread = thread.get_future().share();
    std::shared_future<void> itsEnd = end.get_future().share();
    std::exception_ptr failure;
};

void* Eu::run(void* argument)
{
    const std::shared_ptr<Body> body = **static_cast<std::shared_ptr<Body>**>(argument);
    delete *static_cast<std::shared_ptr<Body>**>(argument);
    /// Also reached by an EU that is cancelled.
    struct AtEnd {
        ~AtEnd() { body.end.set_value(); }
        Body& body;
    } const atEnd{*body};
    body->thread.set_value(pthread_self());
    try {
        body->function();
    } catch (const std::exception&) {
        body->failure = std::current_exception();
    }
    return nullptr;
}

Eu::Eu(std::function<void()> body, const std::string& name) : m_body(std::make_shared<Body>())
{
    m_body->function = std::move(body);
    auto own = std::make_unique<std::shared_ptr<Body>>(m_body);
    std::shared_ptr<Body>* const argument = own.get();
    const int32_t status =
        AaSysComEuCreateAndStart(&m_id, name.c_str(), run, stackSize, priority, &argument, sizeof argument);
    if (status == 0) {
        own.release(); // the EU's
    } else {
        m_body->end.set_value();
    }
    expectEqual(status, 0, "AaSysComEuCreateAndStart()");
}

Eu::~Eu()
{
    if (m_body->itsEnd.wait_for(2 * bound()) != std::future_status::ready) {
        giveUp("an EU of the rule does not end");
    }
}

pthread_t Eu::thread() const
{
    expect(m_body->itsThread.wait_for(bound()) == std::future_status::ready, "a new EU does not run");
    return m_body->itsThread.get();
}

void Eu::join()
{
    expect(m_body->itsEnd.wait_for(bound()) == std::future_status::ready, "an EU of the rule does not end");
    if (m_body->failure) {
        std::rethrow_exception(m_body->failure);
    }
}

bool Eu::hasEnded() const
{
    return m_body->itsEnd.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

void expectUnwinding(const std::function<void()>& wait)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    skip("sanitizers lose track of a thread that is cancelled while it waits");
#endif
    Signal begun;
    std::atomic<bool> isUnwound{false};
    struct Unwound {
        ~Unwound() { flag.store(true); }
        std::atomic<bool>& flag;
    };
    Eu waiter([&] {
        const Unwound unwound{isUnwound};
        begun.raise();
        wait();
    });
    begun.await("a new EU does not run");
    pthread_cancel(waiter.thread());
    waiter.join();
    expect(isUnwound.load(), "the destructors of a cancelled EU have not run");
}

void Signal::raise()
{
    m_promise.set_value();
}

void Signal::await(const std::string& what) const
{
    expect(m_future.wait_for(bound()) == std::future_status::ready, what);
}

bool Signal::isRaised() const
{
    return m_future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

} // namespace dorn::conformance
