// SPDX-License-Identifier: MIT
/// @file BareMessages.cpp
/// Registers what two threads of a process can do without any library: wake each other with a futex or an eventfd, and
/// hand heap messages over in a queue with a mutex and a condition variable.
#include "messages/BetweenThreads.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <condition_variable>
#include <deque>
#include <linux/futex.h>
#include <memory>
#include <mutex>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace {

using namespace dorn::benchmarks;

/// Each direction has one word, in which the sender counts; nothing else is carried.
class FutexEnd {
public:
    explicit FutexEnd(std::size_t) : m_words(std::make_shared<Words>()) {}

    FutexEnd partner() const
    {
        FutexEnd other(*this);
        other.m_out = 1;
        return other;
    }

    void send(const Parcel& parcel)
    {
        std::atomic<std::uint32_t>& word = (*m_words)[m_out].value;
        word.store((++m_sent << 2) | static_cast<std::uint32_t>(parcel.ask), std::memory_order_seq_cst);
        syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    }
    Parcel receive()
    {
        std::atomic<std::uint32_t>& word = (*m_words)[1 - m_out].value;
        std::uint32_t value = word.load(std::memory_order_seq_cst);
        while (value == m_received) {
            syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
            value = word.load(std::memory_order_seq_cst);
        }
        m_received = value;
        return {static_cast<Ask>(value & 3U)};
    }

private:
    struct alignas(64) Word {
        std::atomic<std::uint32_t> value{0};
    };
    using Words = std::array<Word, 2>;

    std::shared_ptr<Words> m_words;
    std::size_t m_out = 0;
    std::uint32_t m_sent = 0;
    std::uint32_t m_received = 0;
};

/// Each direction has one eventfd; nothing but the word in it is carried.
class EventFdEnd {
public:
    explicit EventFdEnd(std::size_t) : m_own(std::make_shared<Event>()), m_partners(std::make_shared<Event>()) {}

    EventFdEnd partner() const
    {
        EventFdEnd other(*this);
        std::swap(other.m_own, other.m_partners);
        return other;
    }

    void send(const Parcel& parcel)
    {
        const std::uint64_t value = static_cast<std::uint64_t>(parcel.ask) + 1;
        if (write(m_partners->descriptor, &value, sizeof value) != sizeof value) {
            throw std::system_error(errno, std::generic_category(), "eventfd");
        }
    }
    Parcel receive()
    {
        std::uint64_t value = 0;
        if (read(m_own->descriptor, &value, sizeof value) != sizeof value) {
            throw std::system_error(errno, std::generic_category(), "eventfd");
        }
        return {static_cast<Ask>(value - 1)};
    }

private:
    struct Event {
        const int descriptor = eventfd(0, EFD_CLOEXEC);
        Event() = default;
        ~Event() { close(descriptor); }
        Event(const Event&) = delete;
        Event& operator=(const Event&) = delete;
    };

    std::shared_ptr<Event> m_own;
    std::shared_ptr<Event> m_partners;
};

/// A queue as one would write it: heap messages, one lock, the receiver woken when the queue was empty, and emptied in
/// one go.
class DequeEnd {
public:
    explicit DequeEnd(std::size_t size)
        : m_size(size), m_own(std::make_shared<Queue>()), m_partners(std::make_shared<Queue>())
    {
    }

    DequeEnd partner() const
    {
        DequeEnd other(m_size);
        other.m_own = m_partners;
        other.m_partners = m_own;
        return other;
    }

    void send(const Parcel& parcel)
    {
        auto message = std::make_unique_for_overwrite<std::byte[]>(sizeof(Header) + m_size);
        const Header header{1, static_cast<std::uint32_t>(m_size), 0, 0};
        std::memcpy(message.get(), &header, sizeof header);
        writeParcel(message.get() + sizeof header, m_size, parcel);
        bool wasEmpty = false;
        {
            const std::lock_guard lock(m_partners->mutex);
            wasEmpty = m_partners->messages.empty();
            m_partners->messages.push_back(std::move(message));
        }
        if (wasEmpty) {
            m_partners->isThere.notify_one();
        }
    }
    Parcel receive()
    {
        if (m_taken.empty()) {
            std::unique_lock lock(m_own->mutex);
            m_own->isThere.wait(lock, [this] { return !m_own->messages.empty(); });
            m_taken.swap(m_own->messages);
        }
        const Message message = std::move(m_taken.front());
        m_taken.pop_front();
        return readParcel(message.get() + sizeof(Header));
    }

private:
    struct Header {
        std::uint32_t id;
        std::uint32_t size;
        std::uint32_t sender;
        std::uint32_t receiver;
    };
    using Message = std::unique_ptr<std::byte[]>;
    struct Queue {
        std::mutex mutex;
        std::condition_variable isThere;
        std::deque<Message> messages;
    };

    std::size_t m_size;
    std::shared_ptr<Queue> m_own;
    std::shared_ptr<Queue> m_partners;
    std::deque<Message> m_taken;
};

[[maybe_unused]] const bool isRegistered = registerRoundTripBetweenThreads<FutexEnd>("futex") &&
                                           registerRoundTripBetweenThreads<EventFdEnd>("eventfd") &&
                                           registerRateBetweenThreads<DequeEnd>("deque");

} // namespace
