// SPDX-License-Identifier: MIT
#include "SoftwarePll.hpp"

#include "BoardClock.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::swpllstatemonitor;
using testing::ElementsAre;

/// The loop, given samples by hand.
class SoftwarePllTest : public ::testing::Test {
protected:
    PllCorrection sample(double phaseError, double seconds = 1)
    {
        return m_pll.step({true, true, phaseError, seconds});
    }
    PllCorrection sampleWithoutReference() { return m_pll.step({false, true, 0, 1}); }
    void samples(int count, double phaseError)
    {
        for (int done = 0; done < count; ++done) {
            sample(phaseError);
        }
    }
    /// As far as a state, with no error at all.
    void bringTo(ESwPllState state)
    {
        for (int done = 0; m_pll.state() != state; ++done) {
            ASSERT_LT(done, 100);
            sample(0);
        }
    }

    SoftwarePll m_pll;
};

TEST_F(SoftwarePllTest, LoopWaitsForReferenceAndOscillator)
{
    m_pll.step({false, true, 0, 1});
    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire0);
    m_pll.step({true, false, 0, 1});
    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire0);
    m_pll.step({true, true, 0, 1});
    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire1);
    EXPECT_FALSE(m_pll.isTracking());
}

TEST_F(SoftwarePllTest, FrequencyIsMeasuredForEightSeconds)
{
    bringTo(ESwPllState_Acquire1);
    for (int second = 0; second < 8; ++second) {
        EXPECT_EQ(sample(500 + 60 * second).frequency, 0);
        EXPECT_EQ(m_pll.state(), ESwPllState_Acquire1) << second;
    }

    EXPECT_DOUBLE_EQ(sample(500 + 60 * 8).frequency, -60);

    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire2);
}

TEST_F(SoftwarePllTest, ClockIsSetToTheNearestPeriod)
{
    bringTo(ESwPllState_Acquire2);

    EXPECT_NEAR(sample(1000).phase, 31 * 1000 / 30.72, 1e-9);

    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire3);
    EXPECT_EQ(sample(0).phase, 0);
}

TEST_F(SoftwarePllTest, FiveGoodSamplesInARowLeadOn)
{
    bringTo(ESwPllState_Acquire3);
    samples(4, 100);
    samples(1, 101);
    samples(4, -100);
    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire3);
    samples(1, 0);
    EXPECT_EQ(m_pll.state(), ESwPllState_TrackMed);
    EXPECT_TRUE(m_pll.isTracking());

    samples(4, 50);
    samples(1, -51);
    samples(4, 50);
    EXPECT_EQ(m_pll.state(), ESwPllState_TrackMed);
    samples(1, 0);

    EXPECT_EQ(m_pll.state(), ESwPllState_TrackMax);
    samples(20, 0);
    EXPECT_EQ(m_pll.state(), ESwPllState_TrackMax);
}

TEST_F(SoftwarePllTest, GreatErrorsLeadBack)
{
    bringTo(ESwPllState_TrackMax);
    sample(100);
    EXPECT_EQ(m_pll.state(), ESwPllState_TrackMax);
    sample(-101);
    EXPECT_EQ(m_pll.state(), ESwPllState_TrackMed);
    sample(500);
    EXPECT_EQ(m_pll.state(), ESwPllState_TrackMed);
    sample(501);
    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire3);
    sample(-2000);
    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire3);
    sample(-2001);
    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire1);
}

TEST_F(SoftwarePllTest, NarrowLoopWantsItsSamplesLater)
{
    EXPECT_EQ(m_pll.secondsToNextStep(), 1);
    bringTo(ESwPllState_TrackMed);
    EXPECT_EQ(m_pll.secondsToNextStep(), 1);
    bringTo(ESwPllState_TrackMax);
    EXPECT_EQ(m_pll.secondsToNextStep(), 10);
    sampleWithoutReference();
    EXPECT_EQ(m_pll.secondsToNextStep(), 10);
}

TEST_F(SoftwarePllTest, ErrorIsTakenBackProportionallyAndForGood)
{
    bringTo(ESwPllState_TrackMax);

    EXPECT_NEAR(sample(10, 10).frequency, -(2 * 0.04 * 10 + 0.04 * 0.04 * 10 * 10), 1e-12);
    EXPECT_NEAR(sample(0, 10).frequency, -0.04 * 0.04 * 10 * 10, 1e-12);
}

TEST_F(SoftwarePllTest, LostReferenceIsHeldOver)
{
    bringTo(ESwPllState_TrackMax);
    sample(10, 10);

    const double held = sampleWithoutReference().frequency;

    EXPECT_EQ(m_pll.state(), ESwPllState_Holdover);
    EXPECT_FALSE(m_pll.isTracking());
    EXPECT_NEAR(held, -0.16, 1e-12) << "without what was there for the last error only";
    EXPECT_EQ(sampleWithoutReference().frequency, held);
    EXPECT_EQ(m_pll.state(), ESwPllState_Holdover);
}

