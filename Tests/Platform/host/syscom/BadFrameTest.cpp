// SPDX-License-Identifier: MIT
#include "PeerProcess.hpp"
#include "RawSender.hpp"
#include "SysComTest.hpp"

#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace dorn::host::test {
namespace {

constexpr TAaSysComCpid cpid = 0x0300;

/// The test's EU holds a cpid, and this process itself sends to its socket what no transport would.
class BadFrameTest : public SysComTest {
protected:
    BadFrameTest() { AaSysComUserRegister(cpid, AaProEuCurrent()); }

    RawSender connect() const { return {m_node.nodeDirectory(), cpid}; }
    static FrameHeader header(std::uint16_t payloadSize = 0) { return goodHeader(addressOf(cpid), payloadSize); }
    std::string dropped(const std::string& reason, const std::string& fields, unsigned count = 1) const
    {
        return "Warning 0x0 Dropped what process " + std::to_string(getpid()) + " sent to cpid 0x0300: " + reason +
               " (" + fields + "; " + std::to_string(count) + " dropped so far)";
    }
    /// The connection still carries messages.
    static void expectAlive(const RawSender& sender)
    {
        ASSERT_TRUE(sender.send(frameOf(header())));
        EXPECT_EQ(takeId(generousTimeout), 0x55U);
    }
};

TEST_F(BadFrameTest, PacketLongerThanTheGreatestFrameIsDropped)
{
    const RawSender sender = connect();
    ASSERT_TRUE(sender.send(frameOf(header(65535), 65536)));

    expectAlive(sender);
    EXPECT_EQ(m_log.texts(), std::vector{dropped("it is too long", "id=0x0000 receiver=0x00000000 sender=0x00000000, "
                                                                   "65559 bytes")});
}

TEST_F(BadFrameTest, EmptyPacketIsDropped)
{
    const RawSender sender = connect();
    ASSERT_TRUE(sender.send({}));

    expectAlive(sender);
    EXPECT_EQ(m_log.texts(), std::vector{dropped("it is too short", "id=0x0000 receiver=0x00000000 sender=0x00000000, "
                                                                    "0 bytes")});
}

TEST_F(BadFrameTest, MessagesAroundEmptyPacketsArrive)
{
    {
        const RawSender sender = connect();
        sender.send(frameOf(header()));
        sender.send({});
        sender.send({});
        sender.send(frameOf(header()));
    }

    EXPECT_EQ(takeId(generousTimeout), 0x55U);
    EXPECT_EQ(takeId(generousTimeout), 0x55U);
}

TEST_F(BadFrameTest, GarbageIsDropped)
{
    const RawSender sender = connect();
    ASSERT_TRUE(sender.send(Bytes(100, std::byte{0xEE})));

    expectAlive(sender);
    EXPECT_EQ(m_log.texts(), std::vector{dropped("it is no message", "id=0xEEEEEEEE receiver=0xEEEEEEEE "
                                                                     "sender=0xEEEEEEEE, 100 bytes")});
}

TEST_F(BadFrameTest, FrameOfAnotherVersionIsDropped)
{
    const RawSender sender = connect();
    FrameHeader later = header();
    later.version = FrameHeader::currentVersion + 1;
    ASSERT_TRUE(sender.send(frameOf(later)));

    expectAlive(sender);
    EXPECT_EQ(m_log.texts(), std::vector{dropped("it has another version", "id=0x0055 receiver=0x0F010300 "
                                                                           "sender=0x00000000, 24 bytes")});
}

TEST_F(BadFrameTest, FrameThatIsNotAsLongAsItSaysIsDropped)
{
    const RawSender sender = connect();
    ASSERT_TRUE(sender.send(frameOf(header(4), 3)));
    ASSERT_TRUE(sender.send(frameOf(header(4), 5)));

    expectAlive(sender);
    EXPECT_EQ(m_log.texts().size(), 2U);
}

TEST_F(BadFrameTest, NoneOfThousandsOfRandomPacketsGetsThrough)
{
    const RawSender sender = connect();
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        Bytes bytes = frameOf(header(), random() % 64);
        for (auto changes = 1 + random() % 3; changes > 0; --changes) {
            bytes[random() % std::min<std::size_t>(bytes.size(), 8)] ^= static_cast<std::byte>(1 + random() % 255);
        }
        if (std::memcmp(bytes.data(), frameOf(header()).data(), 8) == 0) {
            continue; // a change undone
        }
        ASSERT_TRUE(sender.send(bytes));
        while (const TAaSysComMsgId id = takeId()) {
            // Only a length that fits its size may pass.
            ASSERT_EQ(id, 0x55U);
        }
    }
    expectAlive(sender);
}

