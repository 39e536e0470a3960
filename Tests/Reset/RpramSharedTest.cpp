// SPDX-License-Identifier: MIT
// Reset-persistent fields on a board of their own.
#include "RpramShared.h"

#include "AaFile.h"
#include "FailNth.hpp"
#include "LogCapture.hpp"
#include "RpramFiles.hpp"
#include "TestNode.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <linux/capability.h>
#include <string>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

using dorn::testkit::FailEvery;
using dorn::testkit::FailNth;
using testing::ElementsAre;
using testing::IsEmpty;

struct Row {
    ERP_RAM_field field;
    int number;
    const char* file; ///< null: has no storage
};

/// What each field is called, written down a second time.
std::vector<Row> rows()
{
    return {
        {ERP_RAM_field_ResetType, 0, "/RP_RAM_field_ResetType.txt"},
        {ERP_RAM_field_user1, 1, "/RP_RAM_field_user1.txt"},
        {ERP_RAM_field_user2, 2, "/RP_RAM_field_user2.txt"},
        {ERP_RAM_field_operatingMode, 3, "/RP_RAM_field_operatingMode.txt"},
        {ERP_RAM_field_testDedicated, 4, "/RP_RAM_field_testDedicated.txt"},
        {ERP_RAM_field_ISTI, 5, "/RP_RAM_field_ISTI.txt"},
        {ERP_RAM_field_HWInitStorage, 6, "/RP_RAM_field_HWInitStorage.txt"},
        {ERP_RAM_field_user5, 7, "/RP_RAM_field_user5.txt"},
        {ERP_RAM_field_user6, 8, "/RP_RAM_field_user6.txt"},
        {ERP_RAM_field_user7, 9, "/RP_RAM_field_user7.txt"},
        {ERP_RAM_field_user8, 10, "/RP_RAM_field_user8.txt"},
        {ERP_RAM_field_user9, 11, "/RP_RAM_field_user9.txt"},
        {ERP_RAM_field_user10, 12, "/RP_RAM_field_user10.txt"},
        {ERP_RAM_field_user11, 13, "/RP_RAM_field_user11.txt"},
        {ERP_RAM_field_user12, 14, "/RP_RAM_field_user12.txt"},
        {ERP_RAM_field_user13, 15, "/RP_RAM_field_user13.txt"},
        {ERP_RAM_field_user14, 16, "/RP_RAM_field_user14.txt"},
        {ERP_RAM_field_user15, 17, "/RP_RAM_field_user15.txt"},
        {ERP_RAM_field_hwapiResetLoopCounter, 18, "/RP_RAM_field_hwapiResetLoopCounter.txt"},
        {ERP_RAM_field_bootExtPostResultAddr, 19, nullptr},
        {ERP_RAM_field_resetLatchStatus, 20, nullptr},
        {ERP_RAM_field_user16, 21, "/RP_RAM_field_user16.txt"},
        {ERP_RAM_field_user17, 22, "/RP_RAM_field_user17.txt"},
        {ERP_RAM_field_user18, 23, "/RP_RAM_field_user18.txt"},
        {ERP_RAM_field_user19, 24, "/RP_RAM_field_user19.txt"},
        {ERP_RAM_field_user20, 25, "/RP_RAM_field_user20.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LCP1, 26, "/RP_RAM_hdbde_PM_sleep_state_LCP1.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LCP2, 27, "/RP_RAM_hdbde_PM_sleep_state_LCP2.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP1, 28, "/RP_RAM_hdbde_PM_sleep_state_LSP1.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP2, 29, "/RP_RAM_hdbde_PM_sleep_state_LSP2.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP3, 30, "/RP_RAM_hdbde_PM_sleep_state_LSP3.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP4, 31, "/RP_RAM_hdbde_PM_sleep_state_LSP4.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP5, 32, "/RP_RAM_hdbde_PM_sleep_state_LSP5.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP6, 33, "/RP_RAM_hdbde_PM_sleep_state_LSP6.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP7, 34, "/RP_RAM_hdbde_PM_sleep_state_LSP7.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP8, 35, "/RP_RAM_hdbde_PM_sleep_state_LSP8.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP9, 36, "/RP_RAM_hdbde_PM_sleep_state_LSP9.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP10, 37, "/RP_RAM_hdbde_PM_sleep_state_LSP10.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP11, 38, "/RP_RAM_hdbde_PM_sleep_state_LSP11.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP12, 39, "/RP_RAM_hdbde_PM_sleep_state_LSP12.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP13, 40, "/RP_RAM_hdbde_PM_sleep_state_LSP13.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP14, 41, "/RP_RAM_hdbde_PM_sleep_state_LSP14.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP15, 42, "/RP_RAM_hdbde_PM_sleep_state_LSP15.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LSP16, 43, "/RP_RAM_hdbde_PM_sleep_state_LSP16.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LBR1, 44, "/RP_RAM_hdbde_PM_sleep_state_LBR1.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LBR2, 45, "/RP_RAM_hdbde_PM_sleep_state_LBR2.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LBR3, 46, "/RP_RAM_hdbde_PM_sleep_state_LBR3.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LBR4, 47, "/RP_RAM_hdbde_PM_sleep_state_LBR4.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LNI1, 48, "/RP_RAM_hdbde_PM_sleep_state_LNI1.txt"},
        {ERP_RAM_hdbde_PM_sleep_state_LNI2, 49, "/RP_RAM_hdbde_PM_sleep_state_LNI2.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LCP1, 50, "/ERP_RAM_hdbde_ISTI_counter_LCP1.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LCP2, 51, "/ERP_RAM_hdbde_ISTI_counter_LCP2.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP1, 52, "/ERP_RAM_hdbde_ISTI_counter_LSP1.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP2, 53, "/ERP_RAM_hdbde_ISTI_counter_LSP2.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP3, 54, "/ERP_RAM_hdbde_ISTI_counter_LSP3.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP4, 55, "/ERP_RAM_hdbde_ISTI_counter_LSP4.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP5, 56, "/ERP_RAM_hdbde_ISTI_counter_LSP5.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP6, 57, "/ERP_RAM_hdbde_ISTI_counter_LSP6.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP7, 58, "/ERP_RAM_hdbde_ISTI_counter_LSP7.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP8, 59, "/ERP_RAM_hdbde_ISTI_counter_LSP8.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP9, 60, "/ERP_RAM_hdbde_ISTI_counter_LSP9.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP10, 61, "/ERP_RAM_hdbde_ISTI_counter_LSP10.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP11, 62, "/ERP_RAM_hdbde_ISTI_counter_LSP11.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP12, 63, "/ERP_RAM_hdbde_ISTI_counter_LSP12.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP13, 64, "/ERP_RAM_hdbde_ISTI_counter_LSP13.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP14, 65, "/ERP_RAM_hdbde_ISTI_counter_LSP14.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP15, 66, "/ERP_RAM_hdbde_ISTI_counter_LSP15.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LSP16, 67, "/ERP_RAM_hdbde_ISTI_counter_LSP16.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LCA1, 68, "/ERP_RAM_hdbde_ISTI_counter_LCA1.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LBI1, 69, "/ERP_RAM_hdbde_ISTI_counter_LBI1.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LBR1, 70, "/ERP_RAM_hdbde_ISTI_counter_LBR1.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LBR2, 71, "/ERP_RAM_hdbde_ISTI_counter_LBR2.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LBR3, 72, "/ERP_RAM_hdbde_ISTI_counter_LBR3.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LBR4, 73, "/ERP_RAM_hdbde_ISTI_counter_LBR4.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LNI1, 74, "/ERP_RAM_hdbde_ISTI_counter_LNI1.txt"},
        {ERP_RAM_hdbde_ISTI_counter_LNI2, 75, "/ERP_RAM_hdbde_ISTI_counter_LNI2.txt"},
        {ERP_RAM_hdbde_test_mode_LCP, 76, "/RP_RAM_hdbde_test_mode_LCP.txt"},
        {ERP_RAM_hdbde_PM_none, 77, nullptr},
    };
}

class RpramTest : public testing::Test {
protected:
    static constexpr const char* resetTypeFile = "/var/tmp/hwapi/RP_RAM_field_ResetType.txt";

    /// Has the field of the reset type hold exactly this.
    void writeFile(const std::string& content) const { m_node.writeBoardFile(resetTypeFile, content); }
    std::string readFile() const { return m_node.readBoardFile(resetTypeFile); }

    static std::int32_t set(std::uint32_t value, const char* text)
    {
        return ApiResetRpramSet(ERP_RAM_field_ResetType, value, text);
    }

    struct Read {
        std::int32_t result;
        std::uint32_t value;
        std::string text;
        bool operator==(const Read&) const = default;
    };

    static Read get(ERP_RAM_field field = ERP_RAM_field_ResetType)
    {
        Read read{0, 0xDEAD, ""};
        std::string text(RPRAM_TEXT_SIZE + 16, '#');
        read.result = ApiResetRpramGet(field, &read.value, text.data());
        EXPECT_EQ(text.substr(RPRAM_TEXT_SIZE), std::string(16, '#')) << "written behind the text";
        read.text = text.starts_with('#') ? "(untouched)" : text.c_str();
        return read;
    }

    dorn::testkit::TestNode m_node{{.logLevel = "debug"}};
    dorn::testkit::LogCapture m_log;
};

TEST_F(RpramTest, EveryFieldHasItsNumberAndItsFile)
{
    int number = 0;
    for (const Row& row : rows()) {
        EXPECT_EQ(row.number, number);
        EXPECT_EQ(static_cast<int>(row.field), number);
        const std::string path = row.file ? std::string("/var/tmp/hwapi") + row.file : "";
        EXPECT_EQ(vel::hwapi::reset::getFileName(row.field), path);
        ++number;
    }
    EXPECT_EQ(number, 78);
}

TEST_F(RpramTest, EveryFieldIsWrittenAndReadOnItsOwn)
{
    std::uint32_t value = 1000;
    for (const Row& row : rows()) {
        if (row.file) {
            EXPECT_EQ(ApiResetRpramSet(row.field, value, row.file), 0) << row.file;
            EXPECT_TRUE(std::filesystem::exists(m_node.boardPath(std::string("/var/tmp/hwapi") + row.file)));
        }
        ++value;
    }

    value = 1000;
    for (const Row& row : rows()) {
        if (row.file) {
            EXPECT_EQ(get(row.field), (Read{0, value, row.file}));
        }
        ++value;
    }

    const std::filesystem::directory_iterator files(m_node.boardPath("/var/tmp/hwapi"));
    EXPECT_EQ(std::distance(begin(files), end(files)), 75);
}

class UnsupportedFieldTest : public RpramTest, public testing::WithParamInterface<int> {
protected:
    ERP_RAM_field field() const { return static_cast<ERP_RAM_field>(GetParam()); }
    std::string number() const { return std::to_string(GetParam()); }
};

TEST_P(UnsupportedFieldTest, IsNotWritten)
{
    EXPECT_EQ(ApiResetRpramSet(field(), 1, "x"), 3);

    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20006 Invalid RPRAM field " + number(),
                                           "Info 0x20006 ApiResetRpramSet: Field " + number() + " is not supported"));
    EXPECT_FALSE(std::filesystem::exists(m_node.boardPath("/var/tmp")));
}

