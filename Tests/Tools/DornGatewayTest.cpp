// SPDX-License-Identifier: MIT
// `dorn gateway` on the node of a test.
#include "DornCommand.hpp"
#include "RunningBoard.hpp"

#include "NodeTest.hpp"
#include "gateway/Keys.hpp"
#include "gateway/Table.hpp"

#include <arpa/inet.h>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <nlohmann/json.hpp>
#include <sys/socket.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class DornGatewayTest : public testkit::NodeTest {
protected:
    DornGatewayTest() { std::filesystem::create_directories(m_node.boardPath("/opt/dorn")); }

    /// A row of the table, as a person writes it.
    static std::string row(const std::string& node, const std::string& key)
    {
        return node + " 127.0.0.1 5670 " + key + "\n";
    }
    /// Makes the node's keys. @return the public one
    static std::string makeKeys()
    {
        const std::string answer = dorn({"gateway", "keys"}).answer;
        return answer.substr(0, answer.size() - 1);
    }

    std::string m_keyFile = m_node.boardPath(gateway::defaultKeyFile);
    std::string m_tableFile = m_node.boardPath(gateway::defaultTableFile);
};

TEST_F(DornGatewayTest, KeysPrintsThePublicKeyAndNothingElse)
{
    const CommandResult made = dorn({"gateway", "keys"});

    const gateway::KeyPair keys = gateway::readKeyFile(m_keyFile);
    EXPECT_EQ(made, (CommandResult{0, keys.publicKey.text() + "\n", ""}));
    EXPECT_THAT(made.answer, Not(HasSubstr(gateway::PublicKey(keys.secretKey.bytes()).text())));
    EXPECT_EQ(std::filesystem::status(m_keyFile).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(DornGatewayTest, KeysAreReplacedOnlyWhenForced)
{
    const std::string first = makeKeys();

    EXPECT_EQ(
        dorn({"gateway", "keys"}),
        (CommandResult{1, "",
                       "dorn: key file '" + m_keyFile +
                           "' is there already, and the other nodes know this one by it; --force replaces it\n"}));
    EXPECT_EQ(dorn({"gateway", "keys", "--show"}), (CommandResult{0, first + "\n", ""}));
    const CommandResult forced = dorn({"gateway", "keys", "--force"});
    EXPECT_EQ(forced.status, 0) << forced.remarks;
    EXPECT_NE(forced.answer, first + "\n");
    EXPECT_EQ(dorn({"gateway", "keys", "--show"}).answer, forced.answer);
}

TEST_F(DornGatewayTest, KeysGoIntoTheFileThatIsNamed)
{
    const std::string file = m_node.boardRoot() + "/a key";

    const CommandResult made = dorn({"gateway", "keys", file, "--json"});

    const auto json = nlohmann::json::parse(made.answer);
    EXPECT_EQ(json["file"], file);
    EXPECT_EQ(json["publicKey"], gateway::readKeyFile(file).publicKey.text());
    EXPECT_FALSE(std::filesystem::exists(m_keyFile));
}

TEST_F(DornGatewayTest, KeysThatCannotBeMadeOrShownAreStatus1)
{
    EXPECT_EQ(dorn({"gateway", "keys", "--show"}),
              (CommandResult{1, "",
                             "dorn: key file '" + m_keyFile +
                                 "' cannot be read: No such file or directory; 'dorn gateway keys' makes it\n"}));
    EXPECT_EQ(dorn({"gateway", "keys", "/nowhere/key"}),
              (CommandResult{1, "", "dorn: key file '/nowhere/key' cannot be written: No such file or directory\n"}));
    EXPECT_EQ(dorn({"gateway", "keys", "--show", "--force"}).status, 2);
}

TEST_F(DornGatewayTest, CheckPrintsAGoodTable)
{
    const std::string own = makeKeys();
    const std::string other = gateway::makeKeyPair().publicKey.text();
    m_node.writeBoardFile(gateway::defaultTableFile, "0x0F02 board-2 5671 " + other + "\n" + row("0x0F01", own));

    EXPECT_EQ(dorn({"gateway", "check"}), (CommandResult{0,
                                                         "NODE    HOST       PORT  PUBLIC KEY\n"
                                                         "0x0F01  127.0.0.1  5670  " +
                                                             own +
                                                             "\n"
                                                             "0x0F02  board-2    5671  " +
                                                             other + "\n",
                                                         ""}));
    const auto json = nlohmann::json::parse(dorn({"gateway", "check", m_tableFile, "--json"}).answer);
    EXPECT_EQ(json["nodes"].size(), 2U);
    EXPECT_EQ(json["nodes"][1],
              (nlohmann::json{{"node", 0x0F02}, {"host", "board-2"}, {"port", 5671}, {"publicKey", other}}));
    EXPECT_TRUE(json["complaints"].empty());
}

TEST_F(DornGatewayTest, CheckSaysWhatIsWrongWithTheTable)
{
    makeKeys();
    m_node.writeBoardFile(gateway::defaultTableFile, "0x0F02 board-2 port\n");

    EXPECT_EQ(dorn({"gateway", "check"}),
              (CommandResult{1, "",
                             "dorn: " + m_tableFile +
                                 ":1: 3 columns, and no KEY: 'NODE HOST PORT KEY' is expected\n"
                                 "dorn: " +
                                 m_tableFile + ": node 0x0F01, this one, has no row: one is expected\n"}));
    const auto json = nlohmann::json::parse(dorn({"gateway", "check", "--json"}).answer);
    EXPECT_EQ(json["complaints"][0],
              (nlohmann::json{{"line", 1}, {"text", "3 columns, and no KEY: 'NODE HOST PORT KEY' is expected"}}));
}

TEST_F(DornGatewayTest, CheckMissesTheOwnKey)
{
    const std::string own = makeKeys();
    m_node.writeBoardFile(gateway::defaultTableFile, row("0x0F01", gateway::makeKeyPair().publicKey.text()));

    const CommandResult result = dorn({"gateway", "check"});

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.remarks, "dorn: " + m_tableFile + ": node 0x0F01, this one, has another key than its key file: " +
                                  own + " is expected\n");
}

TEST_F(DornGatewayTest, CheckWithoutAnythingSaysWhatIsMissing)
{
    const CommandResult noTable{1, "", "dorn: table '" + m_tableFile + "' cannot be read: No such file or directory\n"};

    EXPECT_EQ(dorn({"gateway", "check"}), noTable);
    makeKeys();
    EXPECT_EQ(dorn({"gateway", "check"}), noTable);
}

/// A table is written on a PC, which is none of the nodes.
TEST_F(DornGatewayTest, TableIsCheckedWhereNoKeysAre)
{
    const std::string key = gateway::makeKeyPair().publicKey.text();
    m_node.writeBoardFile(gateway::defaultTableFile, row("0x0F02", key));
    const std::string remark =
        "dorn: no key file '" + m_keyFile + "' here: whether the table has the row of this node was not checked\n";

    EXPECT_EQ(
        dorn({"gateway", "check"}),
        (CommandResult{0, "NODE    HOST       PORT  PUBLIC KEY\n0x0F02  127.0.0.1  5670  " + key + "\n", remark}));
    m_node.writeBoardFile(gateway::defaultTableFile, "1 a\n");
    EXPECT_EQ(dorn({"gateway", "check"}),
              (CommandResult{1, "",
                             "dorn: " + m_tableFile + ":1: 2 columns, and no PORT: 'NODE HOST PORT KEY' is expected\n" +
                                 remark}));
}

TEST_F(DornGatewayTest, KeyFileThatIsNamedHasToBeThere)
{
    m_node.writeBoardFile(gateway::defaultTableFile, row("0x0F01", gateway::makeKeyPair().publicKey.text()));

    EXPECT_EQ(dorn({"gateway", "check", "--key", "/nowhere/key"}),
              (CommandResult{1, "",
                             "dorn: key file '/nowhere/key' cannot be read: No such file or directory; 'dorn gateway "
                             "keys' makes it\n"}));
}

/// A port that was free a moment ago.
std::string freePort()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), size), 0);
    EXPECT_EQ(getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size), 0);
    close(socket);
    return std::to_string(ntohs(address.sin_port));
}

