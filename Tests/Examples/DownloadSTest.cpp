// SPDX-License-Identifier: MIT
#include "DownloadS.hpp"

#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "Process.hpp"
#include "RadWait.hpp"
#include "ServiceUnderTest.hpp"
#include "TestBoard.hpp"
#include "ddal_ffs.h"
#include "ddal_rio.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace dorn::examples {
namespace {

using testkit::FailEvery;
using testkit::FailNth;
using testkit::Peer;
using testkit::ServiceUnderTest;

constexpr const char* file = "/ram/dsp.bin";

class DownloadSTest : public testkit::NodeTest {
protected:
    DownloadSTest()
    {
        EXPECT_TRUE(testkit::waitForRad(ERadHwapiState_SwDlState, 2)) << m_mount.standardError();
        EXPECT_TRUE(m_running.waitUntilReady());
    }

    SDownloadResp download(std::uint32_t device = 0x10, const char* path = file)
    {
        SDownloadReq request{
            .transactionId = 4, .device = device, .addressHigh = 0, .addressLow = 0x80000000, .file = {}};
        std::snprintf(request.file.data(), request.file.size(), "%s", path);
        m_asker.send<DownloadReqMsg>(downloadServiceCpid, request);
        const SDownloadResp answer = *m_asker.expect<DownloadRespMsg>();
        EXPECT_EQ(answer.transactionId, 4U);
        return answer;
    }

    testkit::TestBoard m_board;
    testkit::Process m_mount{DORN_MOUNT_SERVICE};
    DownloadS m_download;
    ServiceUnderTest m_running{m_download};
    Peer m_asker;
};

TEST_F(DownloadSTest, FileIsLoadedAndVerifiedAndTheFileSystemsAreWritable)
{
    const std::string content(100'000, 'd');
    m_node.writeBoardFile(file, content);

    const SDownloadResp answer = download();

    EXPECT_EQ(answer.writeResult, 0);
    EXPECT_EQ(answer.validationResult, 0);
    EXPECT_EQ(answer.isWritable, 1U);
    std::int32_t handle = -1;
    std::string memory(content.size(), '#');
    ASSERT_EQ(ddal_rio_copy_open_fd(0, 0x10, DDAL_RIO_READ, &handle), DDAL_OK);
    EXPECT_EQ(ddal_rio_copy_from_fd(handle, 0x80000000, memory.data(), static_cast<std::uint32_t>(memory.size())),
              DDAL_OK);
    ddal_rio_copy_close_fd(handle);
    EXPECT_EQ(memory, content);
}

TEST_F(DownloadSTest, WritableFileSystemsAreNotMountedAgain)
{
    m_node.writeBoardFile(file, "x");
    EXPECT_EQ(download().isWritable, 1U);
    const FailEvery<AaSysComMsgReceiveSelective> noAnswer;

    EXPECT_EQ(download().isWritable, 1U);

    EXPECT_EQ(noAnswer.count(), 0U);
}

TEST_F(DownloadSTest, SilentMountServiceDoesNotStopADownload)
{
    m_node.writeBoardFile(file, "x");
    m_mount.signal(SIGTERM);
    m_mount.waitForEnd();
    const FailEvery<AaSysComMsgReceiveSelective> noAnswer; // as after 5 seconds each

    const SDownloadResp answer = download();

    EXPECT_EQ(answer.isWritable, 0U);
    EXPECT_EQ(answer.validationResult, 0);
    EXPECT_EQ(noAnswer.count(), 2U);
}

TEST_F(DownloadSTest, FileThatIsNotThereIsNotVerified)
{
    const SDownloadResp answer = download();
    EXPECT_EQ(answer.writeResult, 2);
    EXPECT_EQ(answer.validationResult, -1);
}

TEST_F(DownloadSTest, DeviceOfMoreThan16BitsIsNone)
{
    m_node.writeBoardFile(file, "x");
    EXPECT_EQ(download(0x10010).writeResult, 2);
}

TEST_F(DownloadSTest, RequestThatCannotBeVerifiedIsDumped)
{
    m_node.writeBoardFile(file, "x");
    const FailNth<ddal_rio_copy_from_fd> noCopy(1);

    EXPECT_EQ(download().validationResult, 100);

    const std::string dump = m_node.readBoardFile("/ram/dsp_parameters/download_0x10");
    SDownloadReq request{};
    ASSERT_EQ(dump.size(), sizeof request);
    std::memcpy(&request, dump.data(), sizeof request);
    EXPECT_EQ(request.addressLow, 0x80000000U);
    EXPECT_STREQ(request.file.data(), file);
}

TEST_F(DownloadSTest, NameWithoutEndIsCut)
{
    const std::string path = "/ram/" + std::string(59, 'n');
    m_node.writeBoardFile(path, "x");
    SDownloadReq request{.transactionId = 4, .device = 0x10, .addressHigh = 0, .addressLow = 0x80000000, .file = {}};
    std::memcpy(request.file.data(), path.data(), request.file.size());

    m_asker.send<DownloadReqMsg>(downloadServiceCpid, request);

    EXPECT_EQ(m_asker.expect<DownloadRespMsg>()->writeResult, 0);
}

} // namespace
} // namespace dorn::examples
