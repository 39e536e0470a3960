// SPDX-License-Identifier: MIT
#include "config/TagDatabase.hpp"

#include "FailingFilePort.hpp"
#include "NodeTest.hpp"
#include "node/PerNode.hpp"

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace dorn::host {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TagView bytes(const std::string& text)
{
    return std::as_bytes(std::span(text.data(), text.size()));
}

class TagDatabaseTest : public testkit::NodeTest {
protected:
    /// Appends sets of "sys.x" with the values @p first to @p last.
    void append(int first, int last)
    {
        for (int value = first; value <= last; ++value) {
            TagWrite write(m_database);
            write.appendToJournal("sys.x", bytes(std::to_string(value)));
            write.commit();
        }
    }
    void trim(std::uint64_t oldestNeeded)
    {
        TagWrite write(m_database);
        write.trimJournal(oldestNeeded);
        write.commit();
    }
    /// The values of the next part of the journal.
    std::vector<std::string> journal(std::uint64_t from, const std::string& wanted = "sys.x")
    {
        std::vector<std::string> values;
        m_part = m_database.readJournal(from, [&](const std::string& name) { return name == wanted; });
        for (const TagJournalEntry& entry : m_part.entries) {
            values.emplace_back(reinterpret_cast<const char*>(entry.tag.value.data()), entry.tag.value.size());
        }
        return values;
    }

    TagDatabase m_database{PerNode<RunDirectory>::get()};
    TagJournalPart m_part;
};

TEST_F(TagDatabaseTest, WriteWithoutCommitIsNone)
{
    {
        TagWrite write(m_database);
        write.put("sys.x", bytes("1"));
        write.appendToJournal("sys.x", bytes("1"));
    }
    EXPECT_THAT(m_database.list(), IsEmpty());
    EXPECT_THAT(journal(0), IsEmpty());
    EXPECT_EQ(TagWrite(m_database).sequence(), 0U);
}

TEST_F(TagDatabaseTest, SequenceCountsTheSetsInTheJournal)
{
    append(0, 2);
    EXPECT_EQ(TagWrite(m_database).sequence(), 3U);
}

TEST_F(TagDatabaseTest, JournalIsReadFromAPlaceOn)
{
    append(0, 3);
    EXPECT_THAT(journal(0), ElementsAre("0", "1", "2", "3"));
    EXPECT_THAT(journal(2), ElementsAre("2", "3"));
    EXPECT_EQ(m_part.next, 4U);
    EXPECT_EQ(m_part.lost, 0U);
    EXPECT_EQ(m_part.entries[0].sequence, 2U);
    EXPECT_EQ(m_part.entries[0].tag.name, "sys.x");
    EXPECT_THAT(journal(4), IsEmpty());
    EXPECT_EQ(m_part.next, 4U);
}

TEST_F(TagDatabaseTest, EntriesThatAreNotWantedArePassedOver)
{
    append(0, 3);
    EXPECT_THAT(journal(0, "sys.y"), IsEmpty());
    EXPECT_EQ(m_part.next, 4U);
}

TEST_F(TagDatabaseTest, LongJournalIsReadInParts)
{
    append(0, 99);
    EXPECT_EQ(journal(0).size(), 64U);
    EXPECT_EQ(m_part.next, 64U);
    EXPECT_EQ(journal(m_part.next).size(), 36U);
    EXPECT_EQ(m_part.next, 100U);
}

TEST_F(TagDatabaseTest, TrimmingKeepsWhatIsNeeded)
{
    append(0, 9);
    trim(4);
    EXPECT_THAT(journal(4), ElementsAre("4", "5", "6", "7", "8", "9"));
    EXPECT_EQ(m_part.lost, 0U);
    EXPECT_THAT(journal(0), ElementsAre("4", "5", "6", "7", "8", "9"));
    EXPECT_EQ(m_part.lost, 4U);
}

TEST_F(TagDatabaseTest, TrimmingTakesALittleAtATime)
{
    append(0, 99);
    trim(100);
    EXPECT_EQ(journal(0).front(), "32");
    trim(100);
    EXPECT_EQ(journal(0).front(), "64");
}

TEST_F(TagDatabaseTest, EmptiedJournalGoesOnCounting)
{
    append(0, 9);
    {
        TagWrite write(m_database);
        write.emptyJournal();
        write.commit();
    }
    EXPECT_THAT(journal(0), IsEmpty());
    append(10, 10);
    EXPECT_THAT(journal(10), ElementsAre("10"));
    EXPECT_EQ(m_part.lost, 0U);
}

TEST_F(TagDatabaseTest, JournalOfLargeValuesIsBoundByItsBytes)
{
    // Entries of 64 KiB that nobody ever needs less: far more of them than the bound lets stay.
    const std::string value(65535, 'v');
    constexpr std::size_t bound = (sizeof(void*) >= 8 ? std::size_t{1} << 28 : std::size_t{1} << 24);

    for (std::size_t written = 0; written < bound + bound / 8; written += value.size()) {
        TagWrite write(m_database);
        write.appendToJournal("sys.x", bytes(value));
        write.trimJournal(0);
        write.commit();
    }

    (void)journal(0);
    EXPECT_GT(m_part.lost, 0U);
    EXPECT_GT(journal(0).size(), 10U);
}

} // namespace
} // namespace dorn::host