TEST_F(BadFrameTest, ForgedSenderIsDropped)
{
    PeerProcess holder;
    holder.ask({.order = Order::Register, .cpid = 0x0042});
    const RawSender sender = connect();
    FrameHeader forged = header();
    forged.sender = addressOf(0x0042);
    ASSERT_TRUE(sender.send(frameOf(forged)));

    expectAlive(sender);
    EXPECT_EQ(m_log.texts(), std::vector{dropped("its sender is forged", "id=0x0055 receiver=0x0F010300 "
                                                                         "sender=0x0F010042, 24 bytes")});
}

TEST_F(BadFrameTest, ForgedSenderOfAClosedConnectionIsDroppedToo)
{
    PeerProcess holder;
    holder.ask({.order = Order::Register, .cpid = 0x0042});
    {
        const RawSender sender = connect();
        FrameHeader forged = header();
        forged.sender = addressOf(0x0042);
        ASSERT_TRUE(sender.send(frameOf(forged)));
    }

    EXPECT_EQ(takeId(AA_NO_WAIT), 0U);
    EXPECT_EQ(m_log.texts(), std::vector{dropped("its sender is forged", "id=0x0055 receiver=0x0F010300 "
                                                                         "sender=0x0F010042, 24 bytes")});
}

TEST_F(BadFrameTest, OwnCpidInAForgedFrameOfAnotherProcessIsDropped)
{
    PeerProcess peer;
    EXPECT_EQ(peer.ask({.order = Order::Send, .cpid = cpid, .count = 1, .sender = address()}).first, 1U);
    EXPECT_EQ(takeId(AA_NO_WAIT), 0U);

    char fields[100];
    std::snprintf(fields, sizeof fields, "id=0x7003 receiver=0x0F010300 sender=0x%08X, 40 bytes", address());
    EXPECT_EQ(m_log.texts(), std::vector<std::string>{"Warning 0x0 Dropped what process " + std::to_string(peer.pid()) +
                                                      " sent to cpid 0x0300: its sender is forged (" + fields +
                                                      "; 1 dropped so far)"});
}

TEST_F(BadFrameTest, FloodOfBadPacketsDoesNotFloodTheLog)
{
    const RawSender sender = connect();
    for (unsigned count = 0; count < 1000; ++count) {
        ASSERT_TRUE(sender.send(Bytes(8)));
        takeId();
    }

    expectAlive(sender);
    EXPECT_EQ(m_log.texts().size(), 10U);
}

/// In a child: becomes another user and sends a frame to the socket. @return exit status 0 when it could connect.
int sendAsAnotherUser(const std::string& nodeDirectory)
{
    constexpr uid_t nobody = 65534;
    if (seteuid(nobody) != 0) {
        return 2;
    }
    try {
        const RawSender sender(nodeDirectory, cpid);
        sender.send(frameOf(goodHeader(0x0F010000 | cpid)));
    } catch (const std::system_error&) {
        return 1;
    }
    return 0;
}

TEST_F(BadFrameTest, ConnectionOfAnotherUserIsRefused)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs to become another user";
    }
    // Somebody has opened all doors that keep other users out.
    std::filesystem::path path = m_node.nodeDirectory() + "/cpid/0300";
    chmod(path.c_str(), 0777);
    for (int level = 0; level < 4; ++level) {
        path = path.parent_path();
        chmod(path.c_str(), 0755);
    }
    const pid_t child = fork();
    if (child == 0) {
        _exit(sendAsAnotherUser(m_node.runDirectory() + "/0f01"));
    }
    int status = -1;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);

    EXPECT_EQ(takeId(AA_NO_WAIT), 0U);

    EXPECT_EQ(m_log.texts(), std::vector<std::string>{"Warning 0x0 Refused a connection of process " +
                                                      std::to_string(child) + " of user 65534 to cpid 0x0300"});
}

} // namespace
} // namespace dorn::host::test
