// SPDX-License-Identifier: MIT
// Regions of vendor specific bytes: two ends of a CPRI link, and hyperframes that pass it.
#include "SimulatedVsbController.hpp"

#include "Interface/boundaryIf/QueueingWorker.hpp"
#include "InvalidParameterException.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using namespace dorn::test;
using namespace vel::hwapi::common::bif::baseband::cpri;
using testing::ElementsAre;
using testing::IsEmpty;
using vel::hwapi::common::InvalidParameterException;

/// Notes the events of a controller as "region id: bytes".
class Noting : public AbstractCpriLinkVsbControllerBif::AbstractCpriVsbCallback {
public:
    void operator()(VsbCallbackParam& parameter) override
    {
        VsbDataBytes bytes;
        parameter.getDataBytes(bytes);
        std::string note = std::to_string(parameter.getRegionId()) + ':';
        for (const std::uint8_t byte : bytes) {
            note += ' ' + std::to_string(byte);
        }
        notes.push_back(note);
        EXPECT_EQ(parameter.getLink(), CpriLink(1));
    }
    std::vector<std::string> notes;
};

class VsbRegionTest : public testing::Test {
protected:
    using Ingress = std::unique_ptr<AbstractCpriLinkVsbIngressRegionBif>;
    using Egress = std::unique_ptr<AbstractCpriLinkVsbEgressRegionBif>;

    VsbRegionTest()
    {
        m_near.setCpriVsbBytesTransmittedCallback(&m_transmitted);
        m_far.setCpriVsbBytesReceivedCallback(&m_received);
    }
    Egress makeEgress(const VsbControlWords& words)
    {
        return enabled(Egress(m_near.createEgressRegion(m_link)), words);
    }
    Ingress makeIngress(const VsbControlWords& words)
    {
        return enabled(Ingress(m_far.createIngressRegion(m_link)), words);
    }
    /// A hyperframe passes the link from near to far.
    void carry() { m_far.receive(m_link, m_near.transmit(m_link)); }

    static VsbDataBytes read(const Ingress& region)
    {
        VsbDataBytes bytes{0xEE};
        region->readBytes(bytes);
        return bytes;
    }
    template <class Call>
    static std::string complaintOf(Call&& call)
    {
        try {
            call();
            return {};
        } catch (const InvalidParameterException& exception) {
            return exception.getDescription();
        }
    }

    const CpriLink m_link{1, 21, "north"};
    SimulatedVsbController m_near;
    SimulatedVsbController m_far;
    Noting m_transmitted;
    Noting m_received;

private:
    template <class Region>
    static Region enabled(Region region, const VsbControlWords& words)
    {
        region->setControlWords(words);
        region->enableRegion();
        return region;
    }
};

TEST_F(VsbRegionTest, BytesPassTheLinkInTheirOrder)
{
    const Egress egress = makeEgress({20, 1});
    const Ingress ingress = makeIngress({20, 1});

    egress->writeBytes({1, 2, 3, 4});
    carry();

    EXPECT_EQ(read(ingress), (VsbDataBytes{1, 2, 3, 4}));
}

TEST_F(VsbRegionTest, BytesTravelInTheControlWordsOfTheirSubchannels)
{
    m_near.setLinkRate(m_link, ECpriLinkRate_2x);
    const Egress egress = makeEgress({30, 1});

    egress->writeBytes({1, 2, 3, 4, 5, 6, 7, 8});
    const Hyperframe hyperframe = m_near.transmit(m_link);

    EXPECT_EQ(hyperframe[30][0], 1);
    EXPECT_EQ(hyperframe[30][1], 2);
    EXPECT_EQ(hyperframe[30 + 64][0], 3);
    EXPECT_EQ(hyperframe[30 + 192][1], 8);
    EXPECT_EQ(hyperframe[31][0], 0);
}

TEST_F(VsbRegionTest, EventsTellWhatWasTransmittedAndReceived)
{
    const Egress egress = makeEgress({20, 1});
    const Ingress ingress = makeIngress({20, 1});
    egress->writeBytes({1, 2, 3, 4});
    EXPECT_THAT(m_transmitted.notes, IsEmpty());

    carry();
    carry(); // the same bytes again
    EXPECT_THAT(m_transmitted.notes, ElementsAre(std::to_string(egress->getRegionId()) + ": 1 2 3 4"));
    EXPECT_THAT(m_received.notes, ElementsAre(std::to_string(ingress->getRegionId()) + ": 1 2 3 4"));

    egress->writeBytes({1, 2, 3, 5});
    carry();
    EXPECT_EQ(m_transmitted.notes.size(), 2U);
    EXPECT_EQ(m_received.notes.size(), 2U);
}

