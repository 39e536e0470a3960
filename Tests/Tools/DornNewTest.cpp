// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "TestNode.hpp"

#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace dorn::tool {
namespace {

using ::testing::HasSubstr;

class DornNewTest : public ::testing::Test {
protected:
    DornNewTest() { std::filesystem::create_directories(m_home); }

    testkit::TestNode m_node;
    std::filesystem::path m_home = std::filesystem::path(m_node.boardRoot()) / "home of mine";
};

TEST_F(DornNewTest, FolderIsMadeAndTheNextStepsAreNamed)
{
    const std::string folder = m_home / "Fan";

    const CommandResult made = dorn({"new", "service", "Fan", "--directory", folder});

    EXPECT_EQ(made.status, 0) << made.remarks;
    EXPECT_THAT(made.answer, HasSubstr("Made the service Fan in " + folder + ":\n"));
    EXPECT_THAT(made.answer, HasSubstr("  cd '" + folder + "'\n  cmake -S . -B build"));
    EXPECT_EQ(made.remarks, "");
    EXPECT_TRUE(std::filesystem::is_regular_file(m_home / "Fan" / "FanTest.cpp"));
}

TEST_F(DornNewTest, JsonTellsWhatWasMade)
{
    const std::string folder = m_home / "Fan";

    const CommandResult made = dorn({"new", "service", "Fan", "--directory", folder, "--json"});

    const auto answer = nlohmann::json::parse(made.answer);
    EXPECT_EQ(answer.at("name"), "Fan");
    EXPECT_EQ(answer.at("executable"), "DornFanExe");
    EXPECT_EQ(answer.at("directory"), folder);
    EXPECT_EQ(answer.at("files").size(), 8U);
    for (const auto& file : answer.at("files")) {
        EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::path(folder) / file.get<std::string>())) << file;
    }
}

TEST_F(DornNewTest, NothingIsMadeForANameThatIsNone)
{
    const CommandResult result = dorn({"new", "service", "FanExe", "--directory", m_home / "Fan"});

    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.answer, "");
    EXPECT_EQ(result.remarks,
              "dorn: NAME: 'FanExe' ends in 'Exe', which the executable's name adds: 'Fan' gives DornFanExe\n"
              "Try 'dorn new service --help'\n");
    EXPECT_TRUE(std::filesystem::is_empty(m_home));
}

TEST_F(DornNewTest, CpidOfNobodyIsRefused)
{
    for (const char* const cpid : {"0", "0x10000", "fan"}) {
        const CommandResult result = dorn({"new", "service", "Fan", "--directory", m_home / "Fan", "--cpid", cpid});
        EXPECT_EQ(result.status, 2) << cpid;
        EXPECT_THAT(result.remarks, HasSubstr("--cpid"));
    }
    EXPECT_TRUE(std::filesystem::is_empty(m_home));
}

TEST_F(DornNewTest, SecondFolderOfTheNameIsNotMade)
{
    const std::string folder = m_home / "Fan";
    ASSERT_EQ(dorn({"new", "service", "Fan", "--directory", folder}).status, 0);

    const CommandResult second = dorn({"new", "service", "Fan", "--directory", folder});

    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.remarks,
              "dorn: '" + folder + "' is there already, and is left as it is; --directory names another folder\n");
}

} // namespace
} // namespace dorn::tool
