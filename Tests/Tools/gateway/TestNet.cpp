// SPDX-License-Identifier: MIT
#include "TestNet.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace dorn::gateway::test {
namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// Each process has an address of its own on the loopback interface, so that tests that run at once do not meet.
std::string ownLoopbackAddress()
{
    const auto process = static_cast<unsigned>(getpid());
    return "127." + std::to_string(64 + process / 62500 % 64) + "." + std::to_string(1 + process / 250 % 250) + "." +
           std::to_string(1 + process % 250);
}

std::string newDirectory()
{
    std::string path = std::filesystem::temp_directory_path().string() + "/dorn-net-XXXXXX";
    if (!mkdtemp(path.data())) {
        fail("mkdtemp");
    }
    return path;
}

} // namespace

GatewayOptions quickOptions()
{
    GatewayOptions options;
    options.heartbeat = std::chrono::milliseconds(50);
    options.silence = std::chrono::milliseconds(3000);
    options.attempt = std::chrono::milliseconds(3000);
    options.firstBackOff = std::chrono::milliseconds(5);
    options.greatestBackOff = std::chrono::milliseconds(100);
    return options;
}

RunningGateway::RunningGateway(const host::RunDirectory& directory, const Table& table, const KeyPair& keys,
                               const GatewayOptions& options)
    : m_gateway(directory, table, keys, options), m_thread([this] { m_gateway.run(); })
{
}

RunningGateway::~RunningGateway()
{
    m_gateway.stop();
    m_thread.join();
}

TestNet::TestNet(std::size_t count, const GatewayOptions& options)
    : m_runPath(newDirectory()), m_host(ownLoopbackAddress()), m_options(options)
{
    m_options.listenAddress = m_host;
    for (std::size_t place = 0; place < count; ++place) {
        m_directories.push_back(
            std::make_unique<host::RunDirectory>(m_runPath, static_cast<std::uint16_t>(nodeId(place))));
        m_directories.back()->makeSubdirectory(host::socketFolder);
        m_keys.push_back(makeKeyPair());
        m_rows.push_back({nodeId(place), m_host, freePort(), m_keys.back().publicKey});
    }
    m_seen.assign(count, m_rows);
}

TestNet::~TestNet()
{
    m_gateways.clear();
    m_directories.clear();
    std::error_code ignored;
    std::filesystem::remove_all(m_runPath, ignored);
}

std::uint16_t TestNet::freePort()
{
    static std::atomic<std::uint16_t> next{20000};
    return next.fetch_add(1);
}

void TestNet::start(std::size_t place)
{
    start(place, m_options);
}

void TestNet::start(std::size_t place, const GatewayOptions& options)
{
    GatewayOptions own = options;
    own.listenAddress = m_host;
    m_gateways[place] =
        std::make_unique<RunningGateway>(*m_directories[place], Table(m_seen[place]), m_keys[place], own);
}

void TestNet::startAll()
{
    for (std::size_t place = 0; place < size(); ++place) {
        start(place);
    }
}

GatewayStatus TestNet::status(std::size_t place) const
{
    const FetchedStatus fetched = fetchStatus(directory(place), std::chrono::seconds(20));
    if (!fetched.status) {
        throw std::runtime_error("the gateway does not tell its status");
    }
    return *fetched.status;
}

LinkStatus TestNet::link(std::size_t from, std::size_t to) const
{
    for (const LinkStatus& link : status(from).links) {
        if (link.node == nodeId(to)) {
            return link;
        }
    }
    throw std::runtime_error("there is no such link");
}

bool TestNet::waitForLinks() const
{
    return waitUntil([this] {
        return std::all_of(m_gateways.begin(), m_gateways.end(), [this](const auto& gateway) {
            const GatewayStatus all = status(gateway.first);
            return std::all_of(all.links.begin(), all.links.end(), [this](const LinkStatus& link) {
                return link.state == LinkState::Up || !m_gateways.contains(link.node - nodeId(0));
            });
        });
    });
}

bool TestNet::waitForConfirmed(std::size_t from, std::size_t to) const
{
    return waitUntil([&] { return link(from, to).waiting == 0; });
}

