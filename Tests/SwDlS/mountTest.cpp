// SPDX-License-Identifier: MIT
// Requests to a mount service that the test plays, and file systems of a small board.
#include "mount.h"

#include "FailNth.hpp"
#include "LogCapture.hpp"
#include "ManualClock.hpp"
#include "Peer.hpp"
#include "TestBoard.hpp"
#include "TestNode.hpp"
#include "ddal_ffs.h"
#include "description/DescribedBoard.hpp"
#include "device/FileSystem.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <thread>
#include <vector>

extern "C" std::uint32_t mountInC(TAaSysComSicad mySicad, std::uint32_t printFlag);

namespace {

using dorn::testkit::CountCalls;
using dorn::testkit::FailEvery;
using dorn::testkit::FailNth;
using dorn::testkit::ManualClock;
using dorn::testkit::Peer;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t feature = 0x20003;
const std::string info = "Info 0x20003 ";
const std::string timeoutLine = "Error 0x20003 receiveMountResp(): Timeout for API_MOUNT_RESP_MSG";

std::vector<std::uint32_t> wordsOf(const dorn::testkit::Message& message)
{
    std::vector<std::uint32_t> words(message.payload().size() / sizeof(std::uint32_t));
    std::memcpy(words.data(), message.payload().data(), words.size() * sizeof(std::uint32_t));
    return words;
}

/// The test's EU has an address of its own, and the mount service is a peer.
class MountTest : public testing::Test {
protected:
    MountTest() : m_cpid(AaSysComUserRegister(0, AaProEuCurrent())) {}
    ~MountTest() override
    {
        AaSysComUserDeregister(m_cpid);
        takeNext();
    }

    TAaSysComSicad address() const { return AaSysComSicadGet(m_cpid, AaSysComGetOwnNid()); }
    std::string addressText() const { return textOf(address()); }
    static std::string textOf(TAaSysComSicad address)
    {
        char text[16];
        std::snprintf(text, sizeof text, "0x%X", address);
        return text;
    }

    /// The id of the next message that this EU has got; 0 when there is none.
    static TAaSysComMsgId takeNext()
    {
        void* message = AaSysComMsgReceive(AA_NO_WAIT);
        const TAaSysComMsgId id = AaSysComMsgGetId(message);
        AaSysComMsgDestroy(&message);
        return id;
    }

    void answer(TAaSysComSicad receiver, const std::vector<std::uint32_t>& words)
    {
        m_service.send(API_MOUNT_RESP_MSG, receiver, std::as_bytes(std::span(words)));
    }
    std::string receivedLine(const std::string& content) const
    {
        return info + "receiveMountResp(): Received API_MOUNT_RESP_MSG (" + content + ") from " +
               textOf(m_service.address()) + ".";
    }

