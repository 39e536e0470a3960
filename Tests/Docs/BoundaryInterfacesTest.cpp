// SPDX-License-Identifier: MIT
// What Docs/boundary-interfaces.md quotes.
#include "Common/boundaryIf/SimulatedVsbController.hpp"
#include "Moment.hpp"
#include "NodeTest.hpp"
#include "Worker.hpp"
#include "boundaryIf/baseband/sfp/AbstractSfpBif.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using dorn::test::Moment;
using testing::ElementsAre;
using vel::hwapi::common::AbstractWorker;
using vel::hwapi::common::Worker;

namespace sfp = vel::hwapi::common::bif::baseband::sfp;

/// A board with two cages, the second of which serves no link.
class TwoCages : public sfp::AbstractSfpBif {
public:
    TwoCages() = default;
    explicit TwoCages(AbstractWorker& worker) : AbstractSfpBif(worker) {}

    std::uint32_t getPhysicalLinkId(sfp::TSfpModuleId moduleId) override
    {
        return moduleId == 0 ? 4 : UNKNOWN_PHYSICAL_LINK_ID;
    }
    void getSfpModuleIds(std::vector<std::uint32_t>& moduleIds) override { moduleIds = {0, 1}; }

    /// The interrupt of the cages' presence pins, on whatever thread it comes.
    void presenceChanged(sfp::TSfpModuleId moduleId, bool isPresent)
    {
        sfp::SfpCallbackParam parameter(isPresent, getPhysicalLinkId(moduleId));
        callSfpCallback(parameter);
    }
};

/// Keeps a book of the modules that have come and gone.
class ModuleBook : public sfp::AbstractSfpBif::AbstractSfpCallback {
public:
    void operator()(sfp::SfpCallbackParam& parameter) override
    {
        const std::string link = std::to_string(parameter.getPhysicalLinkId());
        entries.push_back((parameter.isDetected() ? "module on link " : "no module on link ") + link);
    }
    std::vector<std::string> entries;
};

/// Tells that the worker has run everything that was assigned before.
class TellDone : public AbstractWorker::Task {
public:
    explicit TellDone(Moment& done) : m_done(done) {}
    void Perform() override { m_done.come(); }

private:
    Moment& m_done;
};

class BoundaryInterfacesTest : public dorn::testkit::NodeTest {};

TEST_F(BoundaryInterfacesTest, EventInTheThreadThatRaisesIt)
{
    ModuleBook book;
    TwoCages cages;
    cages.setSfpCallback(&book);

    cages.presenceChanged(0, true);

    EXPECT_THAT(book.entries, ElementsAre("module on link 4"));
}

TEST_F(BoundaryInterfacesTest, EventOnAWorkerAndTheEnd)
{
    constexpr int hardwareEvents = 7;
    ModuleBook book;
    TwoCages cages(*Worker::Get(hardwareEvents));
    cages.setSfpCallback(&book);
    cages.initialize();

    cages.presenceChanged(0, true);
    cages.presenceChanged(1, false);

    Moment done;
    cages.removeAllCallbacks();
    Worker::Get(hardwareEvents)->AssignTaskAndGiveOwnership(new TellDone(done));
    ASSERT_TRUE(done.waitFor()); // no event refers to the book or to the cages any more

    EXPECT_THAT(book.entries, ElementsAre("module on link 4", "no module on link 255"));
    Worker::Get(hardwareEvents)->SuspendAndWaitWorkToComplete();
}

namespace cpri = vel::hwapi::common::bif::baseband::cpri;

TEST_F(BoundaryInterfacesTest, VendorSpecificBytes)
{
    const cpri::CpriLink link(25, "sector A");
    dorn::test::SimulatedVsbController simulation;
    cpri::AbstractCpriLinkVsbControllerBif& controller = simulation;

    const std::unique_ptr<cpri::AbstractCpriLinkVsbEgressRegionBif> region(controller.createEgressRegion(link));
    ASSERT_NE(region, nullptr);
    region->setControlWords({20, 1}); // subchannel Ns = 20: X = 20, 84, 148, 212
    region->enableRegion();
    region->writeBytes({0x12, 0x34, 0x56, 0x78});

    const dorn::test::Hyperframe hyperframe = simulation.transmit(link);
    EXPECT_EQ(hyperframe[20][0], 0x12);
    EXPECT_EQ(hyperframe[212][0], 0x78);
}

} // namespace
