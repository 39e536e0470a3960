// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "AaConfigTag.h"
#include "NodeTest.hpp"
#include "Sanitizers.hpp"
#include "config/TagDatabase.hpp"
#include "node/PerNode.hpp"

#include <csignal>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

class DornTagTest : public testkit::NodeTest {
protected:
    /// Sets a tag that no test asks for until the command prints it.
    static bool isWatching(DornCommand& watch)
    {
        return watch.waitForOutputOf([] { AaConfigTagSetString("sync", "x"); }, "sync");
    }
};

TEST_F(DornTagTest, EachKindOfValueIsSetAsServicesReadIt)
{
    EXPECT_EQ(dorn({"tag", "set", "n", "--u32", "60"}), (CommandResult{0, "n: none -> 60 (u32)\n", ""}));
    std::uint32_t number = 0;
    EXPECT_EQ(AaConfigTagGetU32("n", &number), 0);
    EXPECT_EQ(number, 60U);

    EXPECT_EQ(dorn({"tag", "set", "n", "--u16", "0x3C"}), (CommandResult{0, "n: 60 (u32) -> 60 (u16)\n", ""}));
    EXPECT_EQ(dorn({"tag", "set", "n", "--string", "green"}), (CommandResult{0, "n: 60 (u16) -> green (text)\n", ""}));
    EXPECT_EQ(dorn({"tag", "set", "n", "--string", ""}), (CommandResult{0, "n: green (text) -> empty\n", ""}));
    EXPECT_EQ(dorn({"tag", "set", "n", "--hex", "01 02 03"}), (CommandResult{0, "n: empty -> 010203 (hex)\n", ""}));
}

TEST_F(DornTagTest, SetCanBeToldAsJson)
{
    EXPECT_EQ(dorn({"tag", "set", "n", "--hex", "010203", "--json"}), (CommandResult{0, R"({
  "name": "n",
  "old": null,
  "new": {
    "type": "hex",
    "value": "010203",
    "hex": "010203"
  }
}
)",
                                                                                     ""}));
}

TEST_F(DornTagTest, ValueIsPrintedAlone)
{
    AaConfigTagSetU32("n", 60);
    AaConfigTagSetString("t", "AB");

    EXPECT_EQ(dorn({"tag", "get", "n"}), (CommandResult{0, "60\n", ""}));
    EXPECT_EQ(dorn({"tag", "get", "t"}), (CommandResult{0, "AB\n", ""}));
    EXPECT_EQ(dorn({"tag", "get", "t", "--as", "hex"}), (CommandResult{0, "4142\n", ""}));
    EXPECT_EQ(dorn({"tag", "get", "t", "--as", "u32"}),
              (CommandResult{1, "", "dorn: tag 't': its value has 2 bytes; a u32 has 4\n"}));
}

TEST_F(DornTagTest, UnknownTagIsANo)
{
    AaConfigTagSetU32("n", 60);

    EXPECT_EQ(dorn({"tag", "get", "m"}),
              (CommandResult{1, "", "dorn: no tag 'm' on node 0x0F01; 'dorn tag list' shows all that there are\n"}));
}

TEST_F(DornTagTest, TagOfAProcessCannotBeReached)
{
    const std::string remark =
        "dorn: tag 'tessel.service.x' belongs to each process by itself and cannot be reached from outside\n";

    EXPECT_EQ(dorn({"tag", "set", "tessel.service.x", "--u16", "1"}), (CommandResult{1, "", remark}));
    EXPECT_EQ(dorn({"tag", "get", "tessel.service.x"}), (CommandResult{1, "", remark}));
}