TEST_P(UnsupportedFieldTest, IsNotRead)
{
    EXPECT_EQ(get(field()), (Read{3, 0xDEAD, "(untouched)"}));

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x20006 Invalid RPRAM field " + number(),
                            "Warning 0x20006 ApiResetRpramGet: Field " + number() + " is not supported"));
}

INSTANTIATE_TEST_SUITE_P(Fields, UnsupportedFieldTest, testing::Values(19, 20, 77, 78, 128, 0x10000, -1));

TEST_F(RpramTest, FirstWriteMakesTheDirectoryAndAFileOfOneLine)
{
    EXPECT_EQ(set(3, "warm"), 0);

    EXPECT_EQ(readFile(), "0x3 :warm");
    EXPECT_THAT(m_log.texts(), ElementsAre("Debug 0x20006 ApiResetRpramSet: Creating dir /var/tmp/hwapi",
                                           "Debug 0x20006 ApiResetRpramSet: AaFileCreateDir returned 0",
                                           "Debug 0x20006 ApiResetRpramSet: Writing 0x3 :warm to "
                                           "/var/tmp/hwapi/RP_RAM_field_ResetType.txt"));
}

TEST_F(RpramTest, SecondWritePutsItsLineInFront)
{
    set(3, "warm");
    m_log.clear();

    EXPECT_EQ(set(0xABCDEF01, "cold"), 0);

    EXPECT_EQ(readFile(), "0xABCDEF01 :cold\n0x3 :warm");
    EXPECT_THAT(m_log.texts(), ElementsAre("Debug 0x20006 ApiResetRpramSet: Writing 0xABCDEF01 :cold to "
                                           "/var/tmp/hwapi/RP_RAM_field_ResetType.txt"));
}