class DornGatewayRunTest : public DornGatewayTest {
protected:
    /// Writes a table with this node and one whose gateway does not run.
    void writeTable(const std::string& more = "")
    {
        m_node.writeBoardFile(gateway::defaultTableFile, "0x0F01 127.0.0.1 " + m_port + " " + makeKeys() +
                                                             "\n0x0F02 127.0.0.1 1 " +
                                                             gateway::makeKeyPair().publicKey.text() + "\n" + more);
    }
    /// Asks again and again until there is an answer.
    static CommandResult statusOnceItRuns(const DornCommand& gateway, const std::vector<std::string>& options = {})
    {
        std::vector<std::string> arguments{"gateway", "status"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        CommandResult result = dorn(arguments);
        const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
        while (result.status != 0 && gateway.isRunning() && std::chrono::steady_clock::now() < end) {
            result = dorn(arguments);
        }
        return result;
    }

    std::string m_port = freePort();
};

TEST_F(DornGatewayRunTest, GatewayTellsItsStatusAndEndsWellWhenAskedTo)
{
    writeTable();
    DornCommand running({"gateway", "run", "--listen", "127.0.0.1"});

    const CommandResult text = statusOnceItRuns(running);
    const auto json = nlohmann::json::parse(dorn({"gateway", "status", "--json"}).answer);

    EXPECT_THAT(text.answer,
                HasSubstr("gateway of node 0x0F01: process " + std::to_string(running.pid()) + ", since "));
    EXPECT_THAT(text.answer, HasSubstr("\n0x0F02  127.0.0.1:1  "));
    EXPECT_EQ(text.remarks, "");
    EXPECT_EQ(json["pid"], running.pid());
    ASSERT_EQ(json["links"].size(), 1U);
    EXPECT_EQ(json["links"][0]["node"], 0x0F02);
    EXPECT_NE(json["links"][0]["state"], "up");
    running.signal(SIGTERM);
    EXPECT_EQ(running.result(), (CommandResult{0, "", ""}));
    EXPECT_EQ(dorn({"gateway", "status"}),
              (CommandResult{1, "", "dorn: no gateway runs on node 0x0F01; start 'dorn gateway run'\n"}));
}

TEST_F(DornGatewayRunTest, NounAloneRunsTheGateway)
{
    writeTable();
    DornCommand running({"gateway"});

    EXPECT_EQ(statusOnceItRuns(running).status, 0);

    running.signal(SIGINT);
    EXPECT_EQ(running.result(), (CommandResult{0, "", ""}));
}

TEST_F(DornGatewayRunTest, LinkThatIsNotUpIsANoToWhoWantsAllUp)
{
    writeTable();
    DornCommand running({"gateway", "run"});
    ASSERT_EQ(statusOnceItRuns(running).status, 0);

    const CommandResult result = dorn({"gateway", "status", "--up"});

    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.answer, HasSubstr("gateway of node 0x0F01"));
    EXPECT_THAT(result.remarks, ::testing::StartsWith("dorn: node 0x0F02 is not up: "));
}

