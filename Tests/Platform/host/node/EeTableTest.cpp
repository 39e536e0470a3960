// SPDX-License-Identifier: MIT
#include "node/EeTable.hpp"

#include "LogCapture.hpp"
#include "ManualClock.hpp"
#include "TestNode.hpp"

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace dorn::host;
using namespace dorn::testkit;

namespace {

/// Another process with a place in the table, until it is killed.
class OtherProcess {
public:
    using Stay = std::function<void()>;

    OtherProcess(const RunDirectory& directory, const std::string& name, std::uint16_t cpid)
        : OtherProcess([&](const Stay& stay) {
              EeTable table(directory);
              table.enter(name, cpid);
              table.noteCpid(cpid, name + "Main");
              table.notePublished(0x220001, 2);
              stay();
          })
    {
    }
    /// @param body calls the function that it is given when it has done what it is there for.
    explicit OtherProcess(const std::function<void(const Stay& stay)>& body)
    {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        m_pid = fork();
        if (m_pid == 0) {
            body([&] {
                [[maybe_unused]] const ssize_t written = write(ready[1], "x", 1);
                for (;;) {
                    pause();
                }
            });
        }
        char byte = 0;
        EXPECT_EQ(read(ready[0], &byte, 1), 1);
        close(ready[0]);
        close(ready[1]);
    }
    ~OtherProcess() { end(); }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    pid_t pid() const { return m_pid; }
    void end()
    {
        if (m_pid != 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
            m_pid = 0;
        }
    }

private:
    pid_t m_pid = 0;
};

class EeTableTest : public ::testing::Test {
protected:
    static constexpr std::size_t headerSize = 64;
    static constexpr SharedStoreFormat storeFormat{0x44524E45, 2, headerSize + EeTable::capacity * sizeof(EeRecord)};

    /// As after many processes that have all ended; the one in place 700 was the first.
    void fillTable() const
    {
        const SharedStore store(m_directory, "ees", storeFormat);
        auto* const records = reinterpret_cast<EeRecord*>(store.data() + headerSize);
        for (std::size_t place = 0; place < EeTable::capacity; ++place) {
            records[place].name = {'P', 'a', 's', 't'};
            records[place].since.store(place == 700 ? 1 : static_cast<std::int64_t>(2000 + place));
            records[place].published[0].id.store(1);
            records[place].pid.store(1);
        }
    }

    TestNode m_node;
    RunDirectory m_directory{m_node.runDirectory(), 0x0F01};
};

} // namespace

TEST_F(EeTableTest, IsEmptyBeforeAnybodyEnters)
{
    EXPECT_TRUE(EeTable(m_directory).list().empty());
}

TEST_F(EeTableTest, TellsALiveProcessFromADeadOne)
{
    const EeTable table(m_directory);
    OtherProcess fan(m_directory, "FanS", 0x0301);
    const pid_t pid = fan.pid();
    ASSERT_EQ(table.list().size(), 1U);
    EXPECT_TRUE(table.list().front().alive);

    fan.end();
    const auto list = table.list();

    ASSERT_EQ(list.size(), 1U);
    EXPECT_FALSE(list.front().alive);
    EXPECT_EQ(list.front().name, "FanS");
    EXPECT_EQ(list.front().pid, pid);
    ASSERT_EQ(list.front().published.size(), 1U);
    EXPECT_EQ(list.front().published.front().value, 2U);
}

TEST_F(EeTableTest, ProcessOfTheSameNameTakesTheDeadOnesPlace)
{
    const EeTable table(m_directory);
    OtherProcess fan(m_directory, "FanS", 0x0301);
    OtherProcess led(m_directory, "LedS", 0x0302);
    led.end();
    fan.end();
    const OtherProcess again(m_directory, "LedS", 0x0303);
    const auto list = table.list();
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[1].pid, again.pid());
    EXPECT_EQ(list[1].cpid, 0x0303);
    EXPECT_FALSE(list[0].alive);
}

