// SPDX-License-Identifier: MIT
#include "syscom/MessageTap.hpp"

#include "node/PerNode.hpp"
#include "port/Clock.hpp"
#include "syscom/Post.hpp"

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace dorn::host {
namespace {

const std::atomic<std::uint32_t> nobody{0};

std::unique_ptr<Message, MessageDeleter> recordOf(const Message& message, TAaSysComCpid watcher, std::uint32_t lost)
{
    constexpr std::size_t room = AA_SYS_COM_MAX_PAYLOAD - sizeof(TapRecord);
    const std::size_t shown = std::min<std::size_t>(message.header.payloadSize, room);
    const TAaSysComSicad address = AaSysComSicadGet(watcher, AaSysComGetOwnNid());
    std::unique_ptr<Message, MessageDeleter> copy(
        Message::create(MessageTap::recordId, static_cast<std::uint16_t>(sizeof(TapRecord) + shown), 0, address));
    if (copy) {
        const TapRecord record{Clock::get().wall().count(), getpid(), lost, message.header};
        std::memcpy(copy->payload(), &record, sizeof record);
        std::memcpy(copy->payload() + sizeof record, message.frame().data() + sizeof(FrameHeader), shown);
    }
    return copy;
}

} // namespace

struct MessageTap::Control {
    SharedStoreHeader header;
    std::atomic<std::uint32_t> active;                            ///< watchers in use
    std::array<std::atomic<std::uint32_t>, maxWatchers> watchers; ///< their cpids; 0 is a free place
};

constinit std::atomic<const std::atomic<std::uint32_t>*> MessageTap::s_active{&nobody};

MessageTap::MessageTap() : m_store(PerNode<RunDirectory>::get(), "tap", {0x50415444, 1, sizeof(Control)})
{
    s_active.store(&control().active, std::memory_order_release);
}

MessageTap::~MessageTap()
{
    s_active.store(&nobody, std::memory_order_release);
}

MessageTap::Control& MessageTap::control() const
{
    return *reinterpret_cast<Control*>(m_store.data());
}

bool MessageTap::addWatcher(TAaSysComCpid cpid)
{
    for (std::atomic<std::uint32_t>& place : control().watchers) {
        std::uint32_t free = 0;
        if (place.compare_exchange_strong(free, cpid)) {
            control().active.fetch_add(1);
            return true;
        }
    }
    return false;
}

void MessageTap::removeWatcher(TAaSysComCpid cpid)
{
    for (std::atomic<std::uint32_t>& place : control().watchers) {
        std::uint32_t expected = cpid;
        if (place.compare_exchange_strong(expected, 0)) {
            control().active.fetch_sub(1);
        }
    }
}

void MessageTap::show(const Message& message)
{
    for (std::size_t place = 0; place < maxWatchers; ++place) {
        const auto watcher = static_cast<TAaSysComCpid>(control().watchers[place].load(std::memory_order_relaxed));
        if (watcher == 0 || message.header.id == recordId) {
            continue;
        }
        const std::uint32_t lost = m_lost[place].exchange(0, std::memory_order_relaxed);
        auto record = recordOf(message, watcher, lost);
        const EAaSysComStatus status = record ? post(record, Nanoseconds(0)) : EAaSysComStatus_NoResources;
        if (status == EAaSysComStatus_NoReceiver) {
            removeWatcher(watcher);
        } else if (status != EAaSysComStatus_Ok) {
            m_lost[place].fetch_add(lost + 1, std::memory_order_relaxed);
        }
    }
}

} // namespace dorn::host