TEST_F(DornGatewayRunTest, SecondGatewayDoesNotStart)
{
    writeTable();
    DornCommand running({"gateway", "run"});
    ASSERT_EQ(statusOnceItRuns(running).status, 0);

    EXPECT_EQ(dorn({"gateway", "run"}), (CommandResult{1, "",
                                                       "dorn: process " + std::to_string(running.pid()) +
                                                           " is the gateway of node 0x0F01 already\n"}));
}

TEST_F(DornGatewayRunTest, GatewayThatHangsIsGivenUp)
{
    writeTable();
    DornCommand running({"gateway", "run"});
    ASSERT_EQ(statusOnceItRuns(running).status, 0);
    running.signal(SIGSTOP);

    const CommandResult result = dorn({"gateway", "status"});

    running.signal(SIGCONT);
    EXPECT_EQ(result, (CommandResult{1, "",
                                     "dorn: the gateway of node 0x0F01, process " + std::to_string(running.pid()) +
                                         ", does not answer\n"}));
}

TEST_F(DornGatewayRunTest, BadLinesAreLoggedAndTheGoodOnesHold)
{
    writeTable("0x0F03 c port\n");
    setenv("DORN_LOG", "stderr", 1);
    DornCommand running({"gateway", "run"});
    const CommandResult result = statusOnceItRuns(running, {"--json"});
    running.signal(SIGTERM);

    EXPECT_EQ(nlohmann::json::parse(result.answer)["links"].size(), 1U);
    EXPECT_THAT(running.result().remarks,
                HasSubstr(m_tableFile + ":3: 3 columns, and no KEY: 'NODE HOST PORT KEY' is expected"));
}

