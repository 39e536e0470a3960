// SPDX-License-Identifier: MIT
// The services with simulated hardware switch their prints on when they are told to.
#include "ClockS.hpp"
#include "FirmwareS.hpp"
#include "LinkS.hpp"
#include "SfpS.hpp"

#include "AaConfigRad.h"
#include "NodeTest.hpp"
#include "ServiceUnderTest.hpp"

#include <gtest/gtest.h>

namespace dorn::examples {
namespace {

template <class TestedService>
class VerboseTest : public testkit::NodeTest {
protected:
    /// The service's print switch when it has been started like this.
    static std::uint32_t switchWith(const std::vector<std::string>& arguments)
    {
        TestedService service;
        testkit::ServiceUnderTest running(service, arguments);
        EXPECT_TRUE(running.waitUntilReady());
        return AaConfigRadGetValue(service.GetRadId());
    }
};

using Services = ::testing::Types<SfpS, LinkS, ClockS, FirmwareS>;
TYPED_TEST_SUITE(VerboseTest, Services);

TYPED_TEST(VerboseTest, PrintsAreOffWithoutTheOption)
{
    EXPECT_EQ(this->switchWith({}), 0U);
}

TYPED_TEST(VerboseTest, PrintsAreOnWithTheOption)
{
    EXPECT_EQ(this->switchWith({"-v"}), 1U);
}

} // namespace
} // namespace dorn::examples
