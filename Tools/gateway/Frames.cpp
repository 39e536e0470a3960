// SPDX-License-Identifier: MIT
#include "gateway/Frames.hpp"

#include <concepts>
#include <cstring>

namespace dorn::gateway {
namespace {

enum class Kind : std::uint16_t {
    Greeting = 1,
    Welcome = 2,
    Parcel = 3,
    Confirmation = 4,
    Ping = 5,
    Pong = 6,
    Refusal = 7
};

/// Puts numbers one after the other.
class Writer {
public:
    explicit Writer(std::byte* to) : m_to(to) {}

    template <std::unsigned_integral Number>
    void put(Number number)
    {
        for (std::size_t index = 0; index < sizeof number; ++index) {
            *m_to++ = static_cast<std::byte>(number >> (8 * index) & 0xFFU);
        }
    }

    void put(const Confirmation& confirmation)
    {
        put(confirmation.session);
        put(confirmation.expected);
    }

    void preamble(Kind kind)
    {
        put(wireMagic);
        put(wireVersion);
        put(static_cast<std::uint16_t>(kind));
    }

private:
    std::byte* m_to;
};

/// Takes numbers off the front; what is not there is 0, and the whole is not good then.
class Reader {
public:
    explicit Reader(std::span<const std::byte> bytes) : m_bytes(bytes) {}

    template <std::unsigned_integral Number>
    Number take()
    {
        Number number = 0;
        if (m_bytes.size() < sizeof number) {
            m_isShort = true;
            m_bytes = {};
            return 0;
        }
        for (std::size_t index = 0; index < sizeof number; ++index) {
            const auto digit = static_cast<Number>(std::to_integer<unsigned>(m_bytes[index]));
            number = static_cast<Number>(number | static_cast<Number>(digit << (8 * index)));
        }
        m_bytes = m_bytes.subspan(sizeof number);
        return number;
    }

    Confirmation takeConfirmation()
    {
        const auto session = take<std::uint64_t>();
        return {session, take<std::uint64_t>()};
    }