    dorn::testkit::TestNode m_node{{.logLevel = "debug"}};
    dorn::testkit::LogCapture m_log;
    Peer m_service{0x4B2};
    TAaSysComCpid m_cpid;
};

TEST_F(MountTest, MessagesHaveTheirNumbers)
{
    EXPECT_EQ(API_MOUNT_REQ_MSG, 0x2B95);
    EXPECT_EQ(API_MOUNT_RESP_MSG, 0x2B96);
    EXPECT_EQ(EFileId_McuFileSystem1, 53);
    EXPECT_EQ(EFileId_McuFileSystem2, 54);
    EXPECT_EQ(EFileSystemType_ExtFat16, 1);
    EXPECT_EQ(EFileSystemType_UbiFs, 2);
    EXPECT_EQ(EFileSystemType_Ext3, 3);
    EXPECT_EQ(EFileSystemType_Ext4, 4);
    EXPECT_EQ(EFileSystemAccess_None, 0);
    EXPECT_EQ(EFileSystemAccess_ReadOnly, 1);
    EXPECT_EQ(EFileSystemAccess_ReadWrite, 2);
    EXPECT_EQ(EFileSystemAccess_ReadWriteSync, 3);
    EXPECT_EQ(offsetof(SApiMountReq, filesystem_id), 0U);
    EXPECT_EQ(offsetof(SApiMountReq, filesystem_type), 4U);
    EXPECT_EQ(offsetof(SApiMountResp, success_code), 0U);
    EXPECT_EQ(offsetof(SApiMountResp, filesystem_id), 4U);
    EXPECT_EQ(offsetof(SApiMountResp, filesystem_type), 8U);
}

TEST_F(MountTest, RequestNamesFileSystemAndAccess)
{
    requestRwMount(address(), feature, EFileId_McuFileSystem2);

    const auto request = m_service.expect(0x2B95);
    EXPECT_THAT(wordsOf(request), ElementsAre(54U, 0U, 2U));
    EXPECT_EQ(request.payload().size(), 12U);
    EXPECT_EQ(request.sender(), address());
    EXPECT_EQ(request.receiver(), AaSysComSicadGet(0x4B2, 0xF01));
    EXPECT_THAT(m_log.texts(), ElementsAre(info + "requestRwMount(): Requesting RW mount for fs 0x36."));
}

TEST(MountElsewhereTest, RequestGoesToTheMountServicesNodeFromEverywhere)
{
    const dorn::testkit::TestNode node({.nodeId = 0x0F02});
    const dorn::testkit::LogCapture log;

    requestRwMount(0x0F020300, feature, 53);

    EXPECT_THAT(log.texts(), ElementsAre("Warning 0x0 Message not sent: there is no way to the receiver's node "
                                         "(id=0x2B95 receiver=0x0F0104B2 sender=0x0F020300)"));
}

TEST_F(MountTest, RequestWithoutMemoryIsNotSent)
{
    const FailNth<AaSysComMsgCreate> noMemory(1);
    const FailEvery<AaSysComMsgSendS> sending;

    requestRwMount(address(), feature, 53);

    EXPECT_TRUE(noMemory.hasFailed());
    EXPECT_EQ(sending.count(), 0U);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(MountTest, AnswerIsLoggedWithAllItSays)
{
    answer(address(), {0xA, 0x35, 4, 2});
    const CountCalls<AaSysComMsgDestroy> destroyed;

    receiveMountResp(feature);

    EXPECT_EQ(destroyed.count(), 1U);

    EXPECT_THAT(m_log.texts(), ElementsAre(receivedLine("fsId 0x35, type 0x4, mode 0x2, success_code 0xA")));
    EXPECT_EQ(takeNext(), 0U) << "the answer is taken";
}

TEST_F(MountTest, NumbersAreInUpperCase)
{
    answer(address(), {0xDEAD0, 0xABCD, 0xFFFFFFFE, 0xBEEF});

    requestRwMount(address(), feature, 0xFACE);
    receiveMountResp(feature);

    EXPECT_THAT(m_log.texts(),
                ElementsAre(info + "requestRwMount(): Requesting RW mount for fs 0xFACE.",
                            receivedLine("fsId 0xABCD, type 0xFFFFFFFE, mode 0xBEEF, success_code 0xDEAD0")));
}

TEST_F(MountTest, AnswerThatIsCutSaysNoughtBehindTheCut)
{
    answer(address(), {1, 0x36});
    answer(address(), {});

    receiveMountResp(feature);
    receiveMountResp(feature);

    EXPECT_THAT(m_log.texts(), ElementsAre(receivedLine("fsId 0x36, type 0x0, mode 0x0, success_code 0x1"),
                                           receivedLine("fsId 0x0, type 0x0, mode 0x0, success_code 0x0")));
}

TEST_F(MountTest, OtherMessagesStayQueued)
{
    m_service.send(0x1111, address());
    m_service.send(API_MOUNT_REQ_MSG, address());
    answer(address(), {0, 53, 2, 2});
    m_service.send(0x2222, address());

    receiveMountResp(feature);

    EXPECT_EQ(m_log.texts().size(), 1U);
    EXPECT_EQ(takeNext(), 0x1111U);
    EXPECT_EQ(takeNext(), static_cast<TAaSysComMsgId>(API_MOUNT_REQ_MSG));
    EXPECT_EQ(takeNext(), 0x2222U);
    EXPECT_EQ(takeNext(), 0U);
}

TEST_F(MountTest, AnswerIsAwaitedForFiveSeconds)
{
    const FailEvery<AaSysComMsgReceiveSelective> nothing;
    receiveMountResp(feature);
    EXPECT_EQ(nothing.count(), 1U);
    EXPECT_THAT(m_log.texts(), ElementsAre(timeoutLine));
}

TEST_F(MountTest, BothFileSystemsAreMountedAndBothAnswersAwaited)
{
    std::jthread service([this] {
        EXPECT_THAT(wordsOf(m_service.expect(0x2B95)), ElementsAre(53U, 0U, 2U));
        EXPECT_THAT(wordsOf(m_service.expect(0x2B95)), ElementsAre(54U, 0U, 2U));
        answer(address(), {0, 54, 2, 2}); // the later request first
        answer(address(), {0, 53, 2, 2});
    });

    MountFilesystemsToRwMode(address(), feature);

    EXPECT_THAT(m_log.texts(), ElementsAre(info + "requestRwMount(): Requesting RW mount for fs 0x35.",
                                           info + "requestRwMount(): Requesting RW mount for fs 0x36.",
                                           receivedLine("fsId 0x36, type 0x2, mode 0x2, success_code 0x0"),
                                           receivedLine("fsId 0x35, type 0x2, mode 0x2, success_code 0x0")));
}

TEST_F(MountTest, FeatureOfTheLinesIsTheCallers)
{
    answer(address(), {0, 53, 2, 2});
    answer(address(), {0, 54, 2, 2});

    MountFilesystemsToRwMode(address(), 0x20005);

    for (const std::string& line : m_log.texts()) {
        EXPECT_TRUE(line.starts_with("Info 0x20005 ")) << line;
    }
    EXPECT_EQ(m_log.texts().size(), 4U);
}

TEST_F(MountTest, FeatureOfTheErrorsIsTheCallers)
{
    const FailEvery<AaSysComMsgReceiveSelective> nothing;

    MountFilesystemsToRwMode(0, 0x20005);
    receiveMountResp(0x20005);

    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20005 MountFilesystemsToRwMode(): Invalid API_MOUNT_REQ_MSG sender",
                                           "Error 0x20005 receiveMountResp(): Timeout for API_MOUNT_RESP_MSG"));
}

