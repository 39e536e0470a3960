// SPDX-License-Identifier: MIT
#include "SimulatedSfp.hpp"

#include "CallbackTo.hpp"

#include <gmock/gmock.h>

namespace dorn::examples {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vel::hwapi::common::Worker;
using vel::hwapi::common::bif::baseband::sfp::AbstractSfpBif;
using vel::hwapi::common::bif::baseband::sfp::SfpCallbackParam;

/// The worker is not set up: events come at once.
class SimulatedSfpTest : public ::testing::Test {
protected:
    SimulatedSfpTest() { m_sfp.setSfpCallback(&m_callback); }

    void steps(int count)
    {
        for (int step = 0; step < count; ++step) {
            m_sfp.step();
        }
    }

    std::vector<SfpCallbackParam> m_events;
    CallbackTo<AbstractSfpBif::AbstractSfpCallback, SfpCallbackParam> m_callback{
        [this](const SfpCallbackParam& event) { m_events.push_back(event); }};
    Worker m_worker;
    SimulatedSfp m_sfp{m_worker};
};

TEST_F(SimulatedSfpTest, CagesAreListedWithTheirLinks)
{
    std::vector<std::uint32_t> ids{99};

    m_sfp.getSfpModuleIds(ids);

    EXPECT_THAT(ids, ElementsAre(0U, 1U, 2U, 3U));
    EXPECT_EQ(m_sfp.getPhysicalLinkId(0), 0U);
    EXPECT_EQ(m_sfp.getPhysicalLinkId(2), 2U);
    EXPECT_EQ(m_sfp.getPhysicalLinkId(3), 0xFFU);
    EXPECT_EQ(m_sfp.getPhysicalLinkId(4), 0xFFU);
}

TEST_F(SimulatedSfpTest, ModuleIsToldWhenItCanBeRead)
{
    EXPECT_TRUE(m_sfp.plug(1));
    steps(2);
    EXPECT_THAT(m_events, IsEmpty());

    steps(2);

    EXPECT_THAT(m_events, ElementsAre(SfpCallbackParam(true, 1)));
}

TEST_F(SimulatedSfpTest, ModuleThatIsPulledIsToldAtOnce)
{
    m_sfp.plug(2);
    steps(3);

    EXPECT_TRUE(m_sfp.pull(2));
    EXPECT_FALSE(m_sfp.pull(2));

    EXPECT_THAT(m_events, ElementsAre(SfpCallbackParam(true, 2), SfpCallbackParam(false, 2)));
}

TEST_F(SimulatedSfpTest, ModuleThatIsPulledWhileItStartsHasNeverBeenThere)
{
    m_sfp.plug(0);
    steps(2);

    EXPECT_TRUE(m_sfp.pull(0));
    steps(3);

    EXPECT_THAT(m_events, IsEmpty());
}

TEST_F(SimulatedSfpTest, CageWithoutLinkIsToldWithoutOne)
{
    m_sfp.plug(3);
    steps(3);

    EXPECT_THAT(m_events, ElementsAre(SfpCallbackParam(true, 0xFF)));
}

} // namespace
} // namespace dorn::examples
