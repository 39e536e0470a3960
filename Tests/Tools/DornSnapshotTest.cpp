// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "AaConfigTag.h"
#include "AaFile.h"
#include "AaSysLog.h"
#include "TestNode.hpp"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace dorn::tool {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

/// A process with one troubleshooting file.
class Owner : public testkit::Process {
public:
    Owner(const std::string& mode, const std::string& path) : Process(DORN_TROUBLE_PROGRAM, {mode, mode, path})
    {
        EXPECT_TRUE(waitForOutput("ready")) << standardError();
    }
};

class DornSnapshotTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(AaFileCreateDir("/ram"), 0); }

    /// Takes a snapshot, however slow the machine is.
    CommandResult take() const { return dorn({"snapshot", archive(), "--timeout", "20"}); }
    /// Unpacks it, with a program that has nothing to do with ours.
    void unpack()
    {
        std::filesystem::create_directory(m_unpacked);
        testkit::Process tar("/bin/tar", {"-xzf", archive(), "--strip-components=1", "-C", m_unpacked});
        ASSERT_EQ(tar.waitForEnd(), 0) << tar.standardError();
    }
    bool has(const std::string& file) const { return std::filesystem::exists(m_unpacked + "/" + file); }
    std::string read(const std::string& file) const
    {
        std::ifstream stream(m_unpacked + "/" + file);
        EXPECT_TRUE(stream) << file;
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    json readJson(const std::string& file) const { return json::parse(read(file)); }
    /// What the manifest says of a file.
    json manifestOf(const char* list, const std::string& file) const
    {
        const json manifest = readJson("manifest.json");
        for (const json& entry : manifest.at(list)) {
            if (entry.at("file") == file) {
                return entry;
            }
        }
        return {};
    }
    std::string archive() const { return m_node.runDirectory() + "/snapshot.tar.gz"; }

    testkit::TestNode m_node{{.log = "file"}};
    std::string m_unpacked = m_node.runDirectory() + "/unpacked";
};

TEST_F(DornSnapshotTest, NodeWithoutServicesHasNothingToGather)
{
    const CommandResult result = dorn({"snapshot", archive()});

    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.remarks, HasSubstr("no services have run here"));
    EXPECT_FALSE(std::filesystem::exists(archive()));
}

TEST_F(DornSnapshotTest, EverythingIsInOneArchive)
{
    ASSERT_EQ(AaConfigTagSetU32("board.answer", 42), 0);
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "a line of the log");
    const EchoService echo;
    testkit::Process faults(DORN_FAULT_MANAGER);
    const Owner owner("stored", "/ram/owner.log");
    const Owner left("left", "/ram/left.log");

    const CommandResult result = take();
    EXPECT_EQ(result.status, 0) << result.remarks;
    EXPECT_EQ(result.answer, archive() + "\n");

    unpack();
    EXPECT_THAT(read("services.json"), HasSubstr("EchoS"));
    EXPECT_THAT(read("parameters.json"), HasSubstr("BasebandState"));
    EXPECT_THAT(read("tags.json"), HasSubstr("board.answer"));
    EXPECT_THAT(read("log.txt"), HasSubstr("a line of the log"));
    EXPECT_EQ(read("files/ram/owner.log"), "stored by " + std::to_string(owner.pid()));
    EXPECT_EQ(read("files/ram/left.log"), "stored by " + std::to_string(left.pid()));
    EXPECT_EQ(manifestOf("parts", "services.json").at("command"), "dorn service list --json");
    EXPECT_EQ(manifestOf("files", "files/ram/owner.log").at("included"), true);
    EXPECT_EQ(manifestOf("files", "files/ram/owner.log").at("pid"), owner.pid());
    EXPECT_FALSE(std::filesystem::exists(m_node.boardPath("/ram/owner.log"))); // taken and removed
    EXPECT_TRUE(std::filesystem::exists(m_node.boardPath("/ram/left.log")));
}

TEST_F(DornSnapshotTest, AlarmsAreInItWhenTheFaultManagerRuns)
{
    testkit::Process faults(DORN_FAULT_MANAGER);
    do {
        ASSERT_TRUE(faults.isRunning());
    } while (dorn({"alarm", "list"}).status != 0);

    ASSERT_EQ(take().status, 0);

    unpack();
    EXPECT_TRUE(readJson("alarms.json").is_array()) << read("alarms.json");
}

TEST_F(DornSnapshotTest, WhatCannotBeHadIsNamedAndTheRestIsThere)
{
    const EchoService echo;

    const CommandResult result = take();

    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.remarks, HasSubstr("dorn: not in the snapshot: alarms.json: dorn: the fault manager does not "
                                          "run"));
    unpack();
    EXPECT_FALSE(has("alarms.json"));
    EXPECT_EQ(manifestOf("parts", "alarms.json").at("included"), false);
    EXPECT_THAT(read("services.json"), HasSubstr("EchoS"));
}

TEST_F(DornSnapshotTest, ProcessThatCrashesInItsStepDoesNotTakeTheSnapshotDown)
{
    const EchoService echo;
    Owner crashing("crashed", "/ram/crashed.log");
    const Owner owner("stored", "/ram/owner.log");

    const CommandResult result = take();

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(crashing.waitForEnd(), -SIGKILL);
    EXPECT_THAT(result.remarks, HasSubstr("files/ram/crashed.log: process " + std::to_string(crashing.pid()) +
                                          " has ended; No such file or directory"));
    unpack();
    EXPECT_TRUE(has("files/ram/owner.log"));
    EXPECT_FALSE(has("files/ram/crashed.log"));
}

