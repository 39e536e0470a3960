// SPDX-License-Identifier: MIT
#include "log/SegmentReader.hpp"

#include "LogFixture.hpp"
#include "log/SegmentWriter.hpp"
#include "node/RunDirectory.hpp"

#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace dorn::host {
namespace {

/// A segment whose file a test damages.
class SegmentReaderTest : public LogTest {
protected:
    SegmentReaderTest() : m_run(m_node.runDirectory(), 0x0F01), m_directory(openLogDirectory(m_run))
    {
        EXPECT_EQ(m_writer.open({"Clock", 100, 1, 0}), 0);
    }

    std::optional<SegmentReader> open() const { return SegmentReader::open(m_directory, m_file); }

    template <class Value>
    void overwrite(std::size_t offset, Value value) const
    {
        std::fstream file(path(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(offset));
        file.write(reinterpret_cast<const char*>(&value), sizeof value);
    }

    std::string path() const { return m_run.path() + "/log/" + m_file.fileName; }

    RunDirectory m_run;
    Descriptor m_directory;
    SegmentWriter m_writer{openLogDirectory(m_run), SegmentWriter::step};
    const SegmentFile m_file{"Clock.100.1.0.log", {"Clock", 100, 1, 0}};
};

TEST_F(SegmentReaderTest, TextIsWhatHasBeenAppended)
{
    const auto segment = open();
    ASSERT_TRUE(segment);
    EXPECT_EQ(segment->text(0, 0), "");
    m_writer.append("one\n");
    m_writer.append("two\n");
    EXPECT_EQ(segment->used(), 8U);
    EXPECT_EQ(segment->text(0, 0), "one\ntwo\n");
    EXPECT_EQ(segment->text(0, 4), "two\n");
    EXPECT_EQ(segment->text(0, 100), "");
}

TEST_F(SegmentReaderTest, TextOfAFillingThatIsGoneIsNone)
{
    const auto segment = open();
    ASSERT_TRUE(segment);
    m_writer.append("one\n");
    ASSERT_EQ(m_writer.turn(), 0);
    EXPECT_EQ(segment->text(0, 0), "one\n");
    m_writer.append("two, longer\n");
    ASSERT_EQ(m_writer.turn(), 0);
    EXPECT_EQ(segment->text(0, 0), std::nullopt);
    EXPECT_EQ(segment->sequence(), 2U);
    EXPECT_EQ(segment->previousUsed(), 12U);
    EXPECT_EQ(segment->text(2, 0), "");
}

TEST_F(SegmentReaderTest, LockTellsWhetherTheWriterLives)
{
    const auto segment = open();
    ASSERT_TRUE(segment);
    EXPECT_TRUE(segment->isHeld());
    m_writer.forget();
    EXPECT_FALSE(segment->isHeld());
}

TEST_F(SegmentReaderTest, OtherFilesAreNoSegments)
{
    overwrite(offsetof(SegmentHeader, magic), 'd');
    EXPECT_FALSE(open());
    overwrite(offsetof(SegmentHeader, magic), 'D');
    ASSERT_TRUE(open());
    overwrite(offsetof(SegmentHeader, version), std::uint32_t{2});
    EXPECT_FALSE(open());
}

TEST_F(SegmentReaderTest, SegmentOfAnotherProcessIsNotTheOneOfItsName)
{
    overwrite(offsetof(SegmentHeader, pid), std::int32_t{101});
    EXPECT_FALSE(open());
    overwrite(offsetof(SegmentHeader, pid), std::int32_t{100});
    ASSERT_TRUE(open());
    overwrite(offsetof(SegmentHeader, start), std::int64_t{2});
    EXPECT_FALSE(open());
}

TEST_F(SegmentReaderTest, FileThatIsTooShortIsNoSegment)
{
    std::filesystem::resize_file(path(), 20);
    EXPECT_FALSE(open());
}

TEST_F(SegmentReaderTest, WhatIsNoOrdinaryFileIsNoSegment)
{
    std::filesystem::rename(path(), path() + ".away");
    std::filesystem::create_symlink(path() + ".away", path());
    EXPECT_FALSE(open());
    std::filesystem::remove(path());
    ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
    EXPECT_FALSE(open()); // and does not wait for a writer
    std::filesystem::remove(path());
    EXPECT_FALSE(open());
}

TEST_F(SegmentReaderTest, MoreTextThanTheFileHoldsIsNotBelieved)
{
    m_writer.append("one\n");
    const auto segment = open();
    ASSERT_TRUE(segment);
    for (const std::uint32_t used : {0x10000U, 0xFFFFFFFFU}) {
        overwrite(offsetof(SegmentHeader, used), used);
        EXPECT_EQ(segment->used(), 0U);
        EXPECT_EQ(segment->text(0, 0), "");
    }
}

TEST_F(SegmentReaderTest, MoreFeaturesThanTheHeaderHoldsAreNotBelieved)
{
    auto segment = open();
    ASSERT_TRUE(segment);
    overwrite(offsetof(SegmentHeader, featureCount), 0xFFFFFFFFU);
    const auto line = segment->parse("2025-11-21T09:18:01.123456Z warning Clock[100] - CLKS text");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->featureId, 0U);
}

TEST_F(SegmentReaderTest, FeatureNameWithoutEndIsNotReadBeyond)
{
    auto segment = open();
    ASSERT_TRUE(segment);
    std::array<char, 64> name{};
    name.fill('n');
    m_writer.noteFeature(clocks, name);
    const auto line =
        segment->parse("2025-11-21T09:18:01.123456Z warning Clock[100] - " + std::string(64, 'n') + " text");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->featureId, clocks);
}

} // namespace
} // namespace dorn::host