TEST_F(DornTagTest, NameAndValueHaveTheirGreatestSize)
{
    const std::string name(256, 'n');

    EXPECT_EQ(
        dorn({"tag", "set", name, "--u16", "1"}),
        (CommandResult{2, "", "dorn: TAG: a name has 1 to 255 bytes, this one 256\nTry 'dorn tag set --help'\n"}));
    EXPECT_EQ(dorn({"tag", "set", "n", "--string", std::string(65'536, 'v')}),
              (CommandResult{
                  2, "", "dorn: a tag's value has at most 65535 bytes, this one 65536\nTry 'dorn tag set --help'\n"}));
}

TEST_F(DornTagTest, ListIsByNameAndBegin)
{
    AaConfigTagSetU32("board.b", 60);
    AaConfigTagSetString("board.a", "green");
    AaConfigTagSetString("other", "x");

    EXPECT_EQ(dorn({"tag", "list", "board."}), (CommandResult{0,
                                                              "TAG      TYPE  VALUE\n"
                                                              "board.a  text  green\n"
                                                              "board.b  u32   60\n",
                                                              ""}));
    EXPECT_EQ(dorn({"tag", "list", "--names"}), (CommandResult{0, "board.a\nboard.b\nother\n", ""}));
    EXPECT_EQ(dorn({"tag", "list", "none"}),
              (CommandResult{1, "", "dorn: no tag on node 0x0F01 begins with 'none'\n"}));
    EXPECT_EQ(dorn({"tag", "list", "other", "--json"}), (CommandResult{0, R"([
  {
    "name": "other",
    "type": "text",
    "value": "x",
    "hex": "78"
  }
]
)",
                                                                       ""}));
}

TEST_F(DornTagTest, WatchPrintsEachSetEvenOfTheSameValue)
{
    if (test::hasThreadSanitizer) {
        GTEST_SKIP() << test::signalIsKeptBack;
    }
    AaConfigTagSetU32("n", 1);
    DornCommand watch({"tag", "watch", "n", "sync"});
    ASSERT_TRUE(isWatching(watch));

    AaConfigTagSetU32("n", 2);
    AaConfigTagSetU32("other", 2);
    AaConfigTagSetU32("n", 2);
    AaConfigTagSetString("n", "end");
    ASSERT_TRUE(watch.waitForOutput("end (text)\n"));
    watch.signal(SIGINT);

    EXPECT_EQ(watch.waitForEnd(), 0);
    const std::string answer = replaced(withoutTimes(watch.standardOutput()), "TIME sync: x (text)\n", "");
    EXPECT_EQ(answer, "TIME n: 2 (u32)\nTIME n: 2 (u32)\nTIME n: end (text)\n");
    EXPECT_EQ(watch.standardError(), "");
}

TEST_F(DornTagTest, ServiceThatIsStoppedInASetKeepsNobodyFromReading)
{
    AaConfigTagSetU32("n", 1);
    host::closeNode();
    host::TagDatabase database(host::PerNode<host::RunDirectory>::get());
    const host::TagWrite write(database);
    EXPECT_EQ(dorn({"tag", "get", "n"}), (CommandResult{0, "1\n", ""}));
    EXPECT_EQ(dorn({"tag", "list"}).status, 0);
}

TEST_F(DornTagTest, WatchEndsWithItsCount)
{
    AaConfigTagSetU32("n", 1);
    DornCommand watch({"tag", "watch", "--count", "1", "--json"});
    ASSERT_TRUE(isWatching(watch));

    EXPECT_EQ(watch.waitForEnd(), 0);
    EXPECT_EQ(withoutTimes(watch.standardOutput()),
              R"({"time":"TIME","name":"sync","type":"text","value":"x","hex":"78"})"
              "\n");
}

TEST_F(DornTagTest, WatchThatSeesTooLittleInItsTimeIsANo)
{
    AaConfigTagSetU32("n", 1);

    EXPECT_EQ(dorn({"tag", "watch", "--count", "1", "--timeout", "0.05"}), (CommandResult{1, "", ""}));
}

TEST_F(DornTagTest, WatchEndsWithSigtermToo)
{
    if (test::hasThreadSanitizer) {
        GTEST_SKIP() << test::signalIsKeptBack;
    }
    AaConfigTagSetU32("n", 1);
    DornCommand watch({"tag", "watch"});
    ASSERT_TRUE(isWatching(watch));

    watch.signal(SIGTERM);

    EXPECT_EQ(watch.waitForEnd(), 0);
}

} // namespace
} // namespace dorn::tool