TEST_F(MountTest, NobodyAsksWithoutAnAddress)
{
    const FailEvery<AaSysComMsgCreate> creating;
    const FailEvery<AaSysComMsgReceiveSelective> waiting;

    MountFilesystemsToRwMode(0, feature);

    EXPECT_EQ(creating.count(), 0U);
    EXPECT_EQ(waiting.count(), 0U);
    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x20003 MountFilesystemsToRwMode(): Invalid API_MOUNT_REQ_MSG sender"));
}

TEST_F(MountTest, SilentServiceCostsTenSeconds)
{
    using namespace std::chrono_literals;
    ManualClock clock;
    const auto begin = clock.monotonic();
    std::jthread time([&clock] {
        for (int answerNumber = 0; answerNumber < 2; ++answerNumber) {
            ASSERT_TRUE(clock.waitForSleepers());
            clock.advance(5s - 1us);
            ASSERT_TRUE(clock.waitForSleepers()) << "gives up too early";
            clock.advance(1us);
        }
    });

    MountFilesystemsToRwMode(address(), feature);

    time.join();
    EXPECT_EQ(clock.monotonic() - begin, 10s);
    EXPECT_THAT(m_log.texts(),
                ElementsAre(info + "requestRwMount(): Requesting RW mount for fs 0x35.",
                            info + "requestRwMount(): Requesting RW mount for fs 0x36.", timeoutLine, timeoutLine));
}

TEST_F(MountTest, ServiceThatIsNotThereIsWaitedForAllTheSame)
{
    const FailEvery<AaSysComMsgSendS> undelivered; // as the platform says when nobody holds the cpid
    const FailEvery<AaSysComMsgReceiveSelective> nothing;

    MountFilesystemsToRwMode(address(), feature);

    EXPECT_EQ(undelivered.count(), 2U);
    EXPECT_EQ(nothing.count(), 2U);
    EXPECT_EQ(m_log.count(timeoutLine), 2U);
}

TEST_F(MountTest, LostRequestLeavesTheOtherAnswer)
{
    answer(address(), {0, 54, 2, 2});
    const FailNth<AaSysComMsgCreate> noMemory(1);
    const FailNth<AaSysComMsgReceiveSelective> timeout(2);

    MountFilesystemsToRwMode(address(), feature);

    EXPECT_THAT(m_log.texts(),
                ElementsAre(info + "requestRwMount(): Requesting RW mount for fs 0x36.",
                            receivedLine("fsId 0x36, type 0x2, mode 0x2, success_code 0x0"), timeoutLine));
}

class MountModeTest : public MountTest {
protected:
    static void mount(std::uint32_t mode)
    {
        using namespace dorn::board;
        FileSystem(DescribedBoard::get().part("file-systems", 1)).mount(mode);
    }
    static std::string askedLine(const std::string& mode)
    {
        return info + "isMountNeeded(): ddal_ffs_is_mounted() for FS 1 (0x1) OK. Current mount mode is " + mode + ".";
    }

    dorn::testkit::TestBoard m_board;
};

TEST_F(MountModeTest, ReadOnlyIsWhatWasWanted)
{
    EXPECT_EQ(isMountNeeded(feature, 1, 0), 0U);
    EXPECT_THAT(m_log.texts(),
                ElementsAre(askedLine("RO (1)"),
                            info + "isMountNeeded(): 1 (0x1) is in the requested mode RO already, do nothing"));
}

TEST_F(MountModeTest, ReadWriteIsWhatWasWanted)
{
    mount(DDAL_FFS_READ_WRITE);
    EXPECT_EQ(isMountNeeded(feature, 1, 1), 0U);
    EXPECT_THAT(m_log.texts(),
                ElementsAre(askedLine("RW (2)"),
                            info + "isMountNeeded(): 1 (0x1) is in the requested mode RW already, do nothing"));
}