TEST_F(DornGatewayRunTest, GatewayThatCannotStartSaysWhy)
{
    const std::string noKeys =
        "dorn: key file '" + m_keyFile + "' cannot be read: No such file or directory; 'dorn gateway keys' makes it\n";
    EXPECT_EQ(dorn({"gateway"}), (CommandResult{1, "", noKeys}));
    EXPECT_EQ(dorn({"gateway", "run"}), (CommandResult{1, "", noKeys}));

    makeKeys();
    EXPECT_EQ(dorn({"gateway", "run"}),
              (CommandResult{1, "", "dorn: table '" + m_tableFile + "' cannot be read: No such file or directory\n"}));

    m_node.writeBoardFile(gateway::defaultTableFile, row("0x0F01", gateway::makeKeyPair().publicKey.text()));
    EXPECT_EQ(dorn({"gateway", "run"}).status, 1) << "another key";
    m_node.writeBoardFile(gateway::defaultTableFile, row("0x0F02", gateway::makeKeyPair().publicKey.text()));
    EXPECT_EQ(dorn({"gateway", "run"}).status, 1) << "no row";
}

TEST_F(DornGatewayRunTest, QueueHasTheRoomThatIsAskedFor)
{
    constexpr int count = 1200;           // 72 MiB: more than all queues have unless more is asked for
    constexpr std::uint16_t size = 63000; // bytes of a payload
    writeTable();
    DornCommand running({"gateway", "run", "--queue-bytes", "80M"});
    ASSERT_EQ(statusOnceItRuns(running).status, 0);

    for (int number = 0; number < count; ++number) {
        void* message = AaSysComMsgCreate(1, size, AaSysComSicadGet(0x0300, 0x0F02));
        ASSERT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);
    }

    const auto accepted = [] {
        return nlohmann::json::parse(dorn({"gateway", "status", "--json"}).answer)["links"][0]["accepted"].get<int>();
    };
    EXPECT_TRUE(comesTrue([&] { return accepted() == count; }));
    const auto json = nlohmann::json::parse(dorn({"gateway", "status", "--json"}).answer);
    EXPECT_EQ(json["links"][0]["waiting"], count);
}

TEST_F(DornGatewayRunTest, QueueWithoutRoomIsWrongUse)
{
    for (const char* const option : {"--queue-messages", "--queue-bytes"}) {
        for (const char* const room : {"0", "much", "-1"}) {
            EXPECT_EQ(dorn({"gateway", "run", option, room}).status, 2) << option << " " << room;
        }
    }
    EXPECT_EQ(dorn({"gateway", "run", "--queue-messages", "16777217"}).status, 2);
    EXPECT_EQ(dorn({"gateway", "run", "--queue-bytes", "2G"}).status, 2);
}

TEST_F(DornGatewayRunTest, StatusWhereNothingHasRunMakesNothing)
{
    EXPECT_EQ(dorn({"gateway", "status"}),
              (CommandResult{1, "",
                             "dorn: no gateway has run here: node 0x0F01 in '" + m_node.runDirectory() +
                                 "' (DORN_RUN_DIR and DORN_NID choose another)\n"}));
    EXPECT_FALSE(std::filesystem::exists(m_node.runDirectory() + "/0f01"));
}

} // namespace
} // namespace dorn::tool
