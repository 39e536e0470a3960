// SPDX-License-Identifier: MIT
/// @file NodeMessages.cpp
/// Registers the platform's messages: between two nodes through two gateways, to another process of the own node, and
/// the way that a message between nodes takes, put together from its bare parts.
#include "gateway/TwoNodes.hpp"
#include "gateway/ZeroMqTcp.hpp"
#include "messages/BetweenProcesses.hpp"
#include "messages/EuEnd.hpp"

namespace {

using namespace dorn::benchmarks;

/// An EU whose partner is on the other node.
class NodeEnd : public EuEnd {
public:
    explicit NodeEnd(std::size_t size) : NodeEnd(TwoNodes::get(), size) {}
    NodeEnd(const std::string& address, std::size_t size) : EuEnd(atOther(address), size) {}

private:
    NodeEnd(const TwoNodes&, std::size_t size) : EuEnd(size) {} // once both nodes are there

    static const std::string& atOther(const std::string& address)
    {
        TwoNodes::goToOther();
        return address;
    }
};

/// Fails the measurement when a message has been lost: a rate would be too good then.
void requireNoLoss(benchmark::State& state, std::uint64_t before)
{
    if (TwoNodes::get().dropped() != before) {
        state.SkipWithError("messages were dropped");
    }
}

const PartnerKind nodeKind("nodes", [](const std::string& address, std::size_t size) {
    NodeEnd end(address, size);
    serve(end);
});

std::size_t sizeOf(const benchmark::State& state)
{
    return static_cast<std::size_t>(state.range(0));
}

void roundTripBetweenNodes(benchmark::State& state)
{
    const std::uint64_t before = TwoNodes::get().dropped();
    ProcessPair<NodeEnd> pair("nodes", sizeOf(state));
    measureRoundTrips(state, pair.end());
    requireNoLoss(state, before);
}

void oneWayBetweenNodes(benchmark::State& state)
{
    const std::uint64_t before = TwoNodes::get().dropped();
    ProcessPair<NodeEnd> pair("nodes", sizeOf(state));
    measureRate(state, pair.end(), Partner::Process);
    requireNoLoss(state, before);
}

/// A round trip over bare ZeroMQ with CURVE and one over each of two local hops.
void roundTripOfParts(benchmark::State& state)
{
    ProcessPair<EuEnd> local("local", sizeOf(state));
    ProcessPair<ZeroMqEnd<ZeroMqCurve>> remote("zeromqCurve", sizeOf(state));
    for (auto _ : state) {
        makeRoundTrip(local.end());
        makeRoundTrip(remote.end());
        makeRoundTrip(local.end());
    }
}

bool registerNodes()
{
    using benchmark::RegisterBenchmark;
    RegisterBenchmark("processes/roundTrip/nodes", roundTripBetweenNodes)->Arg(64)->Arg(4096)->UseRealTime();
    RegisterBenchmark("processes/oneWay/nodes", oneWayBetweenNodes)->Arg(64)->Arg(4096)->UseRealTime();
    RegisterBenchmark("processes/roundTrip/parts", roundTripOfParts)->Arg(64)->Arg(4096)->UseRealTime();
    return true;
}

[[maybe_unused]] const bool isRegistered = registerBetweenProcesses<EuEnd>("local") && registerNodes();

} // namespace