TEST_F(SoftwarePllTest, ReferenceThatIsLostWhileTrackingWideIsHeldOverToo)
{
    bringTo(ESwPllState_TrackMed);
    sampleWithoutReference();
    EXPECT_EQ(m_pll.state(), ESwPllState_Holdover);
}

TEST_F(SoftwarePllTest, ReferenceThatIsLostWhileAcquiringIsWaitedFor)
{
    for (const ESwPllState state : {ESwPllState_Acquire1, ESwPllState_Acquire2, ESwPllState_Acquire3}) {
        bringTo(state);
        sampleWithoutReference();
        EXPECT_EQ(m_pll.state(), ESwPllState_Acquire0) << state;
    }
}

TEST_F(SoftwarePllTest, ReferenceThatIsBackIsFollowedAgain)
{
    bringTo(ESwPllState_TrackMax);
    sampleWithoutReference();
    sample(2000);
    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire3);

    bringTo(ESwPllState_TrackMax);
    sampleWithoutReference();
    sample(2001);
    EXPECT_EQ(m_pll.state(), ESwPllState_Acquire1) << "too far off to be pulled in";
}

/// The loop on the simulated clock.
class ClosedLoopTest : public ::testing::Test {
protected:
    void step()
    {
        const double seconds = m_pll.secondsToNextStep();
        m_clock.step(seconds, 25);
        const double phaseError = m_clock.hasReference() ? m_clock.measurePhase() : 0;
        const PllCorrection correction =
            m_pll.step({m_clock.hasReference(), m_clock.ocxo().isWarm(), phaseError, seconds});
        m_clock.setBack(correction.phase);
        m_clock.ocxo().setControlValue(
            OcxoModel::factoryControlValue +
            static_cast<std::int32_t>(std::lround(correction.frequency / OcxoModel::pullPerStep)));
        if (m_states.empty() || m_states.back() != m_pll.state()) {
            m_states.push_back(m_pll.state());
        }
    }
    void run(double seconds)
    {
        for (const double end = m_clock.uptime() + seconds; m_clock.uptime() < end;) {
            step();
        }
    }

    BoardClock m_clock;
    SoftwarePll m_pll;
    std::vector<ESwPllState> m_states;
};

TEST_F(ClosedLoopTest, LoopLocksStateByState)
{
    run(120);

    EXPECT_THAT(m_states, ElementsAre(ESwPllState_Acquire0, ESwPllState_Acquire1, ESwPllState_Acquire2,
                                      ESwPllState_Acquire3, ESwPllState_TrackMed, ESwPllState_TrackMax));
}

TEST_F(ClosedLoopTest, LockedClockKeepsToItsReference)
{
    run(120);
    double greatest = 0;
    while (m_clock.uptime() < 7200) {
        step();
        greatest = std::max(greatest, std::fabs(m_clock.timeError()));
    }

    EXPECT_LT(greatest, 40) << "the warm-up is behind by drift / 0.0016";
    EXPECT_EQ(m_pll.state(), ESwPllState_TrackMax);
    EXPECT_LT(std::fabs(m_clock.timeError()), 10);
    EXPECT_LT(std::fabs(m_clock.ocxo().frequencyError()), 1);
}

TEST_F(ClosedLoopTest, ClockDriftsInHoldoverAsTheOscillatorDoes)
{
    run(120);
    m_clock.setReference(false);
    run(10);
    ASSERT_EQ(m_pll.state(), ESwPllState_Holdover);
    const double start = m_clock.ocxo().frequencyError();

    run(600);

    EXPECT_NEAR(m_clock.ocxo().frequencyError() - start, -20 * (std::exp(-0.2) - std::exp(-1.2)), 0.5)
        << "the warm-up goes on unseen";
    EXPECT_LT(m_clock.timeError(), -1000);
}

TEST_F(ClosedLoopTest, ClockThatIsWarmHoldsBetter)
{
    run(4 * 3600);
    m_clock.setReference(false);

    run(600);

    EXPECT_LT(std::fabs(m_clock.timeError()), 500);
}

TEST_F(ClosedLoopTest, ClockIsPulledInWhenTheReferenceIsBack)
{
    run(120);
    m_clock.setReference(false);
    run(300);
    const double off = m_clock.timeError();
    ASSERT_GT(std::fabs(off), 100);
    m_clock.setReference(true);
    m_states.clear();

    run(120);

    EXPECT_THAT(m_states, ElementsAre(ESwPllState_Acquire3, ESwPllState_TrackMed, ESwPllState_TrackMax));
    EXPECT_LT(std::fabs(m_clock.timeError()), 50);
}

TEST_F(ClosedLoopTest, RunsAreTheSame)
{
    run(1000);
    BoardClock other;
    std::swap(other, m_clock);
    m_pll = {};
    run(1000);

    EXPECT_EQ(m_clock.timeError(), other.timeError());
}

} // namespace
} // namespace dorn::examples
