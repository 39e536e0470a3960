// SPDX-License-Identifier: MIT
#include "gateway/Table.hpp"

#include "TestNode.hpp"

#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace dorn::gateway {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A key that no other number has.
PublicKey keyOf(unsigned number)
{
    KeyBytes bytes{};
    bytes[0] = static_cast<std::uint8_t>(number >> 8);
    bytes[1] = static_cast<std::uint8_t>(number);
    return PublicKey(bytes);
}

std::string keyText(unsigned number)
{
    return keyOf(number).text();
}

/// The complaints as a person sees them.
std::vector<std::string> complaintsIn(const TableReading& reading)
{
    std::vector<std::string> texts;
    for (const TableComplaint& complaint : reading.complaints) {
        texts.push_back(complaintText("t", complaint));
    }
    return texts;
}

std::vector<std::string> complaintsAbout(const std::string& text)
{
    return complaintsIn(parseTable(text));
}

TEST(GatewayTableTest, RowsAreReadInWhateverOrderAndKeptByNode)
{
    const TableReading reading =
        parseTable("# node host port key\n"
                   "\n"
                   "3842 \t board-2.example.org\t5671 " +
                   keyText(2) + " # the other half\r\n" + "   # more\n" + "0x0F01 192.168.10.1 5670 " + keyText(1) +
                   "\n0xf03 fe80::1%eth0.100 65535 " + keyText(3));

    EXPECT_THAT(reading.complaints, IsEmpty());
    EXPECT_THAT(reading.table.rows(), ElementsAre(TableRow{0x0F01, "192.168.10.1", 5670, keyOf(1)},
                                                  TableRow{0x0F02, "board-2.example.org", 5671, keyOf(2)},
                                                  TableRow{0x0F03, "fe80::1%eth0.100", 65535, keyOf(3)}));
}

TEST(GatewayTableTest, NodesAreFoundByIdAndByKey)
{
    const Table table({{0x0F02, "b", 1, keyOf(2)}, {0x0F01, "a", 1, keyOf(1)}});

    ASSERT_NE(table.find(0x0F01), nullptr);
    EXPECT_EQ(table.find(0x0F01)->host, "a");
    EXPECT_EQ(table.find(0x0F03), nullptr);
    EXPECT_EQ(table.find(0), nullptr);
    ASSERT_NE(table.find(keyOf(2)), nullptr);
    EXPECT_EQ(table.find(keyOf(2))->node, 0x0F02U);
    EXPECT_EQ(table.find(keyOf(3)), nullptr);
}

TEST(GatewayTableTest, RowsAtOddsMakeNoTable)
{
    const TableRow row{1, "a", 1, keyOf(1)};

    EXPECT_THROW(Table({row, {1, "b", 2, keyOf(2)}}), std::invalid_argument);
    EXPECT_THROW(Table({row, {2, "a", 1, keyOf(2)}}), std::invalid_argument);
    EXPECT_THROW(Table({row, {2, "b", 2, keyOf(1)}}), std::invalid_argument);
    EXPECT_EQ(Table({row, {2, "a", 2, keyOf(2)}}).rows().size(), 2U);
}

struct BadLine {
    const char* columns; ///< without the key
    const char* complaint;
};

constexpr std::array badLines{
    BadLine{"0 a 1", "node '0' is none: a number from 1 to 65535 or 0xFFFF is expected"},
    BadLine{"65536 a 1", "node '65536' is none: a number from 1 to 65535 or 0xFFFF is expected"},
    BadLine{"0x10000 a 1", "node '0x10000' is none: a number from 1 to 65535 or 0xFFFF is expected"},
    BadLine{"0x a 1", "node '0x' is none: a number from 1 to 65535 or 0xFFFF is expected"},
    BadLine{"-1 a 1", "node '-1' is none: a number from 1 to 65535 or 0xFFFF is expected"},
    BadLine{"4294967297 a 1", "node '4294967297' is none: a number from 1 to 65535 or 0xFFFF is expected"},
    BadLine{"0F01 a 1", "node '0F01' is none: a number from 1 to 65535 or 0xFFFF is expected"},
    BadLine{"\x1B[2J a 1", "node '?[2J' is none: a number from 1 to 65535 or 0xFFFF is expected"},
    BadLine{"1 a_b! 1", "host 'a_b!' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 tcp://a 1", "host 'tcp://a' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 * 1", "host '*' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 [::1] 1", "host '[::1]' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 ::1%sixteen-letters- 1",
            "host '::1%sixteen-letters-' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 ::1% 1", "host '::1%' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 1:2 1", "host '1:2' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 300.1.1.1 1", "host '300.1.1.1' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 1.2.3 1", "host '1.2.3' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 a..b 1", "host 'a..b' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 -a 1", "host '-a' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 a. 1", "host 'a.' is none: a name or an IPv4 or IPv6 address is expected"},
    BadLine{"1 a 0", "port '0' is none: a number from 1 to 65535 is expected"},
    BadLine{"1 a 65536", "port '65536' is none: a number from 1 to 65535 is expected"},
    BadLine{"1 a 0x10", "port '0x10' is none: a number from 1 to 65535 is expected"},
    BadLine{"1 a 56x", "port '56x' is none: a number from 1 to 65535 is expected"},
};

