// SPDX-License-Identifier: MIT
/// @file GatewayFrameFuzz.cpp
/// Any bytes as a message from another gateway: what is read from a message makes the same message again, and the
/// records of a parcel fill it exactly.
#include "Require.hpp"
#include "gateway/Frames.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace {

using namespace dorn::gateway;
using dorn::fuzz::require;

/// Makes the message again that was read.
struct Rewrite {
    WireBytes operator()(const Garbage&) const { return {}; }
    WireBytes operator()(const OtherVersion&) const { return {}; }
    WireBytes operator()(const Parcel& parcel) const
    {
        const auto preamble = parcelPreamble(parcel);
        WireBytes bytes(preamble.begin(), preamble.end());
        std::uint32_t count = 0;
        for (std::span<const std::byte> rest = parcel.records; !rest.empty(); ++count) {
            const Record record = takeRecord(rest);
            appendRecord(bytes, record.header, record.payload);
        }
        require(count == parcel.count);
        return bytes;
    }
    template <class Message>
    WireBytes operator()(const Message& message) const
    {
        return wireBytes(message);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto* const begin = reinterpret_cast<const std::byte*>(data);
    const std::vector<std::byte> bytes(begin, begin + size); // so that its bounds are exact
    const WireMessage message = readWire(bytes);
    if (std::holds_alternative<Garbage>(message)) {
        return 0;
    }
    if (const auto* const other = std::get_if<OtherVersion>(&message)) {
        require(other->version != wireVersion);
        return 0;
    }
    require(std::ranges::equal(std::visit(Rewrite{}, message), bytes));
    return 0;
}
