// SPDX-License-Identifier: MIT
#include "CallbackTo.hpp"
#include "SimulatedCpriVsb.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::baseband::cpri;
using testing::ElementsAre;
using testing::IsEmpty;
using vel::hwapi::common::InvalidParameterException;
using vel::hwapi::common::Worker;

const CpriLink cpri0(20, "cpri0");
const CpriLink cpri1(21, "cpri1");
const VsbControlWords oneSubchannel(16, 1);
constexpr std::size_t bytesOfSubchannel = 16; // four control words of four bytes

/// The bytes of a subchannel, all the same.
VsbDataBytes allOf(std::uint8_t byte)
{
    return VsbDataBytes(bytesOfSubchannel, byte);
}

/// The reason for which something is refused; "" when it is not.
template <class Call>
std::string refusal(const Call& call)
{
    try {
        call();
    } catch (const InvalidParameterException& refused) {
        return refused.getDescription();
    }
    return "";
}

/// What an event has told.
struct Told {
    std::uint32_t region;
    VsbDataBytes bytes;
    std::string link;
    bool operator==(const Told&) const = default;
};

/// The worker is not set up: events come at once.
class SimulatedVsbTest : public ::testing::Test {
protected:
    using Callback = CallbackTo<AbstractCpriLinkVsbControllerBif::AbstractCpriVsbCallback, VsbCallbackParam>;

    SimulatedVsbTest()
    {
        m_vsb.setCpriVsbBytesReceivedCallback(&m_onReceived);
        m_vsb.setCpriVsbBytesTransmittedCallback(&m_onTransmitted);
    }

    std::unique_ptr<AbstractCpriLinkVsbIngressRegionBif> ingress(const CpriLink& link = cpri0)
    {
        return std::unique_ptr<AbstractCpriLinkVsbIngressRegionBif>(m_vsb.createIngressRegion(link));
    }
    std::unique_ptr<AbstractCpriLinkVsbEgressRegionBif> egress(const CpriLink& link = cpri0)
    {
        return std::unique_ptr<AbstractCpriLinkVsbEgressRegionBif>(m_vsb.createEgressRegion(link));
    }
    static void enable(AbstractCpriLinkVsbRegionBif& region)
    {
        region.setControlWords(oneSubchannel);
        region.enableRegion();
    }
    void bringUp()
    {
        m_links.model(cpri0).setEnabled(true);
        steps(6);
    }
    void steps(int count)
    {
        for (int done = 0; done < count; ++done) {
            m_links.step();
            m_vsb.tell();
        }
    }
    static Told told(const VsbCallbackParam& event)
    {
        Told told{event.getRegionId(), {}, event.getLink().getLinkHumanName()};
        event.getDataBytes(told.bytes);
        return told;
    }

    std::vector<Told> m_received;
    std::vector<Told> m_transmitted;
    Callback m_onReceived{[this](const VsbCallbackParam& event) { m_received.push_back(told(event)); }};
    Callback m_onTransmitted{[this](const VsbCallbackParam& event) { m_transmitted.push_back(told(event)); }};
    Worker m_worker;
    CpriLinks m_links;
    SimulatedCpriVsb m_vsb{m_links, m_worker};
};

TEST_F(SimulatedVsbTest, RegionIsMadeDisabledAndWithoutControlWords)
{
    const auto region = ingress(cpri1);

    EXPECT_NE(region->getRegionId(), VsbCallbackParam::INVALID_REGION_ID);
    EXPECT_EQ(region->getLink().getLinkHumanName(), "cpri1");
    EXPECT_EQ(region->getControlWords(), VsbControlWords());
    EXPECT_FALSE(region->isRegionEnabled());
    EXPECT_NE(egress(cpri1)->getRegionId(), region->getRegionId());
}

TEST_F(SimulatedVsbTest, LinkHasAsManyRegionsAsItCan)
{
    std::vector<std::unique_ptr<AbstractCpriLinkVsbIngressRegionBif>> regions;
    for (std::size_t made = 0; made < SimulatedCpriVsb::maxRegions; ++made) {
        regions.push_back(ingress());
        ASSERT_NE(regions.back(), nullptr);
    }

    EXPECT_EQ(ingress(), nullptr);
    EXPECT_NE(ingress(cpri1), nullptr);
    EXPECT_NE(egress(), nullptr);
    regions.pop_back();
    EXPECT_NE(ingress(), nullptr);
}

TEST_F(SimulatedVsbTest, LinkThatTheBoardDoesNotHaveIsRefused)
{
    EXPECT_EQ(refusal([this] { ingress(CpriLink(30, "absent")); }), "no such CPRI link");
}

TEST_F(SimulatedVsbTest, BytesComeBackFromTheFarEnd)
{
    const auto in = ingress();
    const auto out = egress();
    enable(*in);
    enable(*out);
    bringUp();
    m_received.clear();

    out->writeBytes(allOf(0x5A));
    steps(1);
    EXPECT_THAT(m_transmitted, ElementsAre(Told{out->getRegionId(), allOf(0x5A), "cpri0"}));
    EXPECT_THAT(m_received, IsEmpty());
    steps(3);

    EXPECT_THAT(m_received, ElementsAre(Told{in->getRegionId(), allOf(0x5A), "cpri0"}));
    EXPECT_EQ(m_transmitted.size(), 1U) << "the same bytes leave with every hyperframe";
    VsbDataBytes bytes;
    EXPECT_TRUE(in->readBytes(bytes));
    EXPECT_EQ(bytes, allOf(0x5A));
}

