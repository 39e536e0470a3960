// SPDX-License-Identifier: MIT
#include "Soak.hpp"

#include "NodeTest.hpp"

namespace dorn::gateway::test {
namespace {

class SoakTest : public testkit::NodeTest {};

TEST_F(SoakTest, SixteenNodesLoseAndRepeatNothingWhileLinksAreCut)
{
    const SoakPlan plan{.nodes = 16, .messagesPerPair = 60, .cuts = 60, .seed = 1};

    const SoakResult result = soak(plan);

    EXPECT_TRUE(result.isGood()) << result.text();
    EXPECT_EQ(result.sent, 16U * 15U * 60U);
    EXPECT_GT(result.ups, 16U * 15U) << "no cut has hit";
}

} // namespace
} // namespace dorn::gateway::test