TEST_F(RpramTest, TwelveWritesLeaveTheNewestAndTheTenBeforeIt)
{
    for (std::uint32_t value = 1; value <= 12; ++value) {
        EXPECT_EQ(set(value, "w"), 0);
    }
    EXPECT_EQ(readFile(), "0xC :w\n0xB :w\n0xA :w\n0x9 :w\n0x8 :w\n0x7 :w\n0x6 :w\n0x5 :w\n0x4 :w\n0x3 :w\n0x2 :w");
}

TEST_F(RpramTest, LongerHistoryIsCutToTenLines)
{
    std::string old;
    for (char line = 'a'; line <= 'z'; ++line) {
        old += std::string(1, line) + "\n";
    }
    writeFile(old);

    EXPECT_EQ(set(1, ""), 0);

    EXPECT_EQ(readFile(), "0x1 :\na\nb\nc\nd\ne\nf\ng\nh\ni\nj");
}

TEST_F(RpramTest, HistoryIsKeptAsItStands)
{
    writeFile("no number\n\n0x7 :seven\r");

    EXPECT_EQ(set(1, "x"), 0);

    EXPECT_EQ(readFile(), "0x1 :x\nno number\n\n0x7 :seven\r");
}

TEST_F(RpramTest, LineFeedAtTheEndOfTheOldFileIsAnEmptyLine)
{
    writeFile("0x7 :seven\n");
    EXPECT_EQ(set(1, "x"), 0);
    EXPECT_EQ(readFile(), "0x1 :x\n0x7 :seven\n");
}

