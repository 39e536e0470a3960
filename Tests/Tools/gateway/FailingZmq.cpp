// SPDX-License-Identifier: MIT
#include "FailingZmq.hpp"

#include "NoMemory.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <optional>
#include <zmq.h>

namespace dorn::gateway::test {
namespace {

constexpr int nobody = -1;
constexpr std::size_t noSize = ~std::size_t{0};

/// What a call is to do.
struct Order {
    std::atomic<int> type{nobody};
    std::atomic<int> error{0};
};
std::array<Order, 2> orders;
std::atomic<std::size_t> lastSize{noSize}; ///< of a message that is to be the last there is memory for
std::atomic<int> greatestSockets{0};
thread_local std::optional<NoMemory> noMemory;

Order& orderFor(ZmqCall call)
{
    return orders[static_cast<std::size_t>(call)];
}

int typeOf(void* socket)
{
    int type = nobody;
    std::size_t size = sizeof type;
    zmq_getsockopt(socket, ZMQ_TYPE, &type, &size);
    return type;
}

bool isToFail(ZmqCall call, void* socket)
{
    Order& order = orderFor(call);
    int type = order.type.load();
    if (type == nobody || typeOf(socket) != type || !order.type.compare_exchange_strong(type, nobody)) {
        return false;
    }
    errno = order.error.load();
    return true;
}

bool isLast(void* socket, int received)
{
    std::size_t size = lastSize.load();
    return received > 0 && static_cast<std::size_t>(received) >= size && typeOf(socket) == ZMQ_ROUTER &&
           lastSize.compare_exchange_strong(size, noSize);
}

} // namespace

extern "C" {
int __real_zmq_msg_recv(zmq_msg_t* message, void* socket, int flags);
int __real_zmq_msg_send(zmq_msg_t* message, void* socket, int flags);
int __real_zmq_ctx_set(void* context, int option, int value);

int __wrap_zmq_msg_recv(zmq_msg_t* message, void* socket, int flags)
{
    noMemory.reset();
    if (isToFail(ZmqCall::Receive, socket)) {
        return -1;
    }
    const int received = __real_zmq_msg_recv(message, socket, flags);
    if (isLast(socket, received)) {
        noMemory.emplace();
    }
    return received;
}

int __wrap_zmq_msg_send(zmq_msg_t* message, void* socket, int flags)
{
    return isToFail(ZmqCall::Send, socket) ? -1 : __real_zmq_msg_send(message, socket, flags);
}

int __wrap_zmq_ctx_set(void* context, int option, int value)
{
    if (option == ZMQ_MAX_SOCKETS) {
        greatestSockets.store(value);
    }
    return __real_zmq_ctx_set(context, option, value);
}
}

FailNextZmq::FailNextZmq(ZmqCall call, int type, int error) : m_call(call)
{
    orderFor(call).error.store(error);
    orderFor(call).type.store(type);
}

FailNextZmq::~FailNextZmq()
{
    orderFor(m_call).type.store(nobody);
}

bool FailNextZmq::hasFailed() const
{
    return orderFor(m_call).type.load() == nobody;
}

NoMemoryAfterReceive::NoMemoryAfterReceive(std::size_t size)
{
    lastSize.store(size);
}

NoMemoryAfterReceive::~NoMemoryAfterReceive()
{
    lastSize.store(noSize);
}

bool NoMemoryAfterReceive::hasBegun() const
{
    return lastSize.load() == noSize;
}

int greatestNumberOfSockets()
{
    return greatestSockets.load();
}

} // namespace dorn::gateway::test