TEST_F(EeTableTest, LiveProcessOfTheSameNameKeepsItsPlace)
{
    const EeTable table(m_directory);
    const OtherProcess first(m_directory, "FanS", 0x0301);
    const OtherProcess second(m_directory, "FanS", 0x0301);
    const auto list = table.list();
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].pid, first.pid());
    EXPECT_EQ(list[1].pid, second.pid());
}

TEST_F(EeTableTest, NotesWhatWasPublishedAndWhen)
{
    ManualClock clock(std::chrono::seconds(1000));
    EeTable table(m_directory);

    table.notePublished(1, 1); // not entered: goes nowhere
    table.enter("FanS", 0x0301);
    table.notePublished(0x220001, 1);
    clock.advance(std::chrono::seconds(5));
    table.notePublished(0x220001, 2);
    table.notePublished(0x20054, 1);

    const EeInfo info = table.list().front();
    EXPECT_EQ(info.since, Nanoseconds(std::chrono::seconds(1000)).count());
    ASSERT_EQ(info.published.size(), 2U);
    EXPECT_EQ(info.published[0].id, 0x220001U);
    EXPECT_EQ(info.published[0].value, 2U);
    EXPECT_EQ(info.published[0].when, Nanoseconds(std::chrono::seconds(1005)).count());
    EXPECT_EQ(info.published[1].id, 0x20054U);
}

TEST_F(EeTableTest, KeepsTheLastOtherValueThatWasPublished)
{
    EeTable table(m_directory);
    table.enter("FanS", 0x0301);
    table.notePublished(0x220001, 2);
    EXPECT_EQ(table.list().front().published.front().before, 0U);

    table.notePublished(0x220001, 5);
    EXPECT_EQ(table.list().front().published.front().before, 2U);

    table.notePublished(0x220001, 4);
    table.notePublished(0x220001, 4);
    EXPECT_EQ(table.list().front().published.front().value, 4U);
    EXPECT_EQ(table.list().front().published.front().before, 5U);

    table.enter("FanS", 0x0301);
    table.notePublished(0x220001, 1);
    EXPECT_EQ(table.list().front().published.front().before, 0U);
}

TEST_F(EeTableTest, TellsWhetherTheWantedCpidWasGranted)
{
    EeTable table(m_directory);
    table.enter("FanS", 0x0301);
    table.noteCpid(0x0302, "FanSHelper");
    EXPECT_FALSE(table.list().front().isGranted);
    table.noteCpid(0x0301, "FanSMain");
    EXPECT_TRUE(table.list().front().isGranted);
    table.forgetCpid(0x0301);
    EXPECT_TRUE(table.list().front().isGranted);
    table.enter("FanS", 0x0301);
    EXPECT_FALSE(table.list().front().isGranted);
}

TEST_F(EeTableTest, PublishedParametersBeyondItsRoomAreLeftOutAndLoggedOnce)
{
    const LogCapture log;
    EeTable table(m_directory);
    table.enter("FanS", 0x0301);
    for (std::uint32_t id = 1; id <= 16; ++id) {
        table.notePublished(id, id);
    }
    EXPECT_EQ(log.texts(), std::vector<std::string>{});

    table.notePublished(0x220011, 1);
    table.notePublished(0x220012, 1);
    table.notePublished(16, 99);

    const auto published = table.list().front().published;
    ASSERT_EQ(published.size(), 16U);
    EXPECT_EQ(published.back().value, 99U);
    EXPECT_EQ(log.texts(),
              std::vector<std::string>{"Warning 0x0 R&D parameter 0x220011 and others of EE FanS are not in the node's "
                                       "list: it has no more than 16 places for them"});
}