TEST_F(RpramTest, EmptyOldFileIsOneEmptyLine)
{
    writeFile("");
    EXPECT_EQ(set(1, "x"), 0);
    EXPECT_EQ(readFile(), "0x1 :x\n");
}

TEST_F(RpramTest, TextIsWrittenAsItStands)
{
    const std::string text = "a:b\tc\x01 \xC3\xA4\xFF";

    EXPECT_EQ(set(1, text.c_str()), 0);

    EXPECT_EQ(readFile(), "0x1 :" + text);
    EXPECT_EQ(get(), (Read{0, 1, text}));
}

TEST_F(RpramTest, LineFeedInTheTextBeginsALineOfTheHistory)
{
    EXPECT_EQ(set(1, "first\n0x9 :second"), 0);
    EXPECT_EQ(readFile(), "0x1 :first\n0x9 :second");
    EXPECT_EQ(get(), (Read{0, 1, "first"}));

    EXPECT_EQ(set(2, "x"), 0);

    EXPECT_EQ(readFile(), "0x2 :x\n0x1 :first\n0x9 :second");
}

class LongLineTest : public RpramTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(LongLineTest, IsKeptInTheHistory)
{
    const std::string line(GetParam(), 'l');
    writeFile(line + "\n" + line);

    EXPECT_EQ(set(1, "x"), 0);

    EXPECT_EQ(readFile(), "0x1 :x\n" + line + "\n" + line);
}

TEST_P(LongLineTest, IsReadUpTo99CharactersOfText)
{
    writeFile("0x5 :" + std::string(GetParam(), 't'));
    EXPECT_EQ(get(), (Read{0, 5, std::string(std::min<std::size_t>(GetParam(), 99), 't')}));
}

INSTANTIATE_TEST_SUITE_P(Lengths, LongLineTest, testing::Values(0, 1, 98, 99, 100, 1023, 1024, 100000));