std::uint32_t Arrived::number() const
{
    std::uint32_t number = 0;
    std::memcpy(&number, payload.data(), std::min(sizeof number, payload.size()));
    return number;
}

NodeSender::NodeSender(const host::RunDirectory& directory, TAaSysComNid node) : m_socket(host::UnixSocket::make())
{
    const sockaddr_un address = host::socketAddress(directory, host::nodeSocketName(node));
    if (connect(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        fail("connect");
    }
}

bool NodeSender::sendBytes(std::span<const std::byte> bytes) const
{
    return ::send(m_socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

bool NodeSender::send(TAaSysComSicad sender, TAaSysComSicad receiver, std::uint32_t number, std::size_t size,
                      std::uint32_t id) const
{
    using host::FrameHeader;
    const FrameHeader header{FrameHeader::magicNumber,
                             FrameHeader::currentVersion,
                             static_cast<std::uint16_t>(size),
                             id,
                             sender,
                             receiver,
                             0};
    std::vector<std::byte> bytes(sizeof header + size, std::byte{0x5A});
    std::memcpy(bytes.data(), &header, sizeof header);
    std::memcpy(bytes.data() + sizeof header, &number, std::min(size, sizeof number));
    return sendBytes(bytes);
}

CpidReceiver::CpidReceiver(const host::RunDirectory& directory, TAaSysComCpid cpid)
    : m_directory(directory), m_name(host::socketName(cpid)), m_listener(host::UnixSocket::make())
{
    unlinkat(directory.descriptor(), m_name.c_str(), 0);
    const sockaddr_un address = host::socketAddress(directory, m_name);
    if (bind(m_listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(m_listener.get(), SOMAXCONN) != 0) {
        fail("listen");
    }
}

CpidReceiver::~CpidReceiver()
{
    unlinkat(m_directory.descriptor(), m_name.c_str(), 0);
}

bool CpidReceiver::acceptSome()
{
    pollfd entry{m_listener.get(), POLLIN, 0};
    bool hasAny = false;
    while (::poll(&entry, 1, 0) > 0) {
        m_connections.emplace_back(accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        hasAny = true;
    }
    return hasAny;
}

std::optional<Arrived> CpidReceiver::take(std::chrono::milliseconds patience)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    static thread_local std::vector<std::byte> buffer(host::maxFrameSize);
    for (;;) {
        if (!m_arrived.empty()) {
            Arrived first = std::move(m_arrived.front());
            m_arrived.pop_front();
            return first;
        }
        acceptSome();
        std::vector<pollfd> entries{{m_listener.get(), POLLIN, 0}};
        for (const host::UnixSocket& connection : m_connections) {
            const ssize_t size = recv(connection.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
            if (size > 0) {
                arrive(std::span(buffer).first(static_cast<std::size_t>(size)));
                break;
            }
            if (size < 0) {
                entries.push_back({connection.get(), POLLIN, 0});
            }
        }
        if (!m_arrived.empty()) {
            continue;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() < 0 || ::poll(entries.data(), entries.size(), static_cast<int>(left.count())) <= 0) {
            return std::nullopt;
        }
    }
}

void CpidReceiver::arrive(std::span<const std::byte> packet)
{
    std::span<const std::byte> frames = host::isPack(packet) ? host::framesOf(packet) : packet;
    while (!frames.empty()) {
        const std::span<const std::byte> frame = host::takeFrame(frames);
        if (frame.size() < sizeof(host::FrameHeader)) {
            throw std::runtime_error("a packet that ends within a frame");
        }
        Arrived& arrived = m_arrived.emplace_back();
        std::memcpy(&arrived.header, frame.data(), sizeof arrived.header);
        arrived.payload.assign(frame.begin() + sizeof arrived.header, frame.end());
    }
}

std::vector<Arrived> CpidReceiver::takeAll(std::size_t count)
{
    std::vector<Arrived> all;
    while (all.size() < count) {
        std::optional<Arrived> one = take();
        if (!one) {
            break;
        }
        all.push_back(std::move(*one));
    }
    return all;
}

} // namespace dorn::gateway::test
