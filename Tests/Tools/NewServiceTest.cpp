// SPDX-License-Identifier: MIT
#include "new/NewService.hpp"

#include "FailingFilePort.hpp"
#include "Outcome.hpp"
#include "TestNode.hpp"
#include "new/ServiceTemplate.hpp"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <regex>
#include <sstream>

namespace dorn::tool {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testkit::FailingFilePort;
using testkit::FileOperation;

std::string reasonAgainst(const std::string& name)
{
    try {
        checkServiceName(name);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

TEST(NewServiceNameTest, NamesOfServicesAreTaken)
{
    for (const char* const name : {"Fan", "ClimateS", "FaultManager", "F", "LED", "Fan2", "Exec"}) {
        EXPECT_EQ(reasonAgainst(name), "") << name;
    }
}

TEST(NewServiceNameTest, WhatIsNoNameOfAClassIsRefused)
{
    for (const char* const name : {"", "fan", "class", "2Fan", "Fan Two", "Fan-2", "Fan_2", "_Fan", "../Fan", "/Fan",
                                   "Fan/", "Fan\n", "Lüfter"}) {
        EXPECT_THAT(reasonAgainst(name), HasSubstr("it begins with a capital letter and is made of letters and digits"))
            << name;
    }
}

TEST(NewServiceNameTest, NameThatEndsLikeAnExecutableIsRefused)
{
    EXPECT_EQ(reasonAgainst("FanExe"),
              "NAME: 'FanExe' ends in 'Exe', which the executable's name adds: 'Fan' gives DornFanExe");
}

TEST(NewServiceNameTest, NameIsNoLongerThanTheNodeCanShow)
{
    EXPECT_EQ(reasonAgainst(std::string(32, 'F')), "");
    EXPECT_THAT(reasonAgainst(std::string(33, 'F')), HasSubstr("is longer than 32 characters"));
}

TEST(NewServiceNameTest, NameOfAHeaderOrAMacroIsRefused)
{
    std::istringstream folders(DORN_HEADER_FOLDERS);
    unsigned headers = 0;
    for (std::string folder; std::getline(folders, folder, ':');) {
        for (const auto& file : std::filesystem::directory_iterator(folder)) {
            if (file.path().extension() == ".hpp") {
                EXPECT_THAT(reasonAgainst(file.path().stem().string()), HasSubstr("is taken"));
                ++headers;
            }
        }
    }
    EXPECT_GT(headers, 30U);
    EXPECT_THAT(reasonAgainst("TEST"), HasSubstr("is taken"));
}

TEST(NewServiceFilesTest, FolderHasAServiceItsTestAndWhatBuildsThem)
{
    std::vector<std::string> names;
    for (const ServiceFile& file : filesOf({"ClimateS", "ignored", 0x0300, ""})) {
        names.push_back(file.name);
    }

    EXPECT_THAT(names, ElementsAre(".gitignore", "CMakeLists.txt", "ClimateS.cpp", "ClimateS.hpp",
                                   "ClimateSMessages.hpp", "ClimateSTest.cpp", "README.md", "main.cpp"));
    EXPECT_EQ(names.size(), serviceTemplate().size());
}

TEST(NewServiceFilesTest, NothingStaysToBeFilledIn)
{
    const std::regex toBeFilledIn("@[A-Za-z]+@");
    for (const ServiceFile& file : filesOf({"ClimateS", "ignored", 0x0300, "/opt/dorn"})) {
        EXPECT_FALSE(std::regex_search(file.text, toBeFilledIn)) << file.name << "\n" << file.text;
    }
}

TEST(NewServiceFilesTest, NameCpidAndPrefixAreFilledIn)
{
    const std::vector<ServiceFile> files = filesOf({"Fan", "ignored", 0x0412, "/opt/my dorn"});
    const auto textOf = [&files](const std::string& name) {
        const auto found =
            std::find_if(files.begin(), files.end(), [&name](const auto& one) { return one.name == name; });
        return found == files.end() ? "" : found->text;
    };

    EXPECT_THAT(textOf("CMakeLists.txt"), HasSubstr("dorn_add_service(Fan SOURCES main.cpp Fan.cpp)"));
    EXPECT_THAT(textOf("FanMessages.hpp"), HasSubstr("constexpr unsigned short fanCpid = 0x0412;"));
    EXPECT_THAT(textOf("Fan.cpp"), HasSubstr("Fan::Fan() : Service(\"Fan\", fanCpid, "));
    EXPECT_THAT(textOf("README.md"), HasSubstr("cmake -S . -B build -DCMAKE_PREFIX_PATH='/opt/my dorn'\n"));
}

TEST(NewServiceFilesTest, PrefixIsNotNamedWhereCMakeLooksByItself)
{
    EXPECT_EQ(prefixOption(""), "");
    EXPECT_EQ(prefixOption("/opt/dorn"), " -DCMAKE_PREFIX_PATH=/opt/dorn");
    EXPECT_EQ(prefixOption("/it's"), " -DCMAKE_PREFIX_PATH='/it'\\''s'");
}

class NewFolderTest : public ::testing::Test {
protected:
    NewFolderTest() { std::filesystem::create_directories(m_folder.parent_path()); }

    /// Why the folder could not be made.
    std::string failure() const
    {
        try {
            makeFolder(m_folder.string(), {{"a", "first\n"}, {"b", "second\n"}});
        } catch (const Failure& error) {
            return error.what();
        }
        return "";
    }

    std::string contentOf(const std::string& name) const
    {
        std::ifstream file(m_folder / name);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    testkit::TestNode m_node;
    std::filesystem::path m_folder = std::filesystem::path(m_node.boardRoot()) / "home" / "Fan";
};

TEST_F(NewFolderTest, FolderHasTheFiles)
{
    EXPECT_EQ(failure(), "");
    EXPECT_EQ(contentOf("a"), "first\n");
    EXPECT_EQ(contentOf("b"), "second\n");
}

TEST_F(NewFolderTest, FolderThatIsThereIsLeftAsItIs)
{
    std::filesystem::create_directory(m_folder);
    std::ofstream(m_folder / "a") << "mine\n";

    EXPECT_EQ(failure(),
              "'" + m_folder.string() + "' is there already, and is left as it is; --directory names another folder");
    EXPECT_EQ(contentOf("a"), "mine\n");
    EXPECT_FALSE(std::filesystem::exists(m_folder / "b"));
}

TEST_F(NewFolderTest, LinkThatLeadsNowhereIsLeftAsItIs)
{
    std::filesystem::create_symlink("nowhere", m_folder);

    EXPECT_THAT(failure(), HasSubstr("is there already"));
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder));
}

TEST_F(NewFolderTest, FolderInNoFolderIsNotMade)
{
    std::filesystem::remove(m_folder.parent_path());

    EXPECT_EQ(failure(), "'" + m_folder.string() + "' cannot be made: No such file or directory");
}

TEST_F(NewFolderTest, NothingIsLeftWhateverFails)
{
    for (const FileOperation operation : {FileOperation::MakeDirectory, FileOperation::Open, FileOperation::Write,
                                          FileOperation::Sync, FileOperation::Rename}) {
        for (const unsigned nth : {1U, 2U}) {
            if (operation == FileOperation::MakeDirectory && nth == 2) {
                continue; // there is but one
            }
            const FailingFilePort broken(operation, nth, EIO);
            EXPECT_THAT(failure(), HasSubstr("Input/output error"));
            EXPECT_TRUE(broken.hasFailed());
            EXPECT_FALSE(std::filesystem::exists(m_folder));
        }
    }
}

} // namespace
} // namespace dorn::tool
