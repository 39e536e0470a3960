// SPDX-License-Identifier: MIT
#include "MountS.hpp"

#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"
#include "TestBoard.hpp"
#include "ddal_ffs.h"

#include <cstdio>
#include <gmock/gmock.h>

namespace dorn::examples {
namespace {

using testing::Contains;
using testing::StartsWith;
using testkit::FailNth;
using testkit::Peer;
using testkit::ServiceUnderTest;

class MountSTest : public testkit::NodeTest {
protected:
    MountSTest() { EXPECT_TRUE(m_running.waitUntilReady()); }

    SApiMountResp mount(std::uint32_t fileSystem, std::uint32_t access)
    {
        m_asker.send<ApiMountReqMsg>(AaSysComSicadGet(0x4B2, 0xF01), {fileSystem, 0, access});
        return *m_asker.expect<ApiMountRespMsg>();
    }
    static std::uint32_t modeOf(std::uint32_t fileSystem)
    {
        std::uint32_t mode = 99;
        EXPECT_EQ(ddal_ffs_is_mounted(fileSystem, &mode), DDAL_OK);
        return mode;
    }

    testkit::TestBoard m_board;
    MountS m_mount;
    ServiceUnderTest m_running{m_mount};
    Peer m_asker;
};

TEST_F(MountSTest, FileSystemsAreMountedAsAsked)
{
    const SApiMountResp first = mount(EFileId_McuFileSystem1, EFileSystemAccess_ReadWrite);

    EXPECT_EQ(first.success_code, 0U);
    EXPECT_EQ(first.filesystem_id, 53U);
    EXPECT_EQ(first.filesystem_type, static_cast<std::uint32_t>(EFileSystemType_UbiFs));
    EXPECT_EQ(first.filesystem_access, 2U);
    EXPECT_EQ(modeOf(1), static_cast<std::uint32_t>(DDAL_FFS_READ_WRITE));
    EXPECT_EQ(modeOf(2), static_cast<std::uint32_t>(DDAL_FFS_READ_ONLY));

    EXPECT_EQ(mount(EFileId_McuFileSystem2, EFileSystemAccess_ReadWrite).filesystem_id, 54U);
    EXPECT_EQ(mount(EFileId_McuFileSystem1, EFileSystemAccess_ReadOnly).success_code, 0U);
    EXPECT_EQ(modeOf(1), static_cast<std::uint32_t>(DDAL_FFS_READ_ONLY));
    EXPECT_EQ(modeOf(2), static_cast<std::uint32_t>(DDAL_FFS_READ_WRITE));
}

TEST_F(MountSTest, OtherFilesAreNoFileSystems)
{
    for (const std::uint32_t file : {0U, 1U, 52U, 55U, 0xFFFFFFFFU}) {
        const SApiMountResp answer = mount(file, EFileSystemAccess_ReadWrite);
        EXPECT_EQ(answer.success_code, static_cast<std::uint32_t>(DDAL_ERROR_NOT_FOUND));
        EXPECT_EQ(answer.filesystem_id, file);
        EXPECT_EQ(answer.filesystem_access, static_cast<std::uint32_t>(EFileSystemAccess_None));
    }
    EXPECT_EQ(m_log.count("Error 0x2002e File system 55 not mounted: file 55 is no file system"), 1U);
}

TEST_F(MountSTest, AccessThatTheBoardDoesNotKnowChangesNothing)
{
    const SApiMountResp answer = mount(EFileId_McuFileSystem1, EFileSystemAccess_ReadWriteSync);

    EXPECT_EQ(answer.success_code, static_cast<std::uint32_t>(DDAL_ERROR_INVALID_ARGUMENT));
    EXPECT_EQ(answer.filesystem_access, 1U);
    EXPECT_EQ(modeOf(1), 1U);
}

TEST_F(MountSTest, ModeThatCannotBeStoredIsAFailure)
{
    m_node.writeBoardFile("/var/lib/dorn/board", "a file in the directory's place");

    EXPECT_EQ(mount(EFileId_McuFileSystem1, EFileSystemAccess_ReadWrite).success_code,
              static_cast<std::uint32_t>(DDAL_ERROR_IO));
    EXPECT_THAT(m_log.texts(), Contains(StartsWith("Error 0x2002e File system 53 not mounted: ")));
}

TEST_F(MountSTest, ShortRequestIsNotAnswered)
{
    m_asker.send(API_MOUNT_REQ_MSG, m_running.address(), "short");
    m_running.sync();

    m_asker.expectNothing();
    EXPECT_EQ(modeOf(1), 1U);
}

TEST_F(MountSTest, AnswerWithoutMemoryIsLogged)
{
    const FailNth<AaSysComMsgCreate> noMemory(1);
    m_asker.send<ApiMountReqMsg>(m_running.address(), {53, 0, 2});

    EXPECT_TRUE(m_log.waitFor("Error 0x2002e No memory to answer " + [this] {
        char address[16];
        std::snprintf(address, sizeof address, "0x%08X", m_asker.address());
        return std::string(address);
    }()));
}

} // namespace
} // namespace dorn::examples