    bool isShort() const { return m_isShort; }
    bool isComplete() const { return !m_isShort && m_bytes.empty(); }
    std::span<const std::byte> rest() const { return m_bytes; }

private:
    std::span<const std::byte> m_bytes;
    bool m_isShort = false;
};

constexpr std::size_t preambleSize = 8;

RecordHeader takeHeader(Reader& reader, std::uint16_t& padding)
{
    RecordHeader header{};
    header.id = reader.take<std::uint32_t>();
    header.sender = reader.take<std::uint32_t>();
    header.receiver = reader.take<std::uint32_t>();
    header.payloadSize = reader.take<std::uint16_t>();
    padding = reader.take<std::uint16_t>();
    return header;
}

bool areRecords(std::span<const std::byte> bytes, std::uint32_t count)
{
    std::uint32_t found = 0;
    for (; !bytes.empty(); ++found) {
        Reader reader(bytes);
        std::uint16_t padding = 0;
        const RecordHeader header = takeHeader(reader, padding);
        if (reader.isShort() || padding != 0 || reader.rest().size() < header.payloadSize) {
            return false;
        }
        bytes = reader.rest().subspan(header.payloadSize);
    }
    return found == count && count > 0;
}

WireMessage readParcel(Reader& reader)
{
    Parcel parcel;
    parcel.session = reader.take<std::uint64_t>();
    parcel.number = reader.take<std::uint64_t>();
    parcel.confirmation = reader.takeConfirmation();
    parcel.count = reader.take<std::uint32_t>();
    const auto reserved = reader.take<std::uint32_t>();
    parcel.records = reader.rest();
    const bool isGood = !reader.isShort() && reserved == 0 && areRecords(parcel.records, parcel.count);
    return isGood ? WireMessage(parcel) : WireMessage(Garbage{});
}

WireMessage readKind(Kind kind, Reader& reader)
{
    switch (kind) {
    case Kind::Greeting: {
        Greeting greeting;
        greeting.attempt = reader.take<std::uint64_t>();
        greeting.epoch = reader.take<std::uint64_t>();
        greeting.from = reader.take<std::uint16_t>();
        greeting.to = reader.take<std::uint16_t>();
        return greeting.epoch != 0 ? WireMessage(greeting) : WireMessage(Garbage{});
    }
    case Kind::Welcome: {
        Welcome welcome;
        welcome.attempt = reader.take<std::uint64_t>();
        welcome.epoch = reader.take<std::uint64_t>();
        welcome.session = reader.take<std::uint64_t>();
        welcome.expected = reader.take<std::uint64_t>();
        const bool isGood = welcome.epoch != 0 && welcome.session != 0 && welcome.expected != 0;
        return isGood ? WireMessage(welcome) : WireMessage(Garbage{});
    }
    case Kind::Confirmation:
        return reader.takeConfirmation();
    case Kind::Ping: {
        const auto session = reader.take<std::uint64_t>();
        return Ping{session, reader.take<std::uint64_t>()};
    }
    case Kind::Pong: {
        const Confirmation confirmation = reader.takeConfirmation();
        return Pong{confirmation, reader.take<std::uint64_t>()};
    }
    case Kind::Refusal: {
        const auto what = reader.take<std::uint64_t>();
        return Refusal{static_cast<RefusalCode>(reader.take<std::uint16_t>()), what};
    }
    case Kind::Parcel:
        break;
    }
    return Garbage{};
}

/// Bytes of a message whose numbers take @p size bytes, with its preamble.
WireBytes begun(Kind kind, std::size_t size)
{
    WireBytes bytes(preambleSize + size);
    Writer(bytes.data()).preamble(kind);
    return bytes;
}

} // namespace

WireMessage readWire(std::span<const std::byte> bytes)
{
    Reader reader(bytes);
    const auto magic = reader.take<std::uint32_t>();
    const auto version = reader.take<std::uint16_t>();
    const auto kind = static_cast<Kind>(reader.take<std::uint16_t>());
    if (reader.isShort() || magic != wireMagic) {
        return Garbage{};
    }
    if (version != wireVersion) {
        return OtherVersion{version, kind == Kind::Greeting, reader.take<std::uint64_t>()};
    }
    if (kind == Kind::Parcel) {
        return readParcel(reader);
    }
    const WireMessage message = readKind(kind, reader);
    return reader.isComplete() ? message : WireMessage(Garbage{});
}

WireBytes wireBytes(const Greeting& greeting)
{
    WireBytes bytes = begun(Kind::Greeting, 20);
    Writer writer(bytes.data() + preambleSize);
    writer.put(greeting.attempt);
    writer.put(greeting.epoch);
    writer.put(greeting.from);
    writer.put(greeting.to);
    return bytes;
}

WireBytes wireBytes(const Welcome& welcome)
{
    WireBytes bytes = begun(Kind::Welcome, 32);
    Writer writer(bytes.data() + preambleSize);
    writer.put(welcome.attempt);
    writer.put(welcome.epoch);
    writer.put(welcome.session);
    writer.put(welcome.expected);
    return bytes;
}

WireBytes wireBytes(const Confirmation& confirmation)
{
    WireBytes bytes = begun(Kind::Confirmation, 16);
    Writer(bytes.data() + preambleSize).put(confirmation);
    return bytes;
}

WireBytes wireBytes(const Ping& ping)
{
    WireBytes bytes = begun(Kind::Ping, 16);
    Writer writer(bytes.data() + preambleSize);
    writer.put(ping.session);
    writer.put(ping.stamp);
    return bytes;
}

WireBytes wireBytes(const Pong& pong)
{
    WireBytes bytes = begun(Kind::Pong, 24);
    Writer writer(bytes.data() + preambleSize);
    writer.put(pong.confirmation);
    writer.put(pong.stamp);
    return bytes;
}

WireBytes wireBytes(const Refusal& refusal)
{
    WireBytes bytes = begun(Kind::Refusal, 10);
    Writer writer(bytes.data() + preambleSize);
    writer.put(refusal.what);
    writer.put(static_cast<std::uint16_t>(refusal.code));
    return bytes;
}

std::array<std::byte, parcelPreambleSize> parcelPreamble(const Parcel& parcel)
{
    std::array<std::byte, parcelPreambleSize> bytes{};
    Writer writer(bytes.data());
    writer.preamble(Kind::Parcel);
    writer.put(parcel.session);
    writer.put(parcel.number);
    writer.put(parcel.confirmation);
    writer.put(parcel.count);
    return bytes;
}

void appendRecord(WireBytes& records, const RecordHeader& header, std::span<const std::byte> payload)
{
    std::array<std::byte, RecordHeader::size> bytes{};
    Writer writer(bytes.data());
    writer.put(header.id);
    writer.put(header.sender);
    writer.put(header.receiver);
    writer.put(header.payloadSize);
    records.insert(records.end(), bytes.begin(), bytes.end());
    records.insert(records.end(), payload.begin(), payload.end());
}

Record takeRecord(std::span<const std::byte>& records)
{
    Reader reader(records);
    std::uint16_t padding = 0;
    const RecordHeader header = takeHeader(reader, padding);
    const std::span<const std::byte> payload = reader.rest().first(header.payloadSize);
    records = reader.rest().subspan(header.payloadSize);
    return {header, payload};
}

} // namespace dorn::gateway
