// SPDX-License-Identifier: MIT
#include "Soak.hpp"

#include "CutProxy.hpp"
#include "TestNet.hpp"

#include <atomic>
#include <map>
#include <random>
#include <thread>
#include <vector>

namespace dorn::gateway::test {
namespace {

constexpr TAaSysComCpid cpid = 0x0300;
/// So many messages of a pair may be on their way: more than a link holds when it is cut, less than a receiver keeps.
constexpr std::uint32_t aheadOfReceiver = 50;

/// The receiver of a node. Messages of each sender must come in their order, each once.
class SoakReceiver {
public:
    SoakReceiver(const host::RunDirectory& directory, std::size_t nodes) : m_receiver(directory, cpid), m_next(nodes) {}

    void run(std::uint64_t expected)
    {
        while (m_arrived < expected) {
            const std::optional<Arrived> one = m_receiver.take();
            if (!one) {
                return; // it does not come any more
            }
            const std::size_t from = (one->header.sender >> 16) - nodeId(0);
            m_outOfOrder += one->number() == m_next[from].load() ? 0 : 1;
            m_next[from].store(one->number() + 1);
            ++m_arrived;
        }
    }

    /// What is there though nothing more was expected.
    void takeSurplus()
    {
        while (m_receiver.take(std::chrono::milliseconds(0))) {
            ++m_arrived;
        }
    }

    std::uint32_t nextOf(std::size_t from) const { return m_next[from].load(); }
    std::uint64_t arrived() const { return m_arrived; }
    std::uint64_t outOfOrder() const { return m_outOfOrder; }

private:
    CpidReceiver m_receiver;
    std::vector<std::atomic<std::uint32_t>> m_next;
    std::uint64_t m_arrived = 0;
    std::uint64_t m_outOfOrder = 0;
};

/// The nodes, every link through a proxy.
class SoakNet {
public:
    explicit SoakNet(const SoakPlan& plan) : m_plan(plan), m_net(plan.nodes), m_proxy(m_net.host())
    {
        for (std::size_t from = 0; from < plan.nodes; ++from) {
            for (std::size_t to = 0; to < plan.nodes; ++to) {
                if (from != to) {
                    m_net.seenBy(from, to).port = TestNet::freePort();
                    m_proxy.add(m_net.seenBy(from, to).port, m_net.rows()[to].port);
                }
            }
        }
        m_net.startAll();
        for (std::size_t place = 0; place < plan.nodes; ++place) {
            m_receivers.push_back(std::make_unique<SoakReceiver>(m_net.directory(place), plan.nodes));
        }
    }

    SoakResult run()
    {
        SoakResult result;
        if (!m_net.waitForLinks()) {
            result.complaint = "not all links came up";
            return result;
        }
        std::vector<std::thread> threads;
        for (const auto& receiver : m_receivers) {
            threads.emplace_back([&] { receiver->run(std::uint64_t{m_plan.messagesPerPair} * (m_plan.nodes - 1)); });
        }
        std::thread cutter([this] { cutLinks(); });
        sendAll(result);
        cutter.join();
        for (std::thread& thread : threads) {
            thread.join();
        }
        takeCounts(result);
        return result;
    }

private:
    void cutLinks()
    {
        std::mt19937 random(m_plan.seed);
        const std::size_t routes = m_plan.nodes * (m_plan.nodes - 1);
        for (std::uint32_t count = 0; count < m_plan.cuts; ++count) {
            // All through the traffic, not before or after it.
            const std::uint64_t begin = std::uint64_t{count} * m_plan.messagesPerPair / m_plan.cuts;
            [[maybe_unused]] const bool hasBegun = waitUntil([&] { return m_progress.load() >= begin; });
            const std::size_t route = random() % routes;
            m_proxy.cut(route);
            std::this_thread::sleep_for(std::chrono::milliseconds(random() % 20)); // chance, nothing waits for it
            m_proxy.restore(route);
        }
    }

    void sendAll(SoakResult& result)
    {
        std::map<std::pair<std::size_t, std::size_t>, NodeSender> senders;
        for (std::size_t from = 0; from < m_plan.nodes; ++from) {
            for (std::size_t to = 0; to < m_plan.nodes; ++to) {
                if (from != to) {
                    senders.try_emplace({from, to}, m_net.directory(from), nodeId(to));
                }
            }
        }
        std::mt19937 random(m_plan.seed);
        for (std::uint32_t number = 0; number < m_plan.messagesPerPair; ++number) {
            m_progress.store(number);
            for (const auto& [pair, sender] : senders) {
                const std::size_t from = pair.first;
                const std::size_t to = pair.second;
                const SoakReceiver& receiver = *m_receivers[to];
                const auto isNear = [&receiver, from, number] {
                    return number < receiver.nextOf(from) + aheadOfReceiver;
                };
                if (!isNear() && !waitUntil(isNear)) {
                    result.complaint = "messages stopped arriving";
                    return;
                }
                result.sent += sender.send(addressAt(from, cpid), addressAt(to, cpid), number, 4 + random() % 500);
            }
        }
    }

    void takeCounts(SoakResult& result)
    {
        for (std::size_t from = 0; from < m_plan.nodes; ++from) {
            for (std::size_t to = 0; to < m_plan.nodes; ++to) {
                if (from != to && !m_net.waitForConfirmed(from, to)) {
                    result.complaint = "messages stayed unconfirmed";
                }
            }
        }
        for (std::size_t place = 0; place < m_plan.nodes; ++place) {
            for (const LinkStatus& link : m_net.status(place).links) {
                result.confirmed += link.confirmed;
                result.received += link.received;
                result.delivered += link.delivered;
                result.dropped += link.dropped.sum();
                result.ups += link.ups;
            }
            m_receivers[place]->takeSurplus();
            result.arrived += m_receivers[place]->arrived();
            result.outOfOrder += m_receivers[place]->outOfOrder();
        }
    }

    const SoakPlan m_plan;
    TestNet m_net;
    CutProxy m_proxy;
    std::vector<std::unique_ptr<SoakReceiver>> m_receivers;
    std::atomic<std::uint32_t> m_progress{0}; ///< message of each pair that is being sent
};

} // namespace

bool SoakResult::isGood() const
{
    return complaint.empty() && sent == arrived && sent == confirmed && sent == received && sent == delivered &&
           dropped == 0 && outOfOrder == 0;
}

std::string SoakResult::text() const
{
    return "sent " + std::to_string(sent) + ", arrived " + std::to_string(arrived) + ", confirmed " +
           std::to_string(confirmed) + ", received " + std::to_string(received) + ", delivered " +
           std::to_string(delivered) + ", dropped " + std::to_string(dropped) + ", out of order " +
           std::to_string(outOfOrder) + ", links up " + std::to_string(ups) + " times" +
           (complaint.empty() ? "" : "; " + complaint);
}

SoakResult soak(const SoakPlan& plan)
{
    return SoakNet(plan).run();
}

} // namespace dorn::gateway::test