TEST(GatewayTableTest, BadColumnIsNamedWithWhatIsExpected)
{
    for (const BadLine& bad : badLines) {
        const TableReading reading = parseTable(std::string(bad.columns) + " " + keyText(9) + "\n2 b 2 " + keyText(2));

        EXPECT_THAT(complaintsIn(reading), ElementsAre("t:1: " + std::string(bad.complaint)));
        EXPECT_THAT(reading.table.rows(), ElementsAre(TableRow{2, "b", 2, keyOf(2)})) << bad.columns;
    }
}

TEST(GatewayTableTest, LongestHostIsTakenAndALongerOneNot)
{
    const std::string label(63, 'a');
    const std::string host = label + "." + label + "." + label + "." + std::string(61, 'a');
    ASSERT_EQ(host.size(), maxHostLength);

    EXPECT_THAT(complaintsAbout("1 " + host + " 1 " + keyText(1)), IsEmpty());
    EXPECT_EQ(complaintsAbout("1 " + host + "a 1 " + keyText(1)).size(), 1U);
    EXPECT_EQ(complaintsAbout("1 " + label + "a 1 " + keyText(1)).size(), 1U);
}

/// A person may have taken the secret key for the public one.
TEST(GatewayTableTest, BadKeyIsNotQuoted)
{
    const std::string expected =
        "t:1: key is none: the 40 characters that 'dorn gateway keys' has printed are expected";

    EXPECT_THAT(complaintsAbout("1 a 1 " + keyText(1) + "0"), ElementsAre(expected));
    EXPECT_THAT(complaintsAbout("1 a 1 secret"), ElementsAre(expected));
    EXPECT_THAT(complaintsAbout("1 a 1 #####" + std::string(35, '0')), ElementsAre(expected));
}

TEST(GatewayTableTest, ColumnsThatAreMissingOrTooManyAreNamed)
{
    EXPECT_THAT(complaintsAbout("1\n1 a\n1 a 1\n1 a 1 " + keyText(1) + " up\n"),
                ElementsAre("t:1: 1 column, and no HOST: 'NODE HOST PORT KEY' is expected",
                            "t:2: 2 columns, and no PORT: 'NODE HOST PORT KEY' is expected",
                            "t:3: 3 columns, and no KEY: 'NODE HOST PORT KEY' is expected",
                            "t:4: column 'up' is unknown: behind the key nothing but a comment is expected"));
}

TEST(GatewayTableTest, FirstOfTwoRowsAtOddsHolds)
{
    const TableReading reading =
        parseTable("# nodes\n0x0F01 a 1 " + keyText(1) + "\n0x0F01 b 2 " + keyText(2) + "\n0x0F02 b 2 " + keyText(1) +
                   "\n0x0F03 a 1 " + keyText(3) + "\n0x0F04 a 2 " + keyText(4) + "\n");

    EXPECT_THAT(
        complaintsIn(reading),
        ElementsAre("t:3: node 0x0F01 has a row already (line 2), which holds: one row for each node is expected",
                    "t:4: key is that of node 0x0F01 (line 2): for each node a key of its own is expected",
                    "t:5: host and port are those of node 0x0F01 (line 2): for each node a place of its own is "
                    "expected"));
    EXPECT_THAT(reading.table.rows(),
                ElementsAre(TableRow{0x0F01, "a", 1, keyOf(1)}, TableRow{0x0F04, "a", 2, keyOf(4)}));
}

struct PlaceTwice {
    const char* first;
    const char* second;
    bool isSame;
};

constexpr std::array placesTwice{
    PlaceTwice{"board-2", "BOARD-2", true},
    PlaceTwice{"Board.Example", "board.example", true},
    PlaceTwice{"::1", "0:0::0001", true},
    PlaceTwice{"FE80::A%eth0", "fe80::a%eth0", true},
    PlaceTwice{"fe80::a%eth0", "fe80::a%ETH0", false}, // names of interfaces have a case
    PlaceTwice{"fe80::a%eth0", "fe80::a", false},
    PlaceTwice{"board-2", "board-3", false},
};

