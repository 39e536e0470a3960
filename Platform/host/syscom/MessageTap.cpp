// SPDX-License-Identifier: MIT
#include "syscom/MessageTap.hpp"

#include "node/PerNode.hpp"
#include "port/Clock.hpp"
#include "syscom/CpidRegistry.hpp"
#include "syscom/Post.hpp"

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace dorn::host {
namespace {

const std::atomic<std::uint32_t> nobody{0};

TAaSysComCpid cpidOf(std::uint32_t watcher)
{
    return static_cast<TAaSysComCpid>(watcher & 0xFFFFU);
}

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

// Processes may end at any point of what follows; each step leaves the table right, or with a place that somebody will
// find to be abandoned.
struct MessageTap::Control {
    SharedStoreHeader header;
    std::atomic<std::uint32_t> active; ///< a bit for each place in use
    /// A watcher is the use count of its place << 16 | its cpid; a free place has no cpid. No two watchers are the
    /// same.
    std::array<std::atomic<std::uint32_t>, maxWatchers> watchers;
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
    const auto isOfSameCpid = [cpid](TAaSysComCpid other) { return other == cpid; };
    const auto isFree = [](TAaSysComCpid other) { return other == 0; };
    const auto isAbandoned = [](TAaSysComCpid other) {
        return localHolder(other) == 0 && PerNode<CpidRegistry>::get().foreignHolder(other) == 0;
    };
    return takePlace(cpid, isOfSameCpid) || takePlace(cpid, isFree) || takePlace(cpid, isAbandoned);
}

/// Takes the first place whose present cpid suits.
template <class Suits>
bool MessageTap::takePlace(TAaSysComCpid cpid, const Suits& suits)
{
    for (std::size_t place = 0; place < maxWatchers; ++place) {
        std::uint32_t present = control().watchers[place].load();
        const std::uint32_t watcher = (present & ~0xFFFFU) + 0x10000U + cpid;
        if (suits(cpidOf(present)) && control().watchers[place].compare_exchange_strong(present, watcher)) {
            control().active.fetch_or(1U << place);
            return true;
        }
    }
    return false;
}

void MessageTap::removeWatcher(TAaSysComCpid cpid)
{
    for (std::size_t place = 0; place < maxWatchers; ++place) {
        const std::uint32_t watcher = control().watchers[place].load();
        if (cpidOf(watcher) == cpid) {
            freePlace(place, watcher);
        }
    }
}

/// Frees a place unless it is another watcher's by now.
void MessageTap::freePlace(std::size_t place, std::uint32_t watcher)
{
    if (control().watchers[place].compare_exchange_strong(watcher, watcher & ~0xFFFFU)) {
        noteFree(place);
    }
}

void MessageTap::noteFree(std::size_t place)
{
    control().active.fetch_and(~(1U << place));
    if (cpidOf(control().watchers[place].load()) != 0) {
        control().active.fetch_or(1U << place); // it has just been taken
    }
}

/// How many messages of this process the watcher has missed; from here on none.
std::uint32_t MessageTap::takeLost(std::size_t place, std::uint32_t watcher)
{
    const std::uint64_t lost = m_lost[place].exchange(0, std::memory_order_relaxed);
    return lost >> 32 == watcher ? static_cast<std::uint32_t>(lost) : 0;
}

void MessageTap::addLost(std::size_t place, std::uint32_t watcher, std::uint32_t count)
{
    std::uint64_t present = m_lost[place].load(std::memory_order_relaxed);
    std::uint64_t sum = 0;
    do {
        const std::uint64_t before = present >> 32 == watcher ? present & 0xFFFFFFFFU : 0;
        sum = std::uint64_t{watcher} << 32 | (before + count);
    } while (!m_lost[place].compare_exchange_weak(present, sum, std::memory_order_relaxed));
}

void MessageTap::show(const Message& message)
{
    for (std::size_t place = 0; place < maxWatchers && message.header.id != recordId; ++place) {
        const std::uint32_t watcher = control().watchers[place].load(std::memory_order_relaxed);
        if (cpidOf(watcher) == 0) {
            if ((control().active.load(std::memory_order_relaxed) & 1U << place) != 0) {
                noteFree(place); // whoever freed it did not get so far
            }
            continue;
        }
        const std::uint32_t lost = takeLost(place, watcher);
        auto record = recordOf(message, cpidOf(watcher), lost);
        const EAaSysComStatus status = record ? post(record, Nanoseconds(0)) : EAaSysComStatus_NoResources;
        if (status == EAaSysComStatus_NoReceiver) {
            freePlace(place, watcher);
        } else if (status != EAaSysComStatus_Ok) {
            addLost(place, watcher, lost + 1);
        }
    }
}

} // namespace dorn::host
