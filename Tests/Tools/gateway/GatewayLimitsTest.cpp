// SPDX-License-Identifier: MIT
// Gateways whose processes are short of something.
#include "TwoNodesTest.hpp"

#include <filesystem>
#include <gtest/gtest.h>

namespace dorn::gateway::test {
namespace {

using host::test::Answer;
using host::test::Order;

/// Command that runs another one with so many open files at most, and has it log to standard error.
std::vector<std::string> withOpenFiles(int limit)
{
    return {"/bin/sh", "-c", "ulimit -n " + std::to_string(limit) + " && export DORN_LOG=stderr && exec \"$0\" \"$@\""};
}

class GatewayLimitsTest : public TwoNodesTest {};

TEST_F(GatewayLimitsTest, TooFewOpenFilesAreToldWithNumbers)
{
    const auto gateway = startGateway(ownNode, withOpenFiles(79));

    EXPECT_EQ(gateway->waitForEnd(), 1);
    EXPECT_EQ(gateway->standardError(), "a table of 2 nodes needs 80 open files at least, and this process may have "
                                        "79; raise its limit (ulimit -n, LimitNOFILE)\n");
}

TEST_F(GatewayLimitsTest, LeastOpenFilesSufficeWithAWord)
{
    const auto own = startReadyGateway(ownNode, withOpenFiles(80));
    const auto other = startReadyGateway(otherNode, withOpenFiles(80));
    const TAaSysComSicad peer = startPeer();

    ASSERT_EQ(tell(peer, {.order = Order::Register, .cpid = 0x0123}), EAaSysComStatus_Ok);

    TAaSysComSicad sender = 0;
    const std::optional<Answer> got = answer(sender);
    ASSERT_TRUE(got) << own->standardError() << other->standardError();
    EXPECT_EQ(got->first, 0x0123U);
    const std::string line =
        "The gateway may have 80 open files, and a table of 2 nodes can need 656: connections beyond "
        "are not taken";
    EXPECT_TRUE(waitUntil([&] { return own->standardError().find(line) != std::string::npos; }))
        << own->standardError();
}

TEST_F(GatewayLimitsTest, WithoutItsRunDirectoryTheProcessEndsWithStatus1)
{
    const auto gateway = startReadyGateway(otherNode);
    const std::string directory = m_node.runDirectory() + "/0f02";
    std::filesystem::rename(directory, directory + "-moved");

    EXPECT_EQ(gateway->waitForEnd(), 1);
    EXPECT_EQ(gateway->standardError(),
              "the run directory '" + directory + "' is gone, and nobody finds this gateway any more\n");
}

} // namespace
} // namespace dorn::gateway::test