TEST(GatewayTableTest, PlaceIsTheSameHoweverItsHostIsWritten)
{
    for (const auto& [first, second, isSame] : placesTwice) {
        const std::vector<std::string> complaints = complaintsAbout("1 " + std::string(first) + " 1 " + keyText(1) +
                                                                    "\n2 " + second + " 1 " + keyText(2) + "\n");

        EXPECT_EQ(complaints.size(), isSame ? 1U : 0U) << first << " " << second;
        EXPECT_THAT(complaintsAbout("1 " + std::string(first) + " 1 " + keyText(1) + "\n2 " + second + " 2 " +
                                    keyText(2) + "\n"),
                    IsEmpty())
            << "another port";
    }
    EXPECT_THROW(Table({{1, "a", 1, keyOf(1)}, {2, "A", 1, keyOf(2)}}), std::invalid_argument);
}

TEST(GatewayTableTest, LongestLineIsTakenAndALongerOneNot)
{
    std::string line = "1 a 1 " + keyText(1) + " #";
    line.append(maxTableLineLength - line.size(), '#');

    EXPECT_THAT(complaintsAbout(line + "\r\n"), IsEmpty());
    EXPECT_THAT(complaintsAbout(line + "#\n"), ElementsAre("t:1: line of 513 bytes: at most 512 are expected"));
}

TEST(GatewayTableTest, OwnNodeWithoutRowIsMissed)
{
    const std::string text = "0x0F02 b 2 " + keyText(2) + "\n";

    EXPECT_THAT(complaintsIn(parseTable(text, 0x0F01)),
                ElementsAre("t: node 0x0F01, this one, has no row: one is expected"));
    EXPECT_THAT(complaintsIn(parseTable(text, 0x0F02)), IsEmpty());
    EXPECT_THAT(complaintsIn(parseTable("", 0x0F02)),
                ElementsAre("t: node 0x0F02, this one, has no row: one is expected"));
}

TEST(GatewayTableTest, RowBeyondTheLastIsRefused)
{
    std::string text;
    for (unsigned node = 1; node <= maxTableRows + 1; ++node) {
        text += std::to_string(node) + " a " + std::to_string(node) + " " + keyText(node) + "\n";
    }

    const TableReading reading = parseTable(text);

    EXPECT_EQ(reading.table.rows().size(), maxTableRows);
    EXPECT_THAT(complaintsIn(reading), ElementsAre("t:257: row beyond the 256th: so many nodes are expected at most"));
}

TEST(GatewayTableTest, FloodOfBadLinesIsCounted)
{
    std::string text;
    for (unsigned line = 0; line < 1000; ++line) {
        text += "x\n";
    }

    const TableReading reading = parseTable(text, 7);

    ASSERT_EQ(reading.complaints.size(), 52U);
    EXPECT_EQ(reading.complaints[49].line, 50U);
    EXPECT_EQ(complaintText("t", reading.complaints[50]), "t: 950 more lines are bad");
    EXPECT_EQ(reading.complaints[51].text, "node 0x0007, this one, has no row: one is expected");
}

TEST(GatewayTableTest, BytesThatAreNoTextDoNoHarm)
{
    const std::string text("1\0a 1 \xFF\n\0\n\r\n\r\r\n", 17);

    EXPECT_EQ(parseTable(text).table.rows().size(), 0U);
    EXPECT_EQ(complaintsAbout(std::string("\0", 1)).size(), 1U);
}

class GatewayTableFileTest : public ::testing::Test {
protected:
    std::string failureOf(const std::string& path) const
    {
        try {
            readTable(path);
        } catch (const TableError& error) {
            return error.what();
        }
        return "";
    }

    testkit::TestNode m_node;
    std::string m_path = m_node.boardPath(defaultTableFile);
};

TEST_F(GatewayTableFileTest, FileIsRead)
{
    m_node.writeBoardFile(defaultTableFile, "1 a 1 " + keyText(1) + "\n2 a x\n");

    const TableReading reading = readTable(m_path, 1);

    EXPECT_EQ(reading.table.rows().size(), 1U);
    ASSERT_EQ(reading.complaints.size(), 1U);
    EXPECT_EQ(reading.complaints[0].line, 2U);
}

TEST_F(GatewayTableFileTest, WhatCannotBeReadIsSaid)
{
    EXPECT_EQ(failureOf(m_path), "table '" + m_path + "' cannot be read: No such file or directory");
    EXPECT_EQ(failureOf(m_node.boardRoot()), "table '" + m_node.boardRoot() + "' is no regular file");
    const std::string pipe = m_node.boardRoot() + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(failureOf(pipe), "table '" + pipe + "' is no regular file");
}

TEST_F(GatewayTableFileTest, GreatestFileIsReadAndAGreaterOneNot)
{
    std::string text(maxTableFileSize, '\n');
    m_node.writeBoardFile(defaultTableFile, text);
    EXPECT_EQ(failureOf(m_path), "");

    m_node.writeBoardFile(defaultTableFile, text + "\n");
    EXPECT_EQ(failureOf(m_path), "table '" + m_path + "' is greater than 1048576 bytes");
}

} // namespace
} // namespace dorn::gateway