TEST_F(VsbRegionTest, EventsTakeTheWorkerWhenThereIsOne)
{
    QueueingWorker worker(true);
    SimulatedVsbController controller(worker);
    controller.setCpriVsbBytesTransmittedCallback(&m_transmitted);
    const Egress egress(controller.createEgressRegion(m_link));
    egress->setControlWords({16, 1});
    egress->enableRegion();
    egress->writeBytes({1, 2, 3, 4});

    controller.transmit(m_link);
    EXPECT_THAT(m_transmitted.notes, IsEmpty());
    worker.work();

    EXPECT_EQ(m_transmitted.notes.size(), 1U);
}

TEST_F(VsbRegionTest, RegionTransmitsZerosUntilItIsWritten)
{
    const Egress egress = makeEgress({20, 1});
    const Ingress ingress = makeIngress({20, 1});

    carry();

    EXPECT_EQ(read(ingress), VsbDataBytes(4));
    EXPECT_THAT(m_transmitted.notes, IsEmpty());
}

TEST_F(VsbRegionTest, NothingIsReadBeforeAHyperframeHasCome)
{
    const Ingress ingress = makeIngress({20, 1});
    VsbDataBytes bytes{1};

    EXPECT_FALSE(ingress->readBytes(bytes));
    EXPECT_THAT(bytes, IsEmpty());
    carry();

    EXPECT_TRUE(ingress->readBytes(bytes));
}

TEST_F(VsbRegionTest, FreshRegionIsDisabledAndHasNoControlWords)
{
    const Ingress ingress(m_far.createIngressRegion(m_link));

    EXPECT_FALSE(ingress->isRegionEnabled());
    EXPECT_EQ(ingress->getControlWords(), VsbControlWords());
    EXPECT_EQ(ingress->getLink().getLinkHumanName(), "north");
    EXPECT_NE(ingress->getRegionId(), VsbCallbackParam::INVALID_REGION_ID);
    EXPECT_EQ(complaintOf([&] { ingress->enableRegion(); }), "no control words");
    EXPECT_FALSE(ingress->isRegionEnabled());
}

TEST_F(VsbRegionTest, RegionsHaveIdsOfTheirOwn)
{
    const Ingress first(m_far.createIngressRegion(m_link));
    const Egress second(m_far.createEgressRegion(m_link));

    EXPECT_NE(first->getRegionId(), second->getRegionId());
}

TEST_F(VsbRegionTest, LinkHasALimitedNumberOfRegions)
{
    std::vector<Ingress> regions;
    for (std::size_t number = 0; number < SimulatedVsbController::REGIONS_OF_LINK; ++number) {
        regions.emplace_back(m_far.createIngressRegion(m_link));
        ASSERT_NE(regions.back(), nullptr);
    }

    EXPECT_EQ(m_far.createEgressRegion(m_link), nullptr);
    EXPECT_NE(Ingress(m_far.createIngressRegion(CpriLink(2))), nullptr); // another link
    regions.pop_back();
    EXPECT_NE(Egress(m_far.createEgressRegion(m_link)), nullptr);
}

TEST_F(VsbRegionTest, ControlWordsHaveToBeVendorSpecific)
{
    m_near.setEthernetSubchannelPointer(m_link, 20);
    const Egress egress(m_near.createEgressRegion(m_link));
    egress->setControlWords({17, 1});

    EXPECT_EQ(complaintOf([&] { egress->setControlWords({20, 1}); }), "control words not vendor specific");
    EXPECT_EQ(complaintOf([&] { egress->setControlWords({15, 1}); }), "control words not vendor specific");

    EXPECT_EQ(egress->getControlWords(), VsbControlWords(17, 1));
}

TEST_F(VsbRegionTest, ControlWordsAreSetWhileTheRegionIsDisabled)
{
    const Egress egress = makeEgress({20, 1});

    EXPECT_EQ(complaintOf([&] { egress->setControlWords({21, 1}); }), "region enabled");

    EXPECT_EQ(egress->getControlWords(), VsbControlWords(20, 1));
    egress->disableRegion();
    egress->setControlWords({21, 1});
    EXPECT_EQ(egress->getControlWords(), VsbControlWords(21, 1));
}

