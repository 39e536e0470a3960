// SPDX-License-Identifier: MIT
#include "Mate.hpp"

#include <gmock/gmock.h>
#include <vector>

namespace dorn::examples {
namespace {

using testing::ElementsAre;
using testing::Key;

constexpr std::uint32_t climate = 0x0F020211;
constexpr std::uint32_t led = 0x0F020212;

void missUntilSilent(Mate& mate)
{
    for (std::uint32_t missed = 1; missed < mateHeartbeatsToMiss; ++missed) {
        EXPECT_FALSE(mate.miss());
    }
    EXPECT_TRUE(mate.miss());
}

TEST(MateTest, OneThatNeverSpokeIsNotMissed)
{
    Mate mate(0x0F02);

    for (std::uint32_t missed = 0; missed < 3 * mateHeartbeatsToMiss; ++missed) {
        EXPECT_FALSE(mate.miss());
    }
    EXPECT_FALSE(mate.isHeard());
    EXPECT_FALSE(mate.wasActive());
}

TEST(MateTest, HeartbeatBeginsTheCountAnew)
{
    Mate mate(0x0F02);
    EXPECT_TRUE(mate.hear({EUnitRole_Standby, 0, 0}, {}));
    mate.miss();
    mate.miss();

    EXPECT_FALSE(mate.hear({EUnitRole_Active, 3, 0}, {}));

    missUntilSilent(mate);
    EXPECT_TRUE(mate.wasActive());
    EXPECT_EQ(mate.term(), 3U);
    EXPECT_FALSE(mate.isHeard());
    EXPECT_FALSE(mate.miss()) << "it falls silent once";
    EXPECT_TRUE(mate.hear({EUnitRole_Standby, 3, 0}, {}));
}

TEST(MateTest, ServicesKeepWhatTheySaidUntilTheyRegisterAnewOrGo)
{
    Mate mate(0x0F02);
    const std::vector<SRedundancyRegistration> both{{climate, 4}, {led, 3}};
    mate.hear({EUnitRole_Active, 1, 2}, both);
    mate.services().at(climate).state = 6;
    mate.services().at(led).state = 6;

    mate.hear({EUnitRole_Active, 1, 2}, std::vector<SRedundancyRegistration>{{climate, 4}, {led, 2}});

    EXPECT_EQ(mate.services().at(climate).state, 6U);
    EXPECT_EQ(mate.services().at(led).state, 0U);
    mate.hear({EUnitRole_Active, 1, 1}, std::vector<SRedundancyRegistration>{{climate, 4}});
    EXPECT_THAT(mate.services(), ElementsAre(Key(climate)));
    missUntilSilent(mate);
    EXPECT_TRUE(mate.services().empty());
}

TEST(MateTest, ServiceOfAnotherNodeIsNotTheMates)
{
    Mate mate(0x0F02);

    mate.hear({EUnitRole_Active, 1, 2}, std::vector<SRedundancyRegistration>{{0x0F010211, 4}, {climate, 4}});

    EXPECT_THAT(mate.services(), ElementsAre(Key(climate)));
}

} // namespace
} // namespace dorn::examples