TEST_F(DornSnapshotTest, FileThatADeadProcessLeftIsTaken)
{
    const EchoService echo;
    Owner dead("stored", "/ram/dead.log");
    dead.signal(SIGKILL);
    dead.waitForEnd();
    m_node.writeBoardFile("/ram/dead.log", "its last words");

    ASSERT_EQ(take().status, 0);

    unpack();
    EXPECT_EQ(read("files/ram/dead.log"), "its last words");
    EXPECT_EQ(manifestOf("files", "files/ram/dead.log").at("remarks"),
              "process " + std::to_string(dead.pid()) + " has ended");
}

TEST_F(DornSnapshotTest, ProcessThatHangsIsNotWaitedFor)
{
    const EchoService echo;
    const Owner hanging("hung", "/ram/hung.log");
    const Owner owner("stored", "/ram/owner.log");

    const CommandResult result = dorn({"snapshot", archive(), "--timeout", "3"});

    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.remarks, HasSubstr("files/ram/hung.log: process " + std::to_string(hanging.pid()) +
                                          " did not store it in time"));
    unpack();
    EXPECT_TRUE(has("files/ram/owner.log"));
}

TEST_F(DornSnapshotTest, FileThatCouldNotBeStoredIsNotTaken)
{
    const EchoService echo;
    const Owner owner("failed", "/ram/failed.log");

    const CommandResult result = take();

    EXPECT_THAT(result.remarks,
                HasSubstr("files/ram/failed.log: process " + std::to_string(owner.pid()) + " could not store it"));
    unpack();
    EXPECT_FALSE(has("files/ram/failed.log"));
}

TEST_F(DornSnapshotTest, PipeInPlaceOfAFileIsNotWaitedFor)
{
    const EchoService echo;
    const Owner owner("left", "/ram/pipe");
    std::filesystem::remove(m_node.boardPath("/ram/pipe"));
    ASSERT_EQ(mkfifo(m_node.boardPath("/ram/pipe").c_str(), 0600), 0);

    const CommandResult result = take();

    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.remarks, HasSubstr("files/ram/pipe: not an ordinary file"));
}

TEST_F(DornSnapshotTest, OfALargeFileTheLatestBytesAreTaken)
{
    const EchoService echo;
    const Owner owner("left", "/ram/large");
    m_node.writeBoardFile("/ram/large", "begin" + std::string(16 << 20, 'x'));

    ASSERT_EQ(take().status, 0);

    unpack();
    EXPECT_EQ(read("files/ram/large"), std::string(16 << 20, 'x'));
    EXPECT_EQ(manifestOf("files", "files/ram/large").at("remarks"), "cut: the first 5 bytes are left out");
}

TEST_F(DornSnapshotTest, PathOfAFileDoesNotLeadOutOfTheArchive)
{
    const EchoService echo;
    const Owner owner("left", "/ram/../../../../ram/a");

    ASSERT_EQ(take().status, 0);

    unpack();
    EXPECT_TRUE(has("files/ram/a"));
}

TEST_F(DornSnapshotTest, OnlyItsOwnerCanReadIt)
{
    const EchoService echo;
    ASSERT_EQ(take().status, 0);

    EXPECT_EQ(std::filesystem::status(archive()).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(DornSnapshotTest, ArchiveThatCannotBeWrittenIsANoAndNothingIsLeft)
{
    const EchoService echo;

    const CommandResult nowhere = dorn({"snapshot", m_node.runDirectory() + "/nowhere/a.tar.gz"});
    EXPECT_EQ(nowhere, (CommandResult{1, "",
                                      "dorn: the archive '" + m_node.runDirectory() +
                                          "/nowhere/a.tar.gz' cannot be written: No such file or directory\n"}));

    std::filesystem::create_directory(archive());
    const CommandResult inTheWay = dorn({"snapshot", archive(), "--timeout", "20"});
    EXPECT_EQ(inTheWay.status, 1);
    EXPECT_THAT(inTheWay.remarks, HasSubstr("cannot be written: Is a directory"));
    EXPECT_FALSE(std::filesystem::exists(archive() + ".part"));
}

TEST_F(DornSnapshotTest, AnswerAsJsonIsTheManifest)
{
    const EchoService echo;

    const CommandResult result = dorn({"snapshot", archive(), "--json", "--timeout", "20"});

    ASSERT_EQ(result.status, 0);
    json answer = json::parse(result.answer);
    EXPECT_EQ(answer.at("archive"), archive());
    unpack();
    EXPECT_EQ(answer.at("node"), 0x0F01);
    answer.erase("archive");
    EXPECT_EQ(answer, readJson("manifest.json"));
}

TEST_F(DornSnapshotTest, WrongTimeIsWrongUse)
{
    for (const char* const time : {"-1", "soon"}) {
        EXPECT_EQ(dorn({"snapshot", archive(), "--timeout", time}).status, 2) << time;
    }
}

TEST_F(DornSnapshotTest, NameWithoutAFileTellsNodeAndTime)
{
    const EchoService echo;
    testkit::Process command(
        "/bin/sh", {"-c", "cd \"$1\" && exec \"$0\" snapshot --timeout 20", DORN_COMMAND, m_node.runDirectory()});

    EXPECT_EQ(command.waitForEnd(), 0);

    EXPECT_THAT(command.standardOutput(), testing::MatchesRegex("dorn-snapshot-0f01-[0-9]{8}T[0-9]{6}Z.tar.gz\n"));
    std::string name = command.standardOutput();
    name.pop_back();
    EXPECT_TRUE(std::filesystem::exists(m_node.runDirectory() + "/" + name));
}

} // namespace
} // namespace dorn::tool
