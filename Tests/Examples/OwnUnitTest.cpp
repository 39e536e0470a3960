// SPDX-License-Identifier: MIT
// The line in which a service tells the unit that it runs on.
#include "OwnUnit.hpp"

#include "ClimateS.hpp"
#include "ClockS.hpp"
#include "ComfortS.hpp"
#include "FailNth.hpp"
#include "FaultManagerS.hpp"
#include "LedS.hpp"
#include "LinkS.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "RedundancyManagerS.hpp"
#include "ServiceUnderTest.hpp"
#include "SfpS.hpp"
#include "TestBoard.hpp"
#include "ddal_devicetree.h"
#include "new/IdentityCaches.hpp"

#include <array>
#include <cstdio>
#include <gmock/gmock.h>
#include <memory>
#include <string>

namespace dorn::examples {
namespace {

using testing::ElementsAre;

const std::string ownUnit = "Runs on unit NAXE DN264700001: HW/SW id 0xA00100, type 19, version 51";

/// Of a process that has asked nothing yet.
class OwnUnitTest : public testkit::NodeTest {
protected:
    OwnUnitTest() { std::construct_at(&vel::hwapi::adet::identityCaches()); }

    testkit::OutputCapture m_output;
};

TEST_F(OwnUnitTest, UnitIsToldInOneLine)
{
    const testkit::TestBoard board;

    logOwnUnit(ERadHwapi_LED);

    EXPECT_THAT(m_log.texts(), ElementsAre("Vip 0x2002a " + ownUnit));
}

TEST_F(OwnUnitTest, UnitThatCannotBeReadIsToldByThoseWhoReadIt)
{
    logOwnUnit(ERadHwapi_LED);

    EXPECT_THAT(
        m_log.texts(),
        ElementsAre("Error 0x0 ddal_devicetree_get_unit_id(): board description '/proc/device-tree' cannot be read: No "
                    "such file or directory (DORN_BOARD can name another one)",
                    "Warning 0x20063 ApiGetUnitId(): ddal_devicetree_get_unit_id() returned '0x3' (not DDAL_OK)"));
}

TEST_F(OwnUnitTest, UnitIsToldWithoutASerialNumberThatCannotBeRead)
{
    const testkit::TestBoard board;
    const testkit::FailNth<ddal_devicetree_get_serial_number> unreadable(1, DDAL_ERROR_IO);

    logOwnUnit(ERadHwapi_LED);

    EXPECT_EQ(m_log.texts().back(), "Vip 0x2002a Runs on unit NAXE : HW/SW id 0xA00100, type 19, version 51");
}

template <class TestedService>
class ServicesOwnUnitTest : public OwnUnitTest {
};

using Services = ::testing::Types<ClimateS, ClockS, ComfortS, FaultManagerS, LedS, LinkS, RedundancyManagerS, SfpS>;
TYPED_TEST_SUITE(ServicesOwnUnitTest, Services);

TYPED_TEST(ServicesOwnUnitTest, IsToldOnceWhenTheServiceStarts)
{
    const testkit::TestBoard board;
    TypeParam service;
    testkit::ServiceUnderTest running(service);
    ASSERT_TRUE(running.waitUntilReady());

    std::array<char, 16> feature{};
    std::snprintf(feature.data(), feature.size(), "0x%x", service.GetRadId());
    EXPECT_EQ(this->m_log.count(std::string("Vip ") + feature.data() + " " + ownUnit), 1U);
}

TYPED_TEST(ServicesOwnUnitTest, IsNotNeededToStart)
{
    TypeParam service;
    testkit::ServiceUnderTest running(service);

    EXPECT_TRUE(running.waitUntilReady());
}

} // namespace
} // namespace dorn::examples
