// SPDX-License-Identifier: MIT
#include "gateway/Status.hpp"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <system_error>

namespace dorn::gateway {
namespace {

using namespace std::literals;

constexpr std::array stateNames{"waiting"sv, "resolving"sv, "connecting"sv, "up"sv};
constexpr std::array faultNames{"none"sv, "host unknown"sv, "unreachable"sv, "key refused"sv, "other version"sv,
                                "cut"sv,  "silent"sv,       "refused"sv,     "garbage"sv,     "wrong node"sv};
constexpr std::array dropNames{"queue full"sv,    "peer restarted"sv,   "unconfirmed"sv, "no receiver"sv,
                               "receiver full"sv, "sender restarted"sv, "forged"sv};
constexpr std::array refusalNames{"unknown key"sv, "handshake"sv, "other version"sv,
                                  "garbage"sv,     "stale"sv,     "local frame"sv};
static_assert(stateNames.size() == linkStateCount && faultNames.size() == linkFaultCount);
static_assert(dropNames.size() == dropReasonCount && refusalNames.size() == refusalReasonCount);

constexpr std::string_view heading = "gateway-status-1";
constexpr std::string_view ending = "end"; // a text that has been cut does not have it

template <class Names, class Value>
std::string_view nameAt(const Names& names, Value value)
{
    const auto index = static_cast<std::size_t>(value);
    return index < names.size() ? names[index] : "?"sv;
}

/// Words with blanks between them, a line for the gateway and for each link.
class Writer {
public:
    explicit Writer(std::string& text) : m_text(text) {}

    Writer& operator<<(std::string_view word)
    {
        if (!m_text.empty() && m_text.back() != '\n') {
            m_text += ' ';
        }
        m_text += word;
        return *this;
    }
    template <std::integral Number>
    Writer& operator<<(Number number)
    {
        return *this << std::to_string(number);
    }
    template <class Reason, std::size_t count>
    Writer& operator<<(const Counts<Reason, count>& counts)
    {
        for (const std::uint64_t one : counts.all()) {
            *this << one;
        }
        return *this;
    }
    void endLine() { m_text += '\n'; }

private:
    std::string& m_text;
};

class Reader {
public:
    explicit Reader(std::string_view text) : m_text(text) {}

    bool isGood() const { return m_isGood; }
    bool isAtEnd() const { return m_text.empty(); }

    std::string_view word()
    {
        const std::size_t length = std::min(m_text.find_first_of(" \n"), m_text.size());
        const std::string_view found = m_text.substr(0, length);
        m_text.remove_prefix(std::min(length + 1, m_text.size()));
        m_isGood = m_isGood && !found.empty();
        return found;
    }
    template <std::integral Number>
    Reader& operator>>(Number& number)
    {
        const std::string_view text = word();
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        m_isGood = m_isGood && error == std::errc() && end == text.data() + text.size();
        return *this;
    }
    Reader& operator>>(Nanoseconds& time)
    {
        Nanoseconds::rep count = 0;
        *this >> count;
        time = Nanoseconds(count);
        return *this;
    }
    template <class Reason, std::size_t count>
    Reader& operator>>(Counts<Reason, count>& counts)
    {
        for (std::size_t index = 0; index < count; ++index) {
            *this >> counts[static_cast<Reason>(index)];
        }
        return *this;
    }
    /// An enumerator below @p count.
    template <class Value>
    void value(Value& to, std::size_t count)
    {
        unsigned number = 0;
        *this >> number;
        m_isGood = m_isGood && number < count;
        to = m_isGood ? static_cast<Value>(number) : Value{};
    }

private:
    std::string_view m_text;
    bool m_isGood = true;
};

void writeLink(Writer& writer, const LinkStatus& link)
{
    writer << link.node << link.host << link.port << static_cast<unsigned>(link.state)
           << static_cast<unsigned>(link.fault) << link.inState.count()
           << (link.roundTrip ? link.roundTrip->count() : Nanoseconds::rep{-1}) << link.ups << link.peerEpoch
           << link.accepted << link.confirmed << link.waiting << link.waitingBytes << link.received << link.delivered
           << link.pending << link.dropped;
    writer.endLine();
}

LinkStatus readLink(Reader& reader)
{
    LinkStatus link;
    reader >> link.node;
    link.host = reader.word();
    reader >> link.port;
    reader.value(link.state, linkStateCount);
    reader.value(link.fault, linkFaultCount);
    Nanoseconds roundTrip{0};
    reader >> link.inState >> roundTrip >> link.ups >> link.peerEpoch >> link.accepted >> link.confirmed >>
        link.waiting >> link.waitingBytes >> link.received >> link.delivered >> link.pending >> link.dropped;
    if (roundTrip >= Nanoseconds(0)) {
        link.roundTrip = roundTrip;
    }
    return link;
}

} // namespace

std::string_view nameOf(LinkState state)
{
    return nameAt(stateNames, state);
}

std::string_view nameOf(LinkFault fault)
{
    return nameAt(faultNames, fault);
}

std::string_view nameOf(DropReason reason)
{
    return nameAt(dropNames, reason);
}

std::string_view nameOf(RefusalReason reason)
{
    return nameAt(refusalNames, reason);
}

std::string statusText(const GatewayStatus& status)
{
    std::string text;
    Writer writer(text);
    writer << heading << status.node << status.pid << status.age.count() << status.epoch << status.refused
           << status.links.size();
    writer.endLine();
    for (const LinkStatus& link : status.links) {
        writeLink(writer, link);
    }
    writer << ending;
    writer.endLine();
    return text;
}

std::optional<GatewayStatus> parseStatus(std::string_view text)
{
    Reader reader(text);
    if (reader.word() != heading) {
        return std::nullopt;
    }
    GatewayStatus status;
    std::size_t links = 0;
    reader >> status.node >> status.pid >> status.age >> status.epoch >> status.refused >> links;
    for (std::size_t count = 0; count < links && reader.isGood(); ++count) {
        status.links.push_back(readLink(reader));
    }
    const bool isWhole = reader.word() == ending && reader.isAtEnd() && reader.isGood();
    return isWhole ? std::optional(status) : std::nullopt;
}

} // namespace dorn::gateway
