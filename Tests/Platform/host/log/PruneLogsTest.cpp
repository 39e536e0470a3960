// SPDX-License-Identifier: MIT
#include "FailingFilePort.hpp"
#include "LogFixture.hpp"
#include "log/LogDirectory.hpp"
#include "log/SegmentWriter.hpp"
#include "node/RunDirectory.hpp"

#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>

namespace dorn::host {
namespace {

/// Segments of processes that live as long as somebody holds their writer.
class PruneLogsTest : public LogTest {
protected:
    using Writer = std::unique_ptr<SegmentWriter>;

    PruneLogsTest()
        : m_run(m_node.runDirectory(), 0x0F01), m_directory(openLogDirectory(m_run)), m_path(m_run.path() + "/log/")
    {
    }

    Writer start(const std::string& eeName, std::int64_t start)
    {
        auto writer = std::make_unique<SegmentWriter>(openLogDirectory(m_run), SegmentWriter::step);
        EXPECT_EQ(writer->open({eeName, 100, start, 0}), 0);
        return writer;
    }

    void startAndEnd(const std::string& eeName, std::int64_t at)
    {
        const Writer writer = start(eeName, at);
        EXPECT_EQ(writer->turn(), 0);
    }

    void writeFile(const std::string& name) const { std::ofstream(m_path + name) << "content"; }

    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    using Files = std::set<std::string>;

    RunDirectory m_run;
    Descriptor m_directory;
    std::string m_path;
};

TEST_F(PruneLogsTest, LatestOfEachNameStay)
{
    for (std::int64_t at = 1; at <= 7; at += 2) {
        startAndEnd("Clock", at);
        startAndEnd("Sfp", at + 1);
    }
    pruneLogs(m_directory, {2, 100});
    EXPECT_EQ(files(), (Files{"Clock.100.5.0.log", "Clock.100.5.1.log", "Clock.100.7.0.log", "Clock.100.7.1.log",
                              "Sfp.100.6.0.log", "Sfp.100.6.1.log", "Sfp.100.8.0.log", "Sfp.100.8.1.log"}));
}

TEST_F(PruneLogsTest, LatestOfAllStay)
{
    startAndEnd("Clock", 1);
    startAndEnd("Sfp", 2);
    startAndEnd("Led", 3);
    pruneLogs(m_directory, {2, 2});
    EXPECT_EQ(files(), (Files{"Sfp.100.2.0.log", "Sfp.100.2.1.log", "Led.100.3.0.log", "Led.100.3.1.log"}));
}

TEST_F(PruneLogsTest, ProcessThatLivesKeepsItsLogAndDoesNotCount)
{
    const Writer alive = start("Clock", 1);
    startAndEnd("Clock", 2);
    startAndEnd("Clock", 3);
    const Writer aliveToo = start("Clock", 4);
    pruneLogs(m_directory, {1, 1});
    EXPECT_EQ(files(), (Files{"Clock.100.1.0.log", "Clock.100.3.0.log", "Clock.100.3.1.log", "Clock.100.4.0.log"}));
}

TEST_F(PruneLogsTest, OtherFilesAreLeftAlone)
{
    writeFile("notes.txt");
    writeFile("Clock.log");
    std::filesystem::create_directory(m_path + "Clock.1.1.0.log");
    std::filesystem::create_symlink("/etc/passwd", m_path + "Clock.1.2.0.log");
    pruneLogs(m_directory, {0, 0});
    EXPECT_TRUE(files().contains("notes.txt"));
    EXPECT_TRUE(files().contains("Clock.log"));
    EXPECT_TRUE(files().contains("Clock.1.1.0.log"));
    EXPECT_TRUE(files().contains("Clock.1.2.0.log"));
}

TEST_F(PruneLogsTest, SecondSegmentWithoutTheFirstIsCleared)
{
    startAndEnd("Clock", 1);
    std::filesystem::remove(m_path + "Clock.100.1.0.log");
    pruneLogs(m_directory, {0, 0});
    EXPECT_EQ(files(), Files{});
}

TEST_F(PruneLogsTest, EveryStartClearsUp)
{
    for (std::int64_t at = 1; at <= 10; ++at) {
        startAndEnd("Clock", at);
    }
    useLog("file");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    EXPECT_EQ(files().size(), LogPruning().perName * segmentsPerProcess + 1);
}

/// Clears a segment away between its creation and its locking.
class RacingFilePort : public PosixFilePort {
public:
    explicit RacingFilePort(const Descriptor& directory) : m_directory(directory) {}
    int open(int directory, const char* path, int flags, mode_t mode) override
    {
        const int descriptor = PosixFilePort::open(directory, path, flags, mode);
        if (!m_hasRaced) {
            m_hasRaced = true;
            pruneLogs(m_directory, {0, 0});
        }
        return descriptor;
    }

private:
    const Descriptor& m_directory;
    bool m_hasRaced = false;
    FilePortScope m_scope{*this};
};

TEST_F(PruneLogsTest, SegmentClearedAwayBeforeItIsLockedIsCreatedAgain)
{
    const RacingFilePort port(m_directory);
    const Writer writer = start("Clock", 1);
    EXPECT_EQ(files(), Files{"Clock.100.1.0.log"});
}

} // namespace
} // namespace dorn::host