TEST_F(VsbRegionTest, EnabledRegionsOfOneDirectionShareNoControlWords)
{
    Egress first = makeEgress({20, 4});
    const Egress second(m_near.createEgressRegion(m_link));
    second->setControlWords({23, 1});

    EXPECT_EQ(complaintOf([&] { second->enableRegion(); }), "control words in use");
    EXPECT_FALSE(second->isRegionEnabled());

    first.reset(); // disables it
    second->enableRegion();
    EXPECT_TRUE(second->isRegionEnabled());
}

TEST_F(VsbRegionTest, RegionsOfBothDirectionsMayHaveTheSameControlWords)
{
    const Egress egress = makeEgress({20, 4});
    const Ingress ingress(m_near.createIngressRegion(m_link));
    ingress->setControlWords({20, 4});

    ingress->enableRegion();

    EXPECT_TRUE(ingress->isRegionEnabled());
}

TEST_F(VsbRegionTest, EnablingTwiceAndDisablingTwiceDoNothing)
{
    const Egress egress = makeEgress({20, 1});
    egress->writeBytes({1, 2, 3, 4});

    egress->enableRegion();
    EXPECT_EQ(m_near.transmit(m_link)[20][0], 1); // the bytes are still there

    egress->disableRegion();
    egress->disableRegion();
    EXPECT_FALSE(egress->isRegionEnabled());
    EXPECT_EQ(m_near.transmit(m_link)[20][0], 0);
}

TEST_F(VsbRegionTest, BytesAreWrittenWhole)
{
    const Egress egress = makeEgress({20, 1});
    egress->writeBytes({1, 2, 3, 4});

    EXPECT_EQ(complaintOf([&] { egress->writeBytes({1, 2, 3}); }), "wrong number of bytes");
    EXPECT_EQ(complaintOf([&] { egress->writeBytes({1, 2, 3, 4, 5}); }), "wrong number of bytes");
    EXPECT_EQ(complaintOf([&] { egress->writeBytes({}); }), "wrong number of bytes");

    EXPECT_EQ(m_near.transmit(m_link)[20][0], 1);
}

TEST_F(VsbRegionTest, DisabledRegionIsNotWrittenNorRead)
{
    const Egress egress = makeEgress({20, 1});
    const Ingress ingress = makeIngress({20, 1});
    carry();
    egress->disableRegion();
    ingress->disableRegion();
    m_received.notes.clear();
    carry();

    EXPECT_EQ(complaintOf([&] { egress->writeBytes({1, 2, 3, 4}); }), "region disabled");
    VsbDataBytes bytes{1};
    EXPECT_FALSE(ingress->readBytes(bytes));
    EXPECT_THAT(m_received.notes, IsEmpty());
}

TEST_F(VsbRegionTest, FastChannelGoesFirstWhenThePointerChanges)
{
    const Egress low = makeEgress({16, 4});
    const Egress high = makeEgress({30, 1});

    m_near.setEthernetSubchannelPointer(m_link, 20);

    EXPECT_TRUE(low->isRegionEnabled());
    EXPECT_FALSE(high->isRegionEnabled());
    EXPECT_EQ(complaintOf([&] { high->enableRegion(); }), "control words not vendor specific");
}

TEST_F(VsbRegionTest, RegionHasTheSizeOfTheNewRate)
{
    const Egress egress = makeEgress({20, 1});
    const Ingress ingress = makeIngress({20, 1});
    egress->writeBytes({1, 2, 3, 4});
    carry();

    m_near.setLinkRate(m_link, ECpriLinkRate_4x);
    m_far.setLinkRate(m_link, ECpriLinkRate_4x);

    EXPECT_THAT(read(ingress), IsEmpty());
    EXPECT_EQ(complaintOf([&] { egress->writeBytes({1, 2, 3, 4}); }), "wrong number of bytes");
    carry();
    EXPECT_EQ(read(ingress), VsbDataBytes(16)); // zeros
    egress->writeBytes(VsbDataBytes(16, 5));
    carry();
    EXPECT_EQ(read(ingress), VsbDataBytes(16, 5));
}

} // namespace