TEST_F(SimulatedVsbTest, BytesKeepTheirOrder)
{
    const auto in = ingress();
    const auto out = egress();
    for (AbstractCpriLinkVsbRegionBif* region : {static_cast<AbstractCpriLinkVsbRegionBif*>(in.get()),
                                                 static_cast<AbstractCpriLinkVsbRegionBif*>(out.get())}) {
        region->setControlWords(VsbControlWords(16, 4));
        region->enableRegion();
    }
    bringUp();
    VsbDataBytes counted(64);
    for (std::size_t index = 0; index < counted.size(); ++index) {
        counted[index] = static_cast<std::uint8_t>(index + 1);
    }

    out->writeBytes(counted);
    steps(2);

    VsbDataBytes bytes;
    ASSERT_TRUE(in->readBytes(bytes));
    EXPECT_EQ(bytes, counted);
    EXPECT_EQ(m_links.model(cpri0).sentBytes().at({17, 0}), 5) << "the second control word in line is X = 17";
}

TEST_F(SimulatedVsbTest, NothingIsReadBeforeTheLinkIsUp)
{
    const auto in = ingress();
    enable(*in);
    VsbDataBytes bytes{1, 2, 3};

    EXPECT_FALSE(in->readBytes(bytes));
    EXPECT_THAT(bytes, IsEmpty());
    bringUp();
    EXPECT_TRUE(in->readBytes(bytes));
    EXPECT_EQ(bytes, allOf(0));
    EXPECT_EQ(m_received.size(), 1U) << "the first hyperframe is told";
}

TEST_F(SimulatedVsbTest, BytesWaitForALinkThatIsSwitchedOff)
{
    const auto out = egress();
    enable(*out);
    out->writeBytes(allOf(1));
    steps(3);
    EXPECT_THAT(m_transmitted, IsEmpty());

    bringUp();

    EXPECT_THAT(m_transmitted, ElementsAre(Told{out->getRegionId(), allOf(1), "cpri0"}));
}

TEST_F(SimulatedVsbTest, LinkThatIsLostKeepsTheLastBytes)
{
    const auto in = ingress();
    const auto out = egress();
    enable(*in);
    enable(*out);
    bringUp();
    out->writeBytes(allOf(3));
    steps(3);
    m_received.clear();
    m_links.model(cpri0).setBrokenParts(ELinkPart_Receive);
    out->writeBytes(allOf(4));
    steps(3);

    VsbDataBytes bytes;
    EXPECT_TRUE(in->readBytes(bytes));
    EXPECT_EQ(bytes, allOf(3));
    EXPECT_THAT(m_received, IsEmpty());
}

TEST_F(SimulatedVsbTest, RegionThatIsEnabledAnewHasNoBytes)
{
    const auto in = ingress();
    const auto out = egress();
    enable(*in);
    enable(*out);
    bringUp();
    out->writeBytes(allOf(9));
    steps(3);

    in->disableRegion();
    out->disableRegion();
    EXPECT_FALSE(in->isRegionEnabled());
    steps(3);
    in->enableRegion();

    VsbDataBytes bytes;
    EXPECT_FALSE(in->readBytes(bytes));
    steps(1);
    EXPECT_TRUE(in->readBytes(bytes));
    EXPECT_EQ(bytes, allOf(0)) << "a disabled region transmits zeros";
}

TEST_F(SimulatedVsbTest, RegionThatIsDeletedTransmitsNothingAnyMore)
{
    const auto in = ingress();
    enable(*in);
    {
        const auto out = egress();
        enable(*out);
        bringUp();
        out->writeBytes(allOf(9));
        steps(3);
    }
    steps(3);

    VsbDataBytes bytes;
    EXPECT_TRUE(in->readBytes(bytes));
    EXPECT_EQ(bytes, allOf(0));
}

TEST_F(SimulatedVsbTest, RulesAreKept)
{
    const auto region = egress();
    EXPECT_EQ(refusal([&] { region->enableRegion(); }), "no control words");
    EXPECT_EQ(refusal([&] { region->setControlWords(VsbControlWords(15, 1)); }), "control words not vendor specific");
    EXPECT_EQ(refusal([&] { region->setControlWords(VsbControlWords(19, 2)); }), "control words not vendor specific");
    EXPECT_EQ(refusal([&] { region->writeBytes(allOf(1)); }), "region disabled");
    EXPECT_EQ(region->getControlWords(), VsbControlWords());

    enable(*region);

    EXPECT_EQ(refusal([&] { region->setControlWords(oneSubchannel); }), "region enabled");
    EXPECT_EQ(refusal([&] { region->enableRegion(); }), "") << "it is enabled already";
    EXPECT_EQ(refusal([&] { region->writeBytes({1, 2, 3}); }), "wrong number of bytes");
}

TEST_F(SimulatedVsbTest, EnabledRegionsOfADirectionHaveNoControlWordsInCommon)
{
    const auto first = egress();
    enable(*first);
    const auto second = egress();
    second->setControlWords(VsbControlWords(16, 2));

    EXPECT_EQ(refusal([&] { second->enableRegion(); }), "control words in use");
    EXPECT_FALSE(second->isRegionEnabled());

    const auto other = egress(cpri1);
    EXPECT_EQ(refusal([&] { enable(*other); }), "");
    const auto in = ingress();
    EXPECT_EQ(refusal([&] { enable(*in); }), "");
    second->setControlWords(VsbControlWords(17, 2));
    EXPECT_EQ(refusal([&] { second->enableRegion(); }), "");
    first->disableRegion();
    const auto third = egress();
    EXPECT_EQ(refusal([&] { enable(*third); }), "");
}

} // namespace
} // namespace dorn::examples