TEST_F(EeTableTest, CpidsBeyondItsRoomAreLeftOutAndLoggedOnce)
{
    const LogCapture log;
    EeTable table(m_directory);
    table.enter("FanS", 0x0301);
    for (std::uint16_t cpid = 0x0301; cpid <= 0x0320; ++cpid) {
        table.noteCpid(cpid, "FanS");
    }
    EXPECT_EQ(log.texts(), std::vector<std::string>{});

    table.noteCpid(0x0321, "FanSMore");
    table.noteCpid(0x0322, "FanSMore");

    EXPECT_EQ(table.list().front().cpids.size(), 32U);
    EXPECT_TRUE(table.holderOf(0x0320));
    EXPECT_FALSE(table.holderOf(0x0321));
    EXPECT_EQ(log.texts(), std::vector<std::string>{"Warning 0x0 cpid 0x0321 and others of EE FanS are not in the "
                                                    "node's list: it has no more than 32 places for them"});
}

TEST_F(EeTableTest, FindsTheLiveHolderOfACpid)
{
    EeTable table(m_directory);
    OtherProcess fan(m_directory, "FanS", 0x0301);
    const auto holder = table.holderOf(0x0301);
    ASSERT_TRUE(holder);
    EXPECT_EQ(holder->name, "FanS");
    ASSERT_EQ(holder->cpids.size(), 1U);
    EXPECT_EQ(holder->cpids.front().euName, "FanSMain");
    EXPECT_FALSE(table.holderOf(0x0302));
    fan.end();
    EXPECT_FALSE(table.holderOf(0x0301));
}

TEST_F(EeTableTest, CpidThatWasGivenUpIsForgotten)
{
    EeTable table(m_directory);
    table.enter("FanS", 0x0301);
    table.noteCpid(0x0301, "FanSMain");
    EXPECT_TRUE(table.holderOf(0x0301));
    table.forgetCpid(0x0301);
    EXPECT_FALSE(table.holderOf(0x0301));
}

TEST_F(EeTableTest, OldestDeadProcessMakesRoomInAFullTable)
{
    fillTable();
    EeTable table(m_directory);
    EXPECT_EQ(table.list().size(), EeTable::capacity);
    table.enter("FanS", 0x0301);
    const auto list = table.list();
    EXPECT_EQ(list.size(), EeTable::capacity);
    EXPECT_EQ(list[700].name, "FanS");
    EXPECT_TRUE(list[700].alive);
    EXPECT_TRUE(list[700].published.empty());
}

TEST_F(EeTableTest, ProcessForWhichThereIsNoPlaceIsLoggedAndNotListed)
{
    fillTable();
    const OtherProcess thousands([&](const OtherProcess::Stay& stay) {
        const SharedStore store(m_directory, "ees", storeFormat);
        for (std::size_t place = 0; place < EeTable::capacity; ++place) {
            store.lock(place);
        }
        stay();
    });
    const LogCapture log;
    EeTable table(m_directory);

    table.enter("FanS", 0x0301);
    table.notePublished(1, 1);
    table.noteCpid(0x0301, "FanSMain");
    table.forgetCpid(0x0301);

    EXPECT_EQ(table.list().size(), EeTable::capacity);
    EXPECT_EQ(table.list()[700].name, "Past");
    EXPECT_EQ(log.texts(), std::vector<std::string>{
                               "Warning 0x0 EE FanS is not in the node's list: it has no more than 1024 places"});
}

TEST_F(EeTableTest, SecondEntryGivesThePlaceANewName)
{
    EeTable table(m_directory);
    table.enter("FanS", 0x0301);
    table.enter("LedS", 0x0302);
    ASSERT_EQ(table.list().size(), 1U);
    EXPECT_EQ(table.list().front().name, "LedS");
    EXPECT_TRUE(table.list().front().alive);
}

TEST_F(EeTableTest, LongNameIsCut)
{
    EeTable table(m_directory);
    table.enter(std::string(100, 'n'), 1);
    EXPECT_EQ(table.list().front().name, std::string(39, 'n'));
}
