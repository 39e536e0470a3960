// SPDX-License-Identifier: MIT
#include "PostS.hpp"

#include "AaFile.h"
#include "AaSysLog.h"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "Sanitizers.hpp"
#include "ServiceUnderTest.hpp"
#include "node/PerNode.hpp"
#include "trbl/TroubleCollection.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

// What a ring buffer is registered with lives as long as the process.
DORN_LASTING_MEMORY_OF("HwApiRegisterSysLogRingBuffer");

namespace dorn::examples {
namespace {

using testing::HasSubstr;
using testkit::Peer;
using testkit::ServiceUnderTest;

class PostSTest : public testkit::NodeTest {
protected:
    static SPostRunResp run(Peer& tester, TAaSysComSicad service, std::uint32_t failing)
    {
        tester.send<PostRunReqMsg>(service, {.transactionId = 7, .failing = failing});
        return *tester.expect<PostRunRespMsg>();
    }
};

TEST_F(PostSTest, ResultsOfTheLatestTwoRunsAreKept)
{
    PostS post;
    ServiceUnderTest service(post);
    ASSERT_TRUE(service.waitUntilReady());
    Peer tester;

    const SPostRunResp first = run(tester, service.address(), 3);
    EXPECT_EQ(first.transactionId, 7U);
    EXPECT_EQ(first.status, 0U);
    EXPECT_EQ(first.failedLatest, 3U);
    EXPECT_EQ(first.failedBefore, 0xFFFFFFFFU);

    const SPostRunResp second = run(tester, service.address(), 100);
    EXPECT_EQ(second.failedLatest, 14U);
    EXPECT_EQ(second.failedBefore, 3U);
    EXPECT_EQ(m_node.readBoardFile(mcuPostPath), "1 1 1 1 1 1 1 1 1 1 1 1 1 1\n1 1 1 0 0 0 0 0 0 0 0 0 0 0\n");
    EXPECT_EQ(m_node.readBoardFile(dspPostPath), "0 10 0 1 : 1 0 \n0 10 0 1 : 1 0 \n");
}

TEST_F(PostSTest, ResetTypeIsThatOfTheParameterFile)
{
    m_node.writeBoardFile(dspParametersPath,
                          "<service version='1'><DSPParams><BootInfo><resetType>2</resetType><postFlag>1</postFlag>"
                          "<ExtractorSw>1</ExtractorSw></BootInfo><MemAddress><InitSwAddr>1</InitSwAddr>"
                          "<CfgParamsAddr>1</CfgParamsAddr><DoorbellAddr>1</DoorbellAddr><RuntimeAddr>1</RuntimeAddr>"
                          "</MemAddress></DSPParams></service>");
    PostS post;
    ServiceUnderTest service(post);
    ASSERT_TRUE(service.waitUntilReady());
    Peer tester;

    run(tester, service.address(), 0);

    EXPECT_EQ(m_node.readBoardFile(dspPostPath), "2 10 0 1 : 1 0 \n");
}

TEST_F(PostSTest, ResultsThatCannotBeRecordedAreAFailure)
{
    m_node.writeBoardFile("/ffs/run", "in place of the directory");
    PostS post;
    ServiceUnderTest service(post);
    ASSERT_TRUE(service.waitUntilReady());
    Peer tester;

    EXPECT_EQ(run(tester, service.address(), 0).status, 1U);
}

TEST_F(PostSTest, SupervisorIsTold)
{
    ASSERT_EQ(AaFileCreateDir("/tmp"), 0);
    const std::string fifo = m_node.boardPath("/tmp/SupervisorFifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    PostS post;
    ServiceUnderTest service(post);
    ASSERT_TRUE(service.waitUntilReady());
    Peer tester;

    run(tester, service.address(), 2);

    const int descriptor = open(fifo.c_str(), O_RDONLY | O_CLOEXEC); // waits for the service
    std::string text(100, '\0');
    text.resize(static_cast<std::size_t>(read(descriptor, text.data(), text.size())));
    close(descriptor);
    EXPECT_EQ(text, "POST: 2 of 14 tests failed\n");
}

TEST_F(PostSTest, ItsLinesAreCollectedAlthoughTheyAreNotPrinted)
{
    PostS post;
    ServiceUnderTest service(post);
    ASSERT_TRUE(service.waitUntilReady());
    Peer tester;
    run(tester, service.address(), 0);

    const host::TroubleCollection collection(host::PerNode<host::TroubleFiles>::get(),
                                             host::Clock::get().monotonic() + testkit::generousBound);

    EXPECT_THAT(m_node.readBoardFile("/ram/post.log"), HasSubstr("POST: 0 of 14 tests failed\n"));
    EXPECT_EQ(m_log.count("Info 0x2004a POST: 0 of 14 tests failed"), 0U);
}

} // namespace
} // namespace dorn::examples
