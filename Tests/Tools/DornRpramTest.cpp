// SPDX-License-Identifier: MIT
// `dorn rpram` on the storage of a board.
#include "DornCommand.hpp"

#include "NodeTest.hpp"
#include "RpramShared.h"
#include "text/Json.hpp"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace dorn::tool {
namespace {

constexpr const char* user1File = "/var/tmp/hwapi/RP_RAM_field_user1.txt";

class DornRpramTest : public testkit::NodeTest {};

TEST_F(DornRpramTest, NothingWrittenIsARemark)
{
    EXPECT_EQ(dorn({"rpram", "list"}),
              (CommandResult{0, "", "dorn: no reset-persistent field has been written; --all lists them\n"}));
    EXPECT_EQ(dorn({"rpram", "list", "--json"}), (CommandResult{0, "[]\n", ""}));
    EXPECT_EQ(dorn({"rpram", "get", "user1"}), (CommandResult{1, "", "dorn: field 'user1' has not been written\n"}));
}

TEST_F(DornRpramTest, WhatServicesHaveWrittenIsListed)
{
    ApiResetRpramSet(ERP_RAM_field_ResetType, 3, "warm");
    ApiResetRpramSet(ERP_RAM_hdbde_ISTI_counter_LSP2, 0xFFFFFFFF, "with\x1B");

    EXPECT_EQ(dorn({"rpram", "list"}), (CommandResult{0,
                                                      "NUMBER  FIELD              VALUE       TEXT\n"
                                                      "0       ResetType          0x3         warm\n"
                                                      "53      ISTI_counter_LSP2  0xFFFFFFFF  with\\x1b\n",
                                                      ""}));
    const Json json = Json::parse(dorn({"rpram", "list", "--json"}).answer);
    ASSERT_EQ(json.size(), 2U);
    EXPECT_EQ(json[1],
              (Json{{"number", 53}, {"field", "ISTI_counter_LSP2"}, {"value", 0xFFFFFFFFU}, {"text", "with\x1B"}}));
}

TEST_F(DornRpramTest, AllFieldsAreListedWhenAsked)
{
    ApiResetRpramSet(ERP_RAM_hdbde_test_mode_LCP, 1, "");
    const Json json = Json::parse(dorn({"rpram", "list", "--all", "--json"}).answer);

    ASSERT_EQ(json.size(), 75U);
    EXPECT_EQ(json[0], (Json{{"number", 0}, {"field", "ResetType"}, {"value", nullptr}, {"text", nullptr}}));
    EXPECT_EQ(json[74], (Json{{"number", 76}, {"field", "test_mode_LCP"}, {"value", 1}, {"text", ""}}));
}

TEST_F(DornRpramTest, EveryNameIsAnArgument)
{
    const std::string names = dorn({"rpram", "list", "--names"}).answer;
    EXPECT_EQ(std::count(names.begin(), names.end(), '\n'), 75);
    for (const char* const name : {"ResetType", "user20", "PM_sleep_state_LBR4", "ISTI_counter_LCA1", "ISTI"}) {
        EXPECT_NE(("\n" + names).find("\n" + std::string(name) + "\n"), std::string::npos) << name;
        EXPECT_EQ(dorn({"rpram", "set", name, "7"}).status, 0) << name;
        EXPECT_EQ(dorn({"rpram", "get", name}).answer, "0x7\n") << name;
    }
}

TEST_F(DornRpramTest, WhatIsSetServicesRead)
{
    EXPECT_EQ(dorn({"rpram", "set", "user1", "0x1F", "by hand: why"}), (CommandResult{0, "", ""}));

    std::uint32_t value = 0;
    char text[RPRAM_TEXT_SIZE] = "";
    EXPECT_EQ(ApiResetRpramGet(ERP_RAM_field_user1, &value, text), 0);
    EXPECT_EQ(value, 0x1FU);
    EXPECT_STREQ(text, "by hand: why");
    EXPECT_EQ(dorn({"rpram", "get", "1"}).answer, "0x1F by hand: why\n");
    EXPECT_EQ(Json::parse(dorn({"rpram", "get", "user1", "--json"}).answer),
              (Json{{"number", 1}, {"field", "user1"}, {"value", 31}, {"text", "by hand: why"}}));
}

TEST_F(DornRpramTest, LongTextIsCutAsServicesCutIt)
{
    EXPECT_EQ(dorn({"rpram", "set", "user1", "1", std::string(200, 't')}).status, 0);
    EXPECT_EQ(m_node.readBoardFile(user1File), "0x1 :" + std::string(94, 't'));
}

TEST_F(DornRpramTest, HistoryIsTheLinesOfTheFile)
{
    for (const char* const value : {"1", "2", "3"}) {
        dorn({"rpram", "set", "user1", value, "v"});
    }
    EXPECT_EQ(dorn({"rpram", "get", "user1", "--history"}).answer, "0x3 :v\n0x2 :v\n0x1 :v\n");

    const std::string longLine(10'000, 'l');
    m_node.writeBoardFile(user1File, "0x1 :\x1B\n" + longLine + "\n");
    EXPECT_TRUE(dorn({"rpram", "get", "user1", "--history"}).answer == "0x1 :\\x1b\n" + longLine + "\n");
}

TEST_F(DornRpramTest, FieldsWithoutStorageAreNone)
{
    for (const char* const field : {"19", "20", "77", "78", "user3", "", "bootExtPostResultAddr", "0x100000001"}) {
        const CommandResult unknown{2, "",
                                    "dorn: there is no field '" + std::string(field) +
                                        "'; 'dorn rpram list --names' lists them\nTry 'dorn rpram get --help'\n"};
        EXPECT_EQ(dorn({"rpram", "get", field}), unknown);
    }
}

TEST_F(DornRpramTest, WrongValuesAreWrongUse)
{
    EXPECT_EQ(dorn({"rpram", "set", "user1", "x"}).status, 2);
    EXPECT_EQ(dorn({"rpram", "set", "user1", "0x100000000"}).status, 2);
    EXPECT_EQ(dorn({"rpram", "set", "user1"}).status, 2);
    EXPECT_EQ(dorn({"rpram", "set", "user1", "1", "a\nb"}),
              (CommandResult{2, "",
                             "dorn: TEXT: a line feed in it would begin an earlier value\n"
                             "Try 'dorn rpram set --help'\n"}));
    EXPECT_FALSE(std::filesystem::exists(m_node.boardPath(user1File)));
}

TEST_F(DornRpramTest, StorageThatCannotBeWrittenIsNamed)
{
    m_node.writeBoardFile("/var/tmp/hwapi", "a file in the directory's place");

    EXPECT_EQ(dorn({"rpram", "set", "user1", "1"}),
              (CommandResult{1, "", "dorn: '" + std::string(user1File) + "' cannot be written: Not a directory\n"}));
    EXPECT_EQ(dorn({"rpram", "get", "user1"}),
              (CommandResult{1, "", "dorn: '" + std::string(user1File) + "' cannot be read: Not a directory\n"}));
}

TEST_F(DornRpramTest, FileThatAnswersNothingIsGivenUp)
{
    std::filesystem::create_directories(m_node.boardPath("/var/tmp/hwapi"));
    ASSERT_EQ(mkfifo(m_node.boardPath(user1File).c_str(), 0600), 0);

    EXPECT_EQ(dorn({"rpram", "get", "user1"}).status, 1);
}

} // namespace
} // namespace dorn::tool
