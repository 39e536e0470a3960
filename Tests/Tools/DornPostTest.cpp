// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "AaFile.h"
#include "PostFile.h"
#include "TestNode.hpp"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace dorn::tool {
namespace {

using nlohmann::json;

constexpr const char* path = "/ffs/run/post.txt";

class DornPostTest : public testing::Test {
protected:
    static json shown(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments{"post", "show", path, "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const CommandResult result = dorn(arguments);
        EXPECT_EQ(result.status, 0) << result.remarks;
        return json::parse(result.answer);
    }

    testkit::TestNode m_node;
};

TEST_F(DornPostTest, ResultsOfTheMainControllerAreShown)
{
    ASSERT_EQ(AaFileCreateDir("/ffs/run"), 0);
    SMcuPostResult result{};
    result.PostMountDb = 0x1F;
    ASSERT_EQ(UpdateMcuPost(path, &result), EStatus_NoError);

    EXPECT_EQ(dorn({"post", "show", path}), (CommandResult{0,
                                                           "latest\n"
                                                           "TEST               RESULT\n"
                                                           "PostRam            0x00000000\n"
                                                           "PostBootImage      0x00000000\n"
                                                           "PostRuntimeSW      0x00000000\n"
                                                           "PostFpgaImage      0x00000000\n"
                                                           "PostCrtmFlash      0x00000000\n"
                                                           "PostBootFlash      0x00000000\n"
                                                           "PostMount3gFm      0x00000000\n"
                                                           "PostMountLtFm      0x00000000\n"
                                                           "PostMountVendorFm  0x00000000\n"
                                                           "PostMountDb        0x0000001f\n"
                                                           "PostMount3gSdmN    0x00000000\n"
                                                           "PostMount3gSdmE    0x00000000\n"
                                                           "PostMountLtSdmA    0x00000000\n"
                                                           "PostMountLtSdmB    0x00000000\n"
                                                           "\n"
                                                           "before: no result\n",
                                                           ""}));
    const json answer = shown();
    EXPECT_EQ(answer.at("kind"), "mcu");
    EXPECT_EQ(answer.at("results").size(), 2U);
    EXPECT_EQ(answer.at("results").at(0).at("tests").at(9), (json{{"test", "PostMountDb"}, {"result", 31}}));
    EXPECT_EQ(answer.at("results").at(0).at("isThere"), true);
    EXPECT_EQ(answer.at("results").at(1).at("isThere"), false);
}

TEST_F(DornPostTest, ResultsOfDspsAreShown)
{
    m_node.writeBoardFile(path, "2 10 0 2 : 1 0 2 ff \n1 10 0 1 : 1 0 \n");

    EXPECT_EQ(dorn({"post", "show", path}),
              (CommandResult{0,
                             "latest: bootStatus 0x00000002, boardId 0x00000010, chipNumber 0x00000000, "
                             "numberOfPosts 0x00000002\n"
                             "TEST        RESULT\n"
                             "0x00000001  0x00000000\n"
                             "0x00000002  0x000000ff\n"
                             "\n"
                             "before: bootStatus 0x00000001, boardId 0x00000010, chipNumber 0x00000000, "
                             "numberOfPosts 0x00000001\n"
                             "TEST        RESULT\n"
                             "0x00000001  0x00000000\n",
                             ""}));
    EXPECT_EQ(shown().at("kind"), "dsp");
    EXPECT_EQ(shown().at("results").at(0).at("boardId"), 16);
}

TEST_F(DornPostTest, SecondPostDataIsShown)
{
    m_node.writeBoardFile(path, "1 : 5 6 \n");

    EXPECT_EQ(dorn({"post", "show", path}), (CommandResult{0,
                                                           "latest: numOfPost 0x00000001\n"
                                                           "TEST        RESULT\n"
                                                           "0x00000005  0x00000006\n",
                                                           ""}));
    EXPECT_EQ(shown().at("kind"), "data2");
}

TEST_F(DornPostTest, KindCanBeSaid)
{
    m_node.writeBoardFile(path, "2 10 0 2 : 1 0 2 ff \n");

    EXPECT_EQ(shown({"--kind", "mcu"}).at("kind"), "mcu");
    EXPECT_EQ(shown({"--kind", "dsp"}).at("kind"), "dsp");
    EXPECT_EQ(shown({"--kind", "data2"}).at("kind"), "data2");
    EXPECT_EQ(dorn({"post", "show", path, "--kind", "other"}),
              (CommandResult{2, "",
                             "dorn: --kind: 'other' is none of mcu, dsp, data2\n"
                             "Try 'dorn post show --help'\n"}));
}

TEST_F(DornPostTest, CountOfMoreTestsThanAreReadShowsThose)
{
    std::string line = "ffffffff : ";
    for (int pair = 0; pair < 20; ++pair) {
        line += "1 2 ";
    }
    m_node.writeBoardFile(path, line + "\n");

    EXPECT_EQ(shown().at("results").at(0).at("tests").size(), 16U);
}

TEST_F(DornPostTest, FileThatCannotBeReadIsANo)
{
    EXPECT_EQ(
        dorn({"post", "show", path}),
        (CommandResult{1, "", "dorn: the POST file '/ffs/run/post.txt' cannot be read: No such file or directory\n"}));
    m_node.writeBoardFile(path, "");
    EXPECT_EQ(dorn({"post", "show", path}),
              (CommandResult{1, "", "dorn: the POST file '/ffs/run/post.txt' cannot be read: it is empty\n"}));
    EXPECT_EQ(dorn({"post", "show"}).status, 2);
}

} // namespace
} // namespace dorn::tool
