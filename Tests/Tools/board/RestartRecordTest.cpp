// SPDX-License-Identifier: MIT
#include "board/RestartRecord.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using namespace std::chrono_literals;
using What = RestartDecision::What;

constexpr bool well = true;
constexpr bool badly = false;

RestartDecision restartIn(host::Nanoseconds delay)
{
    return {What::Restart, delay};
}

RestartPolicy policyOf(RestartWhen when)
{
    RestartPolicy policy;
    policy.when = when;
    return policy;
}

TEST(RestartRecordTest, NeverLeavesWhoeverEnds)
{
    RestartRecord record(policyOf(RestartWhen::Never));

    EXPECT_EQ(record.decide(well, 0s).what, What::Leave);
    EXPECT_EQ(record.decide(badly, 0s).what, What::Leave);
}

TEST(RestartRecordTest, OnFailureLeavesWhoEndedWell)
{
    RestartRecord record(policyOf(RestartWhen::OnFailure));

    EXPECT_EQ(record.decide(well, 0s).what, What::Leave);
    EXPECT_EQ(record.decide(badly, 0s).what, What::Restart);
}

TEST(RestartRecordTest, AlwaysRestartsWhoEndedWellToo)
{
    RestartRecord record(policyOf(RestartWhen::Always));

    EXPECT_EQ(record.decide(well, 0s).what, What::Restart);
}

TEST(RestartRecordTest, DelayDoublesUpToTheGreatest)
{
    RestartRecord record({RestartWhen::OnFailure, 200ms, 1s, 100, 60s});

    EXPECT_EQ(record.decide(badly, 0s), restartIn(200ms));
    EXPECT_EQ(record.decide(badly, 1s), restartIn(400ms));
    EXPECT_EQ(record.decide(badly, 2s), restartIn(800ms));
    EXPECT_EQ(record.decide(badly, 3s), restartIn(1s));
    EXPECT_EQ(record.decide(badly, 4s), restartIn(1s));
}

TEST(RestartRecordTest, HugeDelaysDoNotOverflow)
{
    RestartRecord record({RestartWhen::OnFailure, 1s, 1'000'000s, 1'000'000, 1'000'000s});

    for (int restart = 0; restart < 100; ++restart) {
        record.decide(badly, 1s);
    }

    EXPECT_EQ(record.decide(badly, 1s), restartIn(1'000'000s));
}

TEST(RestartRecordTest, GivesUpAtTheLimit)
{
    RestartRecord record({RestartWhen::OnFailure, 1ms, 1ms, 2, 60s});

    EXPECT_EQ(record.decide(badly, 0s).what, What::Restart);
    EXPECT_EQ(record.decide(badly, 1s).what, What::Restart);
    EXPECT_EQ(record.decide(badly, 59s).what, What::GiveUp);
}

TEST(RestartRecordTest, RestartsLongAgoDoNotCount)
{
    RestartRecord record({RestartWhen::OnFailure, 100ms, 1s, 2, 60s});
    record.decide(badly, 0s);
    record.decide(badly, 30s);

    EXPECT_EQ(record.decide(badly, 60s), restartIn(200ms));
    EXPECT_EQ(record.decide(badly, 121s), restartIn(100ms));
}

TEST(RestartRecordTest, LimitOfNoneGivesUpAtOnce)
{
    RestartRecord record({RestartWhen::Always, 1ms, 1ms, 0, 60s});

    EXPECT_EQ(record.decide(badly, 0s).what, What::GiveUp);
}

TEST(RestartRecordTest, ClearedRecordBeginsAnew)
{
    RestartRecord record({RestartWhen::OnFailure, 100ms, 1s, 1, 60s});
    record.decide(badly, 0s);

    record.clear();

    EXPECT_EQ(record.decide(badly, 0s), restartIn(100ms));
}

} // namespace
} // namespace dorn::tool