struct Need {
    std::uint32_t mode;
    std::uint32_t flags;
    const char* text;
};

class MountNeededTest : public MountModeTest, public testing::WithParamInterface<Need> {};

TEST_P(MountNeededTest, IsNeeded)
{
    mount(GetParam().mode);
    EXPECT_EQ(isMountNeeded(feature, 1, GetParam().flags), 1U);
    EXPECT_THAT(m_log.texts(), ElementsAre(askedLine(GetParam().text)));
}

INSTANTIATE_TEST_SUITE_P(Modes, MountNeededTest,
                         testing::Values(Need{1, 1, "RO (1)"}, Need{2, 0, "RW (2)"}, Need{0, 0, "RO (0)"},
                                         Need{0, 1, "RO (0)"}, Need{3, 0, "RO (3)"}, Need{3, 1, "RO (3)"},
                                         Need{7, 1, "RO (7)"}, Need{0xFFFFFFFF, 0, "RO (-1)"}, Need{1, 2, "RO (1)"},
                                         Need{2, 2, "RW (2)"}));

TEST_F(MountModeTest, DriverThatFailsMeansNeeded)
{
    const FailEvery<ddal_ffs_is_mounted> failing(-12);

    EXPECT_EQ(isMountNeeded(feature, 54, 0), 1U);
    EXPECT_EQ(isMountNeeded(feature, 0xFFFFFFFF, 1), 1U);

    EXPECT_THAT(
        m_log.texts(),
        ElementsAre("Warning 0x20003 isMountNeeded(): ddal_ffs_is_mounted() for FS 54 (0x36) FAILED. Returned -12",
                    "Warning 0x20003 isMountNeeded(): ddal_ffs_is_mounted() for FS -1 (0xFFFFFFFF) FAILED. Returned "
                    "-12"));
}

TEST_F(MountModeTest, DriverThatSaysNothingSaysReadOnly)
{
    const FailEvery<ddal_ffs_is_mounted> silent(DDAL_OK); // succeeds and leaves the mode as it was

    EXPECT_EQ(isMountNeeded(feature, 1, 0), 0U);
    EXPECT_EQ(isMountNeeded(feature, 1, 1), 1U);
}

TEST_F(MountModeTest, FeatureOfTheLinesIsTheCallers)
{
    EXPECT_EQ(isMountNeeded(0x20005, 1, 0), 0U);
    const FailEvery<ddal_ffs_is_mounted> failing(-12);
    EXPECT_EQ(isMountNeeded(0x20005, 1, 0), 1U);

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Info 0x20005 isMountNeeded(): ddal_ffs_is_mounted() for FS 1 (0x1) OK. Current mount mode "
                            "is RO (1).",
                            "Info 0x20005 isMountNeeded(): 1 (0x1) is in the requested mode RO already, do nothing",
                            "Warning 0x20005 isMountNeeded(): ddal_ffs_is_mounted() for FS 1 (0x1) FAILED. Returned "
                            "-12"));
}

TEST_F(MountModeTest, GreatNumberOfAFileSystemIsSignedInDecimalAndInUpperCase)
{
    const FailEvery<ddal_ffs_is_mounted> silent(DDAL_OK); // read-only

    EXPECT_EQ(isMountNeeded(feature, 0xFFFFFFAB, 0), 0U);

    EXPECT_THAT(m_log.texts(),
                ElementsAre(info + "isMountNeeded(): ddal_ffs_is_mounted() for FS -85 (0xFFFFFFAB) OK. Current mount "
                                   "mode is RO (1).",
                            info + "isMountNeeded(): -85 (0xFFFFFFAB) is in the requested mode RO already, do "
                                   "nothing"));
}

TEST_F(MountModeTest, FileSystemThatTheBoardDoesNotHaveIsNeeded)
{
    EXPECT_EQ(isMountNeeded(feature, 9, 1), 1U);
    EXPECT_THAT(m_log.texts(), testing::Contains("Warning 0x20003 isMountNeeded(): ddal_ffs_is_mounted() for FS 9 "
                                                 "(0x9) FAILED. Returned 5"));
}

TEST_F(MountModeTest, FunctionsAreCalledFromC)
{
    std::jthread service([this] {
        for (const std::uint32_t id : {53U, 54U}) {
            m_service.expect(0x2B95);
            answer(address(), {0, id, 2, 2});
        }
        mount(DDAL_FFS_READ_WRITE);
    });

    EXPECT_EQ(mountInC(address(), feature), 1U);
    service.join();
    EXPECT_EQ(mountInC(address(), feature), 0U);
}

} // namespace
