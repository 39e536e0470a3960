// SPDX-License-Identifier: MIT
/// @file Traffic.hpp
/// What every way of passing messages is measured with: the same loops on both ends, whatever lies between them.
///
/// An end is one side of a connection of two. It has
/// - `void send(const Parcel&)`: takes a message from where that way of passing messages takes it, writes the whole
///   payload and gives the message away;
/// - `Parcel receive()`: waits for a message, reads the parcel at the beginning of its payload and gives the memory
///   back.
#pragma once

#include "messages/AllocationCount.hpp"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstring>

namespace dorn::benchmarks {

/// What a message asks of the partner.
enum class Ask : std::uint32_t { Swallow, Answer, CountAllocations, Stop };

/// The beginning of every payload.
struct Parcel {
    Ask ask;
    std::uint32_t allocations = 0; ///< in an answer: what the partner has counted since it was asked to
};

/// Messages between two answers where the rate is measured; few enough to fit every queue at once.
constexpr std::int64_t batchSize = 10'000;

/// Writes a whole payload.
inline void writeParcel(void* payload, std::size_t size, const Parcel& parcel)
{
    std::memset(payload, 0x5A, size);
    std::memcpy(payload, &parcel, sizeof parcel);
}

inline Parcel readParcel(const void* payload)
{
    Parcel parcel{};
    std::memcpy(&parcel, payload, sizeof parcel);
    return parcel;
}

/// The partner's side: says that it is there, then does what it is asked, until it is asked to stop.
template <class End>
void serve(End& end)
{
    end.send({Ask::Answer});
    for (;;) {
        switch (end.receive().ask) {
        case Ask::Swallow:
            break;
        case Ask::Answer:
            end.send({Ask::Answer, stopCountingAllocations()});
            break;
        case Ask::CountAllocations:
            startCountingAllocations();
            end.send({Ask::Answer});
            break;
        case Ask::Stop:
            return;
        }
    }
}

/// A message there and one back.
template <class End>
void makeRoundTrip(End& end)
{
    end.send({Ask::Answer});
    end.receive();
}

/// A batch of messages there, the last of which is answered.
template <class End>
Parcel sendBatch(End& end)
{
    for (std::int64_t count = 1; count < batchSize; ++count) {
        end.send({Ask::Swallow});
    }
    end.send({Ask::Answer});
    return end.receive();
}

/// Where the partner is.
enum class Partner { Thread, Process };

/// Allocations for a message, sender's and receiver's together, once everything has been used before.
template <class End>
double allocationsPerMessage(End& end, Partner partner)
{
    end.send({Ask::CountAllocations});
    end.receive();
    startCountingAllocations();
    const Parcel answer = sendBatch(end);
    const std::uint32_t own = stopCountingAllocations();
    const std::uint32_t all = partner == Partner::Thread ? answer.allocations : own + answer.allocations;
    return static_cast<double>(all) / static_cast<double>(batchSize);
}

template <class End>
void measureRoundTrips(benchmark::State& state, End& end)
{
    for (auto _ : state) {
        makeRoundTrip(end);
    }
}

template <class End>
void measureRate(benchmark::State& state, End& end, Partner partner)
{
    for (auto _ : state) {
        sendBatch(end);
    }
    state.SetItemsProcessed(state.iterations() * batchSize);
    state.counters["allocations_per_message"] = allocationsPerMessage(end, partner);
}

} // namespace dorn::benchmarks
