// SPDX-License-Identifier: MIT
#include "gateway/Receivers.hpp"

#include "AaSysLog.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <new>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <system_error>

namespace dorn::gateway {
namespace {

using host::FrameHeader;
using host::UnixSocket;

constexpr int sendBufferBytes = 1 << 20;
constexpr std::chrono::milliseconds retryTime{10};
/// A receiver that comes back while it is sent to is connected to again, so often.
constexpr int greatestAttempts = 4;

TAaSysComCpid cpidOf(const Record& record)
{
    return static_cast<TAaSysComCpid>(record.header.receiver & 0xFFFFU);
}

FrameHeader frameHeader(const RecordHeader& header)
{
    return {FrameHeader::magicNumber,
            FrameHeader::currentVersion,
            header.payloadSize,
            header.id,
            header.sender,
            header.receiver,
            0};
}

bool isShortage(int error)
{
    return error == EAGAIN || error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

} // namespace

Receivers::Receivers(const host::RunDirectory& directory, const GatewayOptions& options, host::WaitSet& waitSet)
    : m_directory(directory), m_options(options), m_waitSet(waitSet), m_poll(epoll_create1(EPOLL_CLOEXEC))
{
    if (!m_poll) {
        throw std::system_error(errno, std::generic_category(), "epoll_create1");
    }
    m_waitSet.add(m_poll.get(), *this);
}

Receivers::~Receivers()
{
    const std::lock_guard lock(m_waitSet.mutex());
    m_waitSet.remove(m_poll.get());
}

void Receivers::deliver(DeliveryAccount& account, std::span<const Record> records)
{
    while (!records.empty()) {
        const TAaSysComCpid cpid = cpidOf(records.front());
        std::size_t length = 1;
        while (length < records.size() && cpidOf(records[length]) == cpid) {
            ++length;
        }
        deliverRun(account, cpid, records.first(length));
        records = records.subspan(length);
    }
}

void Receivers::deliverRun(DeliveryAccount& account, TAaSysComCpid cpid, std::span<const Record> run)
{
    if (m_nobody.contains(cpid)) {
        noteNobody(account, run.front(), run.size());
        return;
    }
    Receiver* const receiver = receiverOf(cpid);
    if (!receiver) {
        account.dropped[DropReason::ReceiverFull] += run.size(); // without a line, which would need memory too
        return;
    }
    std::size_t sent = 0;
    const Outcome outcome = receiver->kept.empty() ? send(cpid, *receiver, run, sent) : Outcome::Full;
    account.delivered += sent;
    if (outcome == Outcome::Full) {
        keep(account, cpid, *receiver, run.subspan(sent));
    } else if (outcome == Outcome::Gone) {
        m_receivers.erase(cpid);
        noteNobody(account, run[sent], run.size() - sent);
    }
}

/// @return null when there is no memory for it.
Receivers::Receiver* Receivers::receiverOf(TAaSysComCpid cpid)
{
    try {
        return &m_receivers[cpid];
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

bool Receivers::find(TAaSysComCpid cpid, sockaddr_un& address) const
{
    try {
        address = host::socketAddress(m_directory, host::socketName(cpid));
        return true;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return false;
    }
}

Receivers::Outcome Receivers::connect(TAaSysComCpid cpid, Receiver& receiver)
{
    UnixSocket socket = UnixSocket::make(SOCK_NONBLOCK);
    sockaddr_un address{};
    if (!socket || !find(cpid, address) ||
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return isShortage(errno) ? Outcome::Full : Outcome::Gone;
    }
    setsockopt(socket.get(), SOL_SOCKET, SO_SNDBUF, &sendBufferBytes, sizeof sendBufferBytes);
    epoll_event event{EPOLLRDHUP, {.u64 = cpid}};
    if (epoll_ctl(m_poll.get(), EPOLL_CTL_ADD, socket.get(), &event) != 0) {
        return Outcome::Full;
    }
    receiver.socket = std::move(socket);
    return Outcome::Done;
}

Receivers::Outcome Receivers::send(TAaSysComCpid cpid, Receiver& receiver, std::span<const Record> run,
                                   std::size_t& sent)
{
    sent = 0;
    for (int attempt = 0; sent < run.size();) {
        if (!receiver.socket) {
            // One that takes connections and ends them is there, but short of descriptors: it is left some time.
            const Outcome outcome = attempt++ < greatestAttempts ? connect(cpid, receiver) : Outcome::Full;
            if (outcome != Outcome::Done) {
                return outcome;
            }
        }
        pack(run.subspan(sent));
        const std::span<const std::byte> packet = m_pack.packet();
        if (::send(receiver.socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0) {
            sent += m_pack.count();
        } else if (isShortage(errno)) {
            return Outcome::Full;
        } else if (errno != EINTR) {
            loseConnection(receiver);
        }
    }
    return Outcome::Done;
}

/// Packs as many of a run as one packet takes.
void Receivers::pack(std::span<const Record> run)
{
    m_pack.clear();
    for (const Record& record : run) {
        if (!m_pack.add(frameHeader(record.header), record.payload)) {
            return;
        }
    }
}

void Receivers::loseConnection(Receiver& receiver)
{
    receiver.socket = UnixSocket(-1);
    receiver.isWatchedForRoom = false;
}

void Receivers::keep(DeliveryAccount& account, TAaSysComCpid cpid, Receiver& receiver, std::span<const Record> run)
{
    for (const Record& record : run) {
        try {
            keepOne(account, cpid, receiver, record);
        } catch (const std::bad_alloc&) {
            ++account.dropped[DropReason::ReceiverFull]; // without a line, which would need memory too
        }
    }
    watch(cpid, receiver);
}

void Receivers::keepOne(DeliveryAccount& account, TAaSysComCpid cpid, Receiver& receiver, const Record& record)
{
    const FrameHeader header = frameHeader(record.header);
    std::vector<std::byte> frame(sizeof header + record.payload.size());
    std::memcpy(frame.data(), &header, sizeof header);
    std::copy(record.payload.begin(), record.payload.end(), frame.begin() + sizeof header);
    const std::size_t bytes = receiver.kept.emplace_back(Kept{&account, std::move(frame)}).bytes();
    receiver.keptBytes += bytes;
    m_keptBytes += bytes;
    ++account.pending;
    makeRoom(cpid, receiver);
}

void Receivers::makeRoom(TAaSysComCpid cpid, Receiver& receiver)
{
    while (isTooFull(receiver)) {
        drop(cpid, receiver);
    }
    while (m_keptBytes > m_options.allReceiversBytes) {
        const auto most =
            std::max_element(m_receivers.begin(), m_receivers.end(), [](const auto& left, const auto& right) {
                return left.second.keptBytes < right.second.keptBytes;
            });
        drop(most->first, most->second);
    }
}

bool Receivers::isTooFull(const Receiver& receiver) const
{
    return receiver.kept.size() > m_options.receiverMessages || receiver.keptBytes > m_options.receiverBytes;
}

/// Drops the oldest for want of room, and says so once until all has been read.
void Receivers::drop(TAaSysComCpid cpid, Receiver& receiver)
{
    dropOldest(receiver, DropReason::ReceiverFull);
    if (!receiver.isOverflowing) {
        receiver.isOverflowing = true;
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                      "cpid 0x%04X does not read what comes from other nodes: the oldest of %zu messages are dropped",
                      cpid, receiver.kept.size() + 1);
    }
}

void Receivers::dropOldest(Receiver& receiver, DropReason reason)
{
    const Kept& oldest = receiver.kept.front();
    --oldest.account->pending;
    ++oldest.account->dropped[reason];
    receiver.keptBytes -= oldest.bytes();
    m_keptBytes -= oldest.bytes();
    receiver.kept.pop_front();
}

/// Has the kernel, or time, tell when it is worth trying again.
void Receivers::watch(TAaSysComCpid cpid, Receiver& receiver)
{
    if (!receiver.socket) {
        m_retryAt = std::min(m_retryAt, host::Clock::get().monotonic() + retryTime);
        return;
    }
    const bool isToBe = !receiver.kept.empty();
    if (receiver.isWatchedForRoom != isToBe) {
        epoll_event event{EPOLLRDHUP | (isToBe ? EPOLLOUT : 0U), {.u64 = cpid}};
        epoll_ctl(m_poll.get(), EPOLL_CTL_MOD, receiver.socket.get(), &event);
        receiver.isWatchedForRoom = isToBe;
    }
}

/// Some receivers have room again, or are gone.
void Receivers::onReadable()
{
    std::array<epoll_event, 16> events{};
    const int count = epoll_wait(m_poll.get(), events.data(), static_cast<int>(events.size()), 0);
    for (int index = 0; index < count; ++index) {
        const epoll_event& event = events[static_cast<std::size_t>(index)];
        const auto cpid = static_cast<TAaSysComCpid>(event.data.u64);
        const auto found = m_receivers.find(cpid);
        if (found == m_receivers.end()) {
            continue;
        }
        if ((event.events & (EPOLLHUP | EPOLLRDHUP | EPOLLERR)) != 0) {
            loseConnection(found->second);
        }
        flush(cpid, found->second);
    }
}

void Receivers::tick(Nanoseconds now)
{
    m_nobody.clear();
    if (now < m_retryAt) {
        return;
    }
    m_retryAt = host::noDeadline;
    for (auto next = m_receivers.begin(); next != m_receivers.end();) {
        const auto entry = next++; // it may be forgotten
        if (!entry->second.socket) {
            flush(entry->first, entry->second);
        }
    }
}

/// Hands over what is kept as far as it is taken, and forgets a receiver that is gone.
void Receivers::flush(TAaSysComCpid cpid, Receiver& receiver)
{
    const Outcome outcome = sendKept(cpid, receiver);
    if (outcome == Outcome::Gone) {
        while (!receiver.kept.empty()) {
            dropOldest(receiver, DropReason::NoReceiver);
        }
    }
    if (outcome != Outcome::Full && (outcome == Outcome::Gone || !receiver.socket)) {
        m_receivers.erase(cpid);
        return;
    }
    receiver.isOverflowing = receiver.isOverflowing && !receiver.kept.empty();
    watch(cpid, receiver);
}

Receivers::Outcome Receivers::sendKept(TAaSysComCpid cpid, Receiver& receiver)
{
    while (!receiver.kept.empty()) {
        const Kept& oldest = receiver.kept.front();
        FrameHeader header{};
        std::memcpy(&header, oldest.frame.data(), sizeof header);
        const Record record{{header.id, header.sender, header.receiver, header.payloadSize},
                            std::span(oldest.frame).subspan(sizeof header)};
        std::size_t sent = 0;
        const Outcome outcome = send(cpid, receiver, {&record, 1}, sent);
        if (outcome != Outcome::Done) {
            return outcome;
        }
        ++oldest.account->delivered;
        --oldest.account->pending;
        receiver.keptBytes -= oldest.bytes();
        m_keptBytes -= oldest.bytes();
        receiver.kept.pop_front();
    }
    return Outcome::Done;
}

void Receivers::flushAll()
{
    for (auto next = m_receivers.begin(); next != m_receivers.end();) {
        const auto entry = next++; // it may be forgotten
        flush(entry->first, entry->second);
    }
}

void Receivers::dropKept(DeliveryAccount& account)
{
    for (auto& entry : m_receivers) {
        Receiver& receiver = entry.second;
        std::erase_if(receiver.kept, [&](const Kept& kept) {
            if (kept.account != &account) {
                return false;
            }
            --account.pending;
            ++account.dropped[DropReason::SenderRestarted];
            receiver.keptBytes -= kept.bytes();
            m_keptBytes -= kept.bytes();
            return true;
        });
    }
}

/// Logs the first and then ever more rarely.
void Receivers::noteNobody(DeliveryAccount& account, const Record& record, std::size_t count)
{
    std::uint64_t& dropped = account.dropped[DropReason::NoReceiver];
    const bool isToBeSaid = std::bit_width(dropped) != std::bit_width(dropped + count);
    dropped += count;
    if (isToBeSaid) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                      "Dropped what node 0x%04X sent to cpid 0x%04X: nobody holds it (id=0x%04X sender=0x%08X; %llu "
                      "dropped so far)",
                      account.node, cpidOf(record), record.header.id, record.header.sender,
                      static_cast<unsigned long long>(dropped));
    }
    try {
        m_nobody.insert(cpidOf(record));
    } catch (const std::bad_alloc&) {
        return; // it is looked for again
    }
}

} // namespace dorn::gateway