/// While it lives, a file of this process holds no more bytes: what a full disk does to a file.
class SmallFiles {
public:
    explicit SmallFiles(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SmallFiles()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

TEST_F(RpramTest, FullDiskCutsTheHistory)
{
    set(1, "one");
    set(2, "two");
    {
        const SmallFiles full(12);
        EXPECT_EQ(set(3, "three"), 0);
    }
    EXPECT_EQ(readFile(), "0x3 :three\n0");
    EXPECT_EQ(get(), (Read{0, 3, "three"}));
}

TEST_F(RpramTest, FullDiskMayCostTheField)
{
    set(1, "one");
    {
        const SmallFiles full(0);
        EXPECT_EQ(set(2, "two"), 0);
    }
    EXPECT_EQ(readFile(), "");
    EXPECT_EQ(get(), (Read{0, 0, ""}));

    EXPECT_EQ(set(3, "three"), 0) << "and it recovers";
    EXPECT_EQ(get(), (Read{0, 3, "three"}));
}

TEST_F(RpramTest, LineIsCutTo99Characters)
{
    EXPECT_EQ(set(0x12, std::string(200, 't').c_str()), 0);

    EXPECT_EQ(readFile(), "0x12 :" + std::string(93, 't'));
    EXPECT_EQ(get(), (Read{0, 0x12, std::string(93, 't')}));
}

TEST_F(RpramTest, MissingTextIsEmpty)
{
    EXPECT_EQ(set(0, nullptr), 0);
    EXPECT_EQ(readFile(), "0x0 :");
}

TEST_F(RpramTest, DirectoryThatCannotBeMadeIsNotActedOn)
{
    std::filesystem::create_directories(m_node.boardPath("/var/tmp/hwapi"));
    const FailEvery<AaFileDirExists> nothingThere;
    const FailNth<AaFileCreateDir> noDirectory(1, 13);

    EXPECT_EQ(set(3, "warm"), 0);

    EXPECT_EQ(readFile(), "0x3 :warm");
    EXPECT_THAT(m_log.texts(), testing::Contains("Debug 0x20006 ApiResetRpramSet: AaFileCreateDir returned 13"));
}

TEST_F(RpramTest, FileThatCannotBeMadeIsAFailureWithoutMessage)
{
    const FailNth<AaFileCreateDir> noDirectory(1);

    EXPECT_EQ(set(3, "warm"), 1);

    EXPECT_THAT(m_log.texts(), ElementsAre("Debug 0x20006 ApiResetRpramSet: Creating dir /var/tmp/hwapi",
                                           "Debug 0x20006 ApiResetRpramSet: AaFileCreateDir returned 1"));
}

/// While it lives, the modes of files bind the calling thread even if it is root's.
class BoundByModes {
public:
    BoundByModes()
    {
        EXPECT_EQ(syscall(SYS_capget, &m_header, m_before), 0);
        __user_cap_data_struct bound[] = {m_before[0], m_before[1]};
        bound[0].effective &= ~(1U << CAP_DAC_OVERRIDE);
        EXPECT_EQ(syscall(SYS_capset, &m_header, bound), 0);
    }
    ~BoundByModes() { EXPECT_EQ(syscall(SYS_capset, &m_header, m_before), 0); }
    BoundByModes(const BoundByModes&) = delete;
    BoundByModes& operator=(const BoundByModes&) = delete;

private:
    __user_cap_header_struct m_header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_before[_LINUX_CAPABILITY_U32S_3]{};
};

TEST_F(RpramTest, FileThatCannotBeWrittenStaysAsItIs)
{
    writeFile("0x3 :warm");
    std::filesystem::permissions(m_node.boardPath(resetTypeFile), std::filesystem::perms::owner_read);
    const BoundByModes bound;

    EXPECT_EQ(set(4, "cold"), 1);

    EXPECT_EQ(readFile(), "0x3 :warm");
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(RpramTest, FileThatCannotBeReadIsNeitherReadNorWritten)
{
    std::filesystem::create_directories(m_node.boardPath(resetTypeFile)); // it can be opened, and that is all

    EXPECT_EQ(get(), (Read{1, 0xDEAD, "(untouched)"}));
    EXPECT_EQ(set(4, "cold"), 1);

    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(RpramTest, PathThatHasNoPlaceIsAFailure)
{
    ASSERT_EQ(set(3, "warm"), 0);
    const FailEvery<AaFileGetBoardPath> noPlace;

    EXPECT_EQ(set(4, "cold"), 1);
    EXPECT_EQ(get(), (Read{1, 0xDEAD, "(untouched)"}));
}

TEST_F(RpramTest, NewestLineIsRead)
{
    set(3, "warm");
    set(0x4F, "cold");
    m_log.clear();

    EXPECT_EQ(get(), (Read{0, 0x4F, "cold"}));

    EXPECT_THAT(m_log.texts(), ElementsAre("Debug 0x20006 ApiResetRpramGet: Found value 0x4F : cold from "
                                           "/var/tmp/hwapi/RP_RAM_field_ResetType.txt"));
}

TEST_F(RpramTest, OnlyTheFirstColonSeparates)
{
    set(5, "a: b:c");
    EXPECT_EQ(get(), (Read{0, 5, "a: b:c"}));
}

TEST_F(RpramTest, FieldThatWasNotWrittenIsNotRead)
{
    EXPECT_EQ(get(), (Read{1, 0xDEAD, "(untouched)"}));
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

struct Content {
    const char* name;
    std::string content;
    std::uint32_t value;
    std::string text;
};

void PrintTo(const Content& content, std::ostream* stream)
{
    *stream << content.name;
}

class OddContentTest : public RpramTest, public testing::WithParamInterface<Content> {};

TEST_P(OddContentTest, IsReadAsFarAsItGoes)
{
    writeFile(GetParam().content);
    EXPECT_EQ(get(), (Read{0, GetParam().value, GetParam().text}));
}

INSTANTIATE_TEST_SUITE_P(
    Contents, OddContentTest,
    testing::Values(
        Content{"Empty", "", 0, ""}, Content{"NoColon", "0x1F", 0x1F, ""}, Content{"NoNumber", ":text", 0, "text"},
        Content{"Word", "zero :text", 0, "text"}, Content{"LowerCase", "0xabcdef :text", 0xABCDEF, "text"},
        Content{"WithoutPrefix", "1f :text", 0x1F, "text"}, Content{"Greatest", "0xFFFFFFFF :text", 0xFFFFFFFF, "text"},
        Content{"TooGreat", "0x100000001 :text", 0xFFFFFFFF, "text"},
        Content{"MuchTooGreat", "0xFFFFFFFFFFFFFFFFFF :text", 0xFFFFFFFF, "text"},
        Content{"GreatestOf64Bits", "0xFFFFFFFFFFFFFFFF :text", 0xFFFFFFFF, "text"},
        Content{"NearlyGreatestOf64Bits", "0xFFFFFFFF00000001 :text", 0xFFFFFFFF, "text"},
        Content{"Negative", " -0x10 :text", 0xFFFFFFF0, "text"}, Content{"MinusOne", "-1 :text", 0xFFFFFFFF, "text"},
        Content{"MinusZero", "-0x0 :text", 0, "text"}, Content{"MostNegative", "-0xFFFFFFFF :text", 1, "text"},
        Content{"TooNegative", "-0x100000000 :text", 0xFFFFFFFF, "text"},
        Content{"TooNegativeByOne", "-0x100000001 :text", 0xFFFFFFFF, "text"},
        Content{"NegativeOf60Bits", "-0xFFFFFFFFFFFFFFF0 :text", 0xFFFFFFFF, "text"},
        Content{"NegativeOf64Bits", "-0xFFFFFFFFFFFFFFFF :text", 0xFFFFFFFF, "text"},
        Content{"NegativeOf68Bits", "-0xFFFFFFFFFFFFFFFF0 :text", 0xFFFFFFFF, "text"},
        Content{"Positive", "+0x1F :text", 0x1F, "text"}, Content{"TwoSigns", "--5 :text", 0, "text"},
        Content{"BlankBehindTheSign", "- 5 :text", 0, "text"}, Content{"OnlyASign", "- :text", 0, "text"},
        Content{"WhiteSpace", " \t\v\f\r5 :text", 5, "text"}, Content{"BigX", "0X1F :text", 0x1F, "text"},
        Content{"OnlyThePrefix", "0x :text", 0, "text"}, Content{"SignBehindThePrefix", "0x-5 :text", 0, "text"},
        Content{"PrefixTwice", "0x0x5 :text", 0, "text"}, Content{"LettersBehind", "0x5xyz :text", 5, "text"},
        Content{"ZeroByte", std::string("0x5\0 :text", 10), 5, "text"},
        Content{"TextWithZeroByte", std::string("0x5 :a\0b", 8), 5, "a"}, Content{"OnlyBlanks", "   ", 0, ""},
        Content{"OnlyTheFirstLine", "\n0x5 :text", 0, ""}, Content{"LineFeedAtTheEnd", "0x5 :text\n", 5, "text"},
        Content{"LongText", "0x5 :" + std::string(300, 't'), 5, std::string(99, 't')}));

TEST_F(RpramTest, DirectoriesHaveTheirTwoNames)
{
    EXPECT_STREQ(vel::hwapi::reset::RPRAMPath, "/var/tmp/hwapi");
    EXPECT_STREQ(vel::hwapi::reset::rpramPathForAaFile, "/rpram/hwapi");
}

} // namespace
