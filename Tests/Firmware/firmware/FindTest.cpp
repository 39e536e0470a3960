// SPDX-License-Identifier: MIT
// Finding images by their names, and the one that fits.
#include "UpdateTest.hpp"

#include "AaFile.h"
#include "ddal_devicetree.h"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using testkit::CountCalls;
using testkit::FailNth;

class FindMultipleTest : public UpdateTest {
protected:
    explicit FindMultipleTest(const std::string& unitId = "NAXE") { useUnit(unitId); }

    void putFiles(const std::vector<std::string>& names) const
    {
        for (const std::string& name : names) {
            m_node.writeBoardFile(std::string(directory) + "/" + name, "");
        }
    }

    /// @return the result; m_found has the names without the directory.
    std::int32_t find(const char* board, const char* chip, std::size_t items = 20)
    {
        std::vector<std::array<char, 128>> names(20);
        const std::int32_t result = find_binary_multiple(
            directory, board, chip, reinterpret_cast<char(*)[128]>(names.data()), static_cast<std::int32_t>(items));
        m_found.clear();
        for (const std::array<char, 128>& name : names) {
            const std::string text = name.data();
            if (!text.empty()) {
                EXPECT_TRUE(text.starts_with("/ffs/run/boot/")) << text;
                m_found.push_back(text.substr(std::string("/ffs/run/boot/").size()));
            }
        }
        return result;
    }

    /// The lines since the last call, without those that name each entry of the directory.
    std::vector<std::string> lines()
    {
        std::vector<std::string> all = linesOf("find_binary_multiple");
        std::erase_if(all, [](const std::string& line) { return line.find("():   ") != std::string::npos; });
        return all;
    }

    std::vector<std::string> m_found;
};

TEST_F(FindMultipleTest, NameHasBoardDashAndChip)
{
    putFiles({"NAX-CHIP-1.bin"});

    EXPECT_EQ(find(nullptr, "CHIP"), 1);
    EXPECT_THAT(m_found, ElementsAre("NAX-CHIP-1.bin"));
    EXPECT_THAT(lines(), ElementsAre("debug find_binary_multiple(): Search for binary chip identifier 'CHIP'",
                                     "debug find_binary_multiple(): Search string 'NAX-CHIP'",
                                     "debug find_binary_multiple(): List files in '/ffs/run/boot'",
                                     "debug find_binary_multiple(): File 'NAX-CHIP-1.bin' matches to search criteria"));
}

TEST_F(FindMultipleTest, EveryEntryIsNamed)
{
    putFiles({"a.bin", "b"});

    find(nullptr, "CHIP");

    std::vector<std::string> entries = linesOf("find_binary_multiple");
    std::erase_if(entries, [](const std::string& line) { return line.find("():   ") == std::string::npos; });
    EXPECT_THAT(entries,
                UnorderedElementsAre("debug find_binary_multiple():   .", "debug find_binary_multiple():   ..",
                                     "debug find_binary_multiple():   a.bin", "debug find_binary_multiple():   b",
                                     "debug find_binary_multiple():   .", "debug find_binary_multiple():   ..",
                                     "debug find_binary_multiple():   a.bin", "debug find_binary_multiple():   b"));
}

TEST_F(FindMultipleTest, MatchIsToldBehindItsEntry)
{
    putFiles({"NAX-CHIP-1.bin", "NAX-CHIP-2.bin", "other"});

    EXPECT_EQ(find(nullptr, "CHIP"), 2);
    const std::vector<std::string> all = linesOf("find_binary_multiple");
    ASSERT_EQ(all.size(), 10U); // three at the begin, five entries, two matches
    for (const char* const name : {"NAX-CHIP-1.bin", "NAX-CHIP-2.bin"}) {
        const auto entry =
            std::find(all.begin() + 3, all.end(), "debug find_binary_multiple():   " + std::string(name));
        ASSERT_LT(all.end() - entry, 8);
        ASSERT_GT(all.end() - entry, 1);
        EXPECT_EQ(entry[1],
                  "debug find_binary_multiple(): File '" + std::string(name) + "' matches to search criteria");
    }
}

TEST_F(FindMultipleTest, TextMayStandAnywhereInTheName)
{
    putFiles({"new-NAX-CHIP.bin", "NAX-CHIPSET.bin", "XNAX-CHIP 2 \xC3\xA4.bin"});

    EXPECT_EQ(find(nullptr, "CHIP"), 3);
    EXPECT_THAT(m_found, UnorderedElementsAre("new-NAX-CHIP.bin", "NAX-CHIPSET.bin", "XNAX-CHIP 2 \xC3\xA4.bin"));
}

TEST_F(FindMultipleTest, NameEndsWithItsFirstBin)
{
    putFiles({"abc-CHIP-x.bin.bak", "abc-CHIP-x.bin", "abc-CHIP.bin.bin", "abc-CHIP", "abc-CHIP.BIN"});

    EXPECT_EQ(find("abc", "CHIP"), 1);
    EXPECT_THAT(m_found, ElementsAre("abc-CHIP-x.bin"));
}

TEST_F(FindMultipleTest, NameThatIsTheChipIdentifierItselfDoesNotMatch)
{
    putFiles({"BMU", "A"});

    EXPECT_EQ(find(nullptr, "BMU"), 0); // three characters, as many as ".bin" has less one
    EXPECT_EQ(find(nullptr, "A"), 0);
    EXPECT_THAT(m_found, IsEmpty());
}

TEST_F(FindMultipleTest, NameMayBeNothingMoreThanItHasToBe)
{
    putFiles({"NAX-.bin", ".bin"});

    EXPECT_EQ(find(nullptr, ""), 1);
    EXPECT_THAT(m_found, ElementsAre("NAX-.bin"));
    EXPECT_EQ(find("abc", ".bin"), 2) << "the ending is what matches";
}

TEST_F(FindMultipleTest, NamesMayHaveAnyBytes)
{
    const std::vector<std::string> names{"NAX-CHIP \t\n%s%n.bin", "NAX-CHIP\xFF\xFE.bin", "-NAX-CHIP'\"$(x).bin"};
    putFiles(names);

    EXPECT_EQ(find(nullptr, "CHIP"), 3);
    EXPECT_THAT(m_found, ::testing::UnorderedElementsAreArray(names));
}

TEST_F(FindMultipleTest, ThreeCharactersOfTheBoardCount)
{
    putFiles({"KIV-BMU.bin", "KI-BMU.bin"});

    EXPECT_EQ(find("KIVN", "BMU"), 1);
    EXPECT_THAT(m_found, ElementsAre("KIV-BMU.bin"));
    EXPECT_EQ(find("KI", "BMU"), 1);
    EXPECT_THAT(m_found, ElementsAre("KI-BMU.bin"));
}

TEST_F(FindMultipleTest, EmptyBoardTextIsOneToo)
{
    putFiles({"-BMU.bin", "BMU.bin", "NAX-BMU.bin"});

    EXPECT_EQ(find("", "BMU"), 2);
    EXPECT_THAT(m_found, UnorderedElementsAre("-BMU.bin", "NAX-BMU.bin"));
    EXPECT_EQ(lines()[1], "debug find_binary_multiple(): Search string '-BMU'");
}

TEST_F(FindMultipleTest, ChipAloneIsTheFallback)
{
    putFiles({"CHIP.bin", "OTHER.bin"});

    EXPECT_EQ(find("abc", "CHIP"), 1);
    EXPECT_THAT(m_found, ElementsAre("CHIP.bin"));
    EXPECT_THAT(lines(), ElementsAre("debug find_binary_multiple(): Search for binary chip identifier 'CHIP'",
                                     "debug find_binary_multiple(): Search string 'abc-CHIP'",
                                     "debug find_binary_multiple(): List files in '/ffs/run/boot'",
                                     "debug find_binary_multiple(): No board type files, search only chip identifier "
                                     "'CHIP'",
                                     "debug find_binary_multiple(): List files in '/ffs/run/boot'",
                                     "debug find_binary_multiple(): File 'CHIP.bin' matches"));
}

TEST_F(FindMultipleTest, FallbackMayFindMoreThanThereIsRoomFor)
{
    putFiles({"CHIP-1.bin", "CHIP-2.bin", "RUD-CHIP.bin", "CHIP.bin.bak"});

    EXPECT_EQ(find("abc", "CHIP"), 3);
    EXPECT_THAT(m_found, UnorderedElementsAre("CHIP-1.bin", "CHIP-2.bin", "RUD-CHIP.bin"));
    EXPECT_EQ(find("abc", "CHIP", 2), 3);
    EXPECT_EQ(m_found.size(), 2U);
}

TEST_F(FindMultipleTest, FallbackIsNotUsedWhenTheBoardHasFiles)
{
    putFiles({"CHIP.bin", "NAX-CHIP.bin"});

    EXPECT_EQ(find(nullptr, "CHIP"), 1);
    EXPECT_THAT(m_found, ElementsAre("NAX-CHIP.bin"));
}

TEST_F(FindMultipleTest, NothingIsFoundInAnEmptyDirectory)
{
    EXPECT_EQ(find(nullptr, "CHIP"), 0);
    EXPECT_THAT(m_found, IsEmpty());
}

TEST_F(FindMultipleTest, MoreFilesThanThereIsRoomForAreCounted)
{
    putFiles({"NAX-CHIP-1.bin", "NAX-CHIP-2.bin", "NAX-CHIP-3.bin"});

    EXPECT_EQ(find(nullptr, "CHIP", 2), 3);
    EXPECT_EQ(m_found.size(), 2U);
    EXPECT_EQ(find(nullptr, "CHIP", 0), 3);
    EXPECT_THAT(m_found, IsEmpty());
    char untouched[1][FIRMWARE_FILE_NAME_SIZE] = {"x"};
    EXPECT_EQ(find_binary_multiple(directory, nullptr, "CHIP", untouched, -1), 3);
    EXPECT_STREQ(untouched[0], "x");
}

TEST_F(FindMultipleTest, JoinedNameHasAtMost127Characters)
{
    const std::string fits = "NAX-CHIP" + std::string(101, 'x') + ".bin"; // 127 with the directory
    const std::string tooLong = "NAX-CHOP" + std::string(102, 'x') + ".bin";
    putFiles({fits, tooLong});

    EXPECT_EQ(find(nullptr, "CHIP"), 1);
    EXPECT_THAT(m_found, ElementsAre(fits));
    EXPECT_EQ(find(nullptr, "CHOP"), 1);
    EXPECT_THAT(m_found, ElementsAre(tooLong.substr(0, 113)));
}

TEST_F(FindMultipleTest, LongNameIsCut)
{
    const std::string name = "NAX-CHIP-" + std::string(150, 'x') + ".bin";
    putFiles({name});

    EXPECT_EQ(find(nullptr, "CHIP"), 1);
    EXPECT_EQ(std::string("/ffs/run/boot/") + m_found.front(), ("/ffs/run/boot/" + name).substr(0, 127));
}

TEST_F(FindMultipleTest, ArgumentsAreWanted)
{
    char names[1][FIRMWARE_FILE_NAME_SIZE];

    EXPECT_EQ(find_binary_multiple(nullptr, nullptr, "CHIP", names, 1), -911);
    EXPECT_EQ(find_binary_multiple(directory, nullptr, nullptr, names, 1), -911);
    EXPECT_EQ(find_binary_multiple(directory, nullptr, "CHIP", nullptr, 1), -911);
    EXPECT_THAT(m_syslog.texts(), IsEmpty());
}

TEST_F(FindMultipleTest, UnitIdIsReadAnew)
{
    const CountCalls<ddal_devicetree_get_unit_id> calls;

    find(nullptr, "CHIP");
    EXPECT_EQ(calls.count(), 1U);
    find("NAX", "CHIP");
    EXPECT_EQ(calls.count(), 1U);
}

TEST_F(FindMultipleTest, UnitIdThatCannotBeReadIsAFailure)
{
    const FailNth<ddal_devicetree_get_unit_id> failure(1);

    EXPECT_EQ(find(nullptr, "CHIP"), -1);
    EXPECT_THAT(lines(), ElementsAre("debug find_binary_multiple(): Search for binary chip identifier 'CHIP'",
                                     driverFailure("find_binary_multiple", "ddal_devicetree_get_unit_id")));
}

TEST_F(FindMultipleTest, SearchStringHasAtMost127Characters)
{
    putFiles({"abc-" + std::string(123, 'C') + ".bin", "abd-" + std::string(124, 'C') + ".bin"});

    EXPECT_EQ(find("abc", std::string(123, 'C').c_str()), 1);
    EXPECT_THAT(m_found, ElementsAre("abc-" + std::string(109, 'C'))) << "cut, as every long name";
    lines();
    EXPECT_EQ(find("abd", std::string(124, 'C').c_str()), -3);
    EXPECT_THAT(lines(), ElementsAre("debug find_binary_multiple(): Search for binary chip identifier '" +
                                     std::string(124, 'C') + "'"));
}

TEST_F(FindMultipleTest, WhatIsNoDirectoryCannotBeOpened)
{
    m_node.writeBoardFile("/file", "");
    for (const char* const name : {"/file", "ffs/run/boot", "", "/missing"}) {
        char names[1][FIRMWARE_FILE_NAME_SIZE] = {};
        EXPECT_EQ(find_binary_multiple(name, nullptr, "CHIP", names, 1), -4) << name;
        EXPECT_EQ(lines().back(), "debug find_binary_multiple(): opendir(" + std::string(name) + ") failed");
    }
}

TEST_F(FindMultipleTest, DirectoryThatCannotBeOpenedIsAFailure)
{
    std::filesystem::remove(m_node.boardPath(directory));

    EXPECT_EQ(find(nullptr, "CHIP"), -4);
    EXPECT_THAT(lines(), ElementsAre("debug find_binary_multiple(): Search for binary chip identifier 'CHIP'",
                                     "debug find_binary_multiple(): Search string 'NAX-CHIP'",
                                     "debug find_binary_multiple(): opendir(/ffs/run/boot) failed"));
}

TEST_F(FindMultipleTest, DirectoryThatIsGoneForTheFallbackIsAFailure)
{
    const FailNth<AaFileGetBoardPath> failure(2);

    EXPECT_EQ(find(nullptr, "CHIP"), -4);
    EXPECT_EQ(lines().back(), "debug find_binary_multiple(): opendir(/ffs/run/boot) failed");
}

class ShortUnitIdTest : public FindMultipleTest {
protected:
    ShortUnitIdTest() : FindMultipleTest("NA") {}
};

TEST_F(ShortUnitIdTest, ShortUnitIdIsTheBoardText)
{
    putFiles({"NA-CHIP.bin", "NAX-CHIP.bin"});

    EXPECT_EQ(find(nullptr, "CHIP"), 1);
    EXPECT_THAT(m_found, ElementsAre("NA-CHIP.bin"));
}

class FindCompatibleTest : public UpdateTest {
protected:
    FindCompatibleTest() { useUnit("NAXE"); }

    std::int32_t find(std::uint32_t hwSwId = 0, std::int32_t minor = 0)
    {
        m_name = NameBuffer();
        m_version = 0xDEADBEEF;
        return find_binary_compatible(directory, nullptr, "CHIP", hwSwId, minor, m_name.data(), m_name.size(),
                                      &m_version);
    }

    void expectNothing() const
    {
        EXPECT_EQ(m_name.name(), "");
        EXPECT_EQ(m_version, 0U);
    }

    NameBuffer m_name;
    std::uint32_t m_version = 0;
};

TEST_F(FindCompatibleTest, TheOneThatFitsIsFound)
{
    putImage("NAX-CHIP-1.bin", 7);
    putImage("NAX-CHIP-2.bin", 8, 0x3B01);
    m_node.writeBoardFile("/ffs/run/boot/NAX-CHIP-3.bin", "no image");

    EXPECT_EQ(find(), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/NAX-CHIP-1.bin");
    EXPECT_EQ(m_version, 7U);
    EXPECT_THAT(linesOf("find_binary_compatible"), IsEmpty());
}

TEST_F(FindCompatibleTest, HwSwIdIsTheBoardsUnlessOneIsGiven)
{
    putImage("NAX-CHIP.bin", 7, 0x3B01);

    EXPECT_EQ(find(), 0);
    const CountCalls<ddal_devicetree_get_hw_sw_id> calls;
    EXPECT_EQ(find(0x3B01), 1);
    EXPECT_EQ(calls.count(), 0U);
}

TEST_F(FindCompatibleTest, BoardTextMayBeAnothers)
{
    putImage("NAX-CHIP.bin", 7);
    putImage("KIV-CHIP.bin", 8);

    EXPECT_EQ(find_binary_compatible(directory, "KIVN", "CHIP", 0, 0, m_name.data(), m_name.size(), &m_version), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/KIV-CHIP.bin");
    EXPECT_EQ(m_version, 8U);
}

TEST_F(FindCompatibleTest, AnythingButZeroAllowsAMinorDifference)
{
    putImage("NAX-CHIP.bin", 7, 0x3A77);

    EXPECT_EQ(find(0, 2), 1);
    EXPECT_EQ(find(0, -1), 1);
}

TEST_F(FindCompatibleTest, MinorDifferenceCountsWhenAllowed)
{
    putImage("NAX-CHIP.bin", 7, 0x3A77);

    EXPECT_EQ(find(0, 0), 0);
    expectNothing();
    EXPECT_EQ(find(0, 1), 1);
    EXPECT_EQ(m_version, 7U);
}

TEST_F(FindCompatibleTest, NoneThatFitsGivesNoName)
{
    putImage("NAX-CHIP-1.bin", 7, 0x3B01);
    putImage("NAX-CHIP-2.bin", 7, 0x3C01);

    EXPECT_EQ(find(), 0);
    expectNothing();
    EXPECT_THAT(linesOf("find_binary_compatible"),
                ElementsAre("info find_binary_compatible(): There are 2 files with chip 'CHIP' identifier, but not "
                            "compatible with this board"));
}

TEST_F(FindCompatibleTest, SeveralThatFitGiveNoName)
{
    putImage("NAX-CHIP-1.bin", 7);
    putImage("NAX-CHIP-2.bin", 8);

    EXPECT_EQ(find(), 2);
    expectNothing();
    EXPECT_THAT(linesOf("find_binary_compatible"),
                ElementsAre("info find_binary_compatible(): 2 compatible files are found, do not know which one to "
                            "choose!"));
}

TEST_F(FindCompatibleTest, TenFilesAreNotTooMany)
{
    for (int number = 0; number < 9; ++number) {
        putImage("NAX-CHIP-" + std::to_string(number) + ".bin", 7, 0x3B01);
    }
    putImage("NAX-CHIP-9.bin", 9);

    EXPECT_EQ(find(), 1);
    EXPECT_EQ(m_version, 9U);

    putImage("NAX-CHIP-10.bin", 7, 0x3B01);
    EXPECT_EQ(find(), -5);
    expectNothing();
    EXPECT_THAT(linesOf("find_binary_compatible"),
                ElementsAre("debug find_binary_compatible(): There are too many files (11) with same chip 'CHIP' "
                            "identifier, better naming convention for firmware update filenames are needed!"));
}

TEST_F(FindCompatibleTest, FailureOfTheSearchIsPassedOn)
{
    EXPECT_EQ(find(), 0);
    expectNothing();
    std::filesystem::remove(m_node.boardPath(directory));
    EXPECT_EQ(find(), -4);
    expectNothing();
}

TEST_F(FindCompatibleTest, ArgumentsAreWanted)
{
    char* const name = m_name.data();
    EXPECT_EQ(find_binary_compatible(nullptr, nullptr, "CHIP", 0, 0, name, m_name.size(), &m_version), -911);
    expectNothing();
    EXPECT_EQ(find_binary_compatible(directory, nullptr, nullptr, 0, 0, name, m_name.size(), &m_version), -911);
    m_version = 1;
    EXPECT_EQ(find_binary_compatible(directory, nullptr, "CHIP", 0, 0, nullptr, 0, &m_version), -911);
    EXPECT_EQ(m_version, 0U);
    m_name = NameBuffer();
    EXPECT_EQ(find_binary_compatible(directory, nullptr, "CHIP", 0, 0, name, m_name.size(), nullptr), -911);
    EXPECT_EQ(m_name.name(), "");
}

/// The HwSwId is read when there are files to compare it with, and not before.
TEST_F(FindCompatibleTest, HwSwIdIsReadForFilesOnly)
{
    const testkit::FailEvery<ddal_devicetree_get_hw_sw_id> failure;
    EXPECT_EQ(find(), 0);
    for (int number = 0; number < 11; ++number) {
        putImage("NAX-CHIP-" + std::to_string(number) + ".bin", 7);
    }
    EXPECT_EQ(find(), -5);
    EXPECT_EQ(failure.count(), 0U);
}

/// Whatever else is called like an image fits nobody, and is in nobody's way.
TEST_F(FindCompatibleTest, WhatIsNoImageIsPassedOver)
{
    putImage("NAX-CHIP.bin", 7);
    std::filesystem::create_directories(m_node.boardPath("/ffs/run/boot/NAX-CHIP directory.bin"));
    ASSERT_EQ(mkfifo(m_node.boardPath("/ffs/run/boot/NAX-CHIP fifo.bin").c_str(), 0600), 0);
    std::filesystem::create_symlink("/gone", m_node.boardRoot() + "/ffs/run/boot/NAX-CHIP link.bin");
    std::filesystem::create_symlink("NAX-CHIP loop.bin", m_node.boardRoot() + "/ffs/run/boot/NAX-CHIP loop.bin");
    m_node.writeBoardFile("/ffs/run/boot/NAX-CHIP \xC3\xA4\xFF.bin", "");
    m_node.writeBoardFile("/ffs/run/boot/NAX-CHIP short.bin", "abc");

    EXPECT_EQ(find(), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/NAX-CHIP.bin");
    EXPECT_EQ(m_version, 7U);
}

TEST_F(FindCompatibleTest, FileThatDisappearsOrCannotBeReadIsPassedOver)
{
    putImage("NAX-CHIP.bin", 7);
    const FailNth<AaFileOpen> failure(1);

    EXPECT_EQ(find(), 0);
    expectNothing();
    EXPECT_THAT(linesOf("find_binary_compatible"),
                ElementsAre("info find_binary_compatible(): There are 1 files with chip 'CHIP' identifier, but not "
                            "compatible with this board"));
}

TEST_F(FindCompatibleTest, NameThatWasCutIsNoFile)
{
    putImage("NAX-CHIP-" + std::string(150, 'x') + ".bin", 7);

    EXPECT_EQ(find(), 0);
    expectNothing();
}

TEST_F(FindCompatibleTest, HwSwIdThatCannotBeReadIsAFailure)
{
    putImage("NAX-CHIP.bin", 7);
    const FailNth<ddal_devicetree_get_hw_sw_id> failure(1);

    EXPECT_EQ(find(), -6);
    expectNothing();
    EXPECT_THAT(linesOf("find_binary_compatible"),
                ElementsAre(driverFailure("find_binary_compatible", "ddal_devicetree_get_hw_sw_id")));
}

TEST_F(FindCompatibleTest, NameIsCutToTheBuffer)
{
    putImage("NAX-CHIP.bin", 7);
    std::array<char, 8> name{};

    EXPECT_EQ(find_binary_compatible(directory, nullptr, "CHIP", 0, 0, name.data(), 5, &m_version), 1);
    EXPECT_STREQ(name.data(), "/ffs");
    name.fill('x');
    EXPECT_EQ(find_binary_compatible(directory, nullptr, "CHIP", 0, 0, name.data(), 0, &m_version), 1);
    EXPECT_EQ(name.front(), 'x');
}

class FindersTest : public UpdateTest {
protected:
    NameBuffer m_name;
};

TEST_F(FindersTest, FpgaImageIsFound)
{
    useUnit("NAXE");
    putImage("NAX-BRINDLE.bin", 7, 0x3A02);

    EXPECT_EQ(FindNaxFpgaBinaryFile(m_name.data(), m_name.size()), 1);
    EXPECT_EQ(m_name.name(), "/ffs/run/boot/NAX-BRINDLE.bin");
    EXPECT_THAT(linesOf("FindNaxFpgaBinaryFile"),
                ElementsAre("info FindNaxFpgaBinaryFile(): FindNaxFpgaBinaryFile ret: 1, fileName: "
                            "/ffs/run/boot/NAX-BRINDLE.bin"));
}

TEST_F(FindersTest, UnitWithoutFpgaIsNotSupported)
{
    useUnit("KIVN");

    EXPECT_EQ(FindNaxFpgaBinaryFile(m_name.data(), m_name.size()), -10);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(linesOf("FindNaxFpgaBinaryFile"),
                ElementsAre("info FindNaxFpgaBinaryFile(): no fpga specified for unit 'KIVN'"));
}

TEST_F(FindersTest, BmuImageIsFoundWithoutMinorDifference)
{
    useUnit("KIVN");
    putImage("KIV-BMU.bin", 7, 0x3A02);
    EXPECT_EQ(FindKivFpgaBinaryFile(m_name.data(), m_name.size()), 0);
    EXPECT_EQ(m_name.name(), "");

    putImage("KIV-BMU.bin", 7);
    EXPECT_EQ(FindKivFpgaBinaryFile(m_name.data(), m_name.size()), 1);
    EXPECT_THAT(linesOf("FindKivFpgaBinaryFile"),
                ElementsAre("info FindKivFpgaBinaryFile(): FindKivFpgaBinaryFile ret: 0, fileName: ",
                            "info FindKivFpgaBinaryFile(): FindKivFpgaBinaryFile ret: 1, fileName: "
                            "/ffs/run/boot/KIV-BMU.bin"));
}

TEST_F(FindersTest, BootLoaderImageIsFound)
{
    useUnit("NAXE");
    putImage("THISTLE.bin", 7, 0x3A02);

    EXPECT_EQ(FindUBootBinaryFile(m_name.data(), m_name.size()), 1);
    EXPECT_THAT(linesOf("FindUBootBinaryFile"),
                ElementsAre("info FindUBootBinaryFile(): FindUBootBinaryFile ret: 1, fileName: "
                            "/ffs/run/boot/THISTLE.bin"));
}

/// The three of them.
struct Finder {
    const char* name;
    std::int32_t (*find)(char* fileName, std::uint32_t size);
    const char* chip;
};
void PrintTo(const Finder& finder, std::ostream* stream)
{
    *stream << finder.name;
}

class AnyFinderTest : public FindersTest, public ::testing::WithParamInterface<Finder> {
protected:
    AnyFinderTest() { useUnit("NAXE"); }

    void put(const std::string& addition) const { putImage("NAX-" + std::string(GetParam().chip) + addition, 7); }
    /// What the finder says of itself.
    std::string line(std::int32_t result, const std::string& fileName) const
    {
        const std::string name = GetParam().name;
        return "info " + name + "(): " + name + " ret: " + std::to_string(result) + ", fileName: " + fileName;
    }
};

INSTANTIATE_TEST_SUITE_P(All, AnyFinderTest,
                         ::testing::Values(Finder{"FindNaxFpgaBinaryFile", FindNaxFpgaBinaryFile, "BRINDLE"},
                                           Finder{"FindKivFpgaBinaryFile", FindKivFpgaBinaryFile, "BMU"},
                                           Finder{"FindUBootBinaryFile", FindUBootBinaryFile, "THISTLE"}),
                         [](const auto& finder) { return std::string(finder.param.name); });

TEST_P(AnyFinderTest, SeveralThatFitGiveNoName)
{
    put("-1.bin");
    put("-2.bin");

    EXPECT_EQ(GetParam().find(m_name.data(), m_name.size()), 2);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(linesOf(GetParam().name), ElementsAre(line(2, "")));
}

TEST_P(AnyFinderTest, NameIsCutToTheBuffer)
{
    put(".bin");

    EXPECT_EQ(GetParam().find(m_name.data(), 5), 1);
    EXPECT_EQ(m_name.name(), "/ffs");
    m_name = NameBuffer();
    EXPECT_EQ(GetParam().find(m_name.data(), 0), 1);
    EXPECT_EQ(m_name.text.front(), 'x');
    EXPECT_EQ(GetParam().find(nullptr, 100), 1);
    EXPECT_THAT(linesOf(GetParam().name), ElementsAre(line(1, "/ffs"), line(1, ""), line(1, "")));
}

TEST_P(AnyFinderTest, UnitWithoutIdFindsNothing)
{
    put(".bin");
    const testkit::FailEvery<ddal_devicetree_get_unit_id> failure;
    unit_init(); // forgets the unit
    const bool asksForTheUnit = GetParam().find == FindNaxFpgaBinaryFile;

    EXPECT_EQ(GetParam().find(m_name.data(), m_name.size()), asksForTheUnit ? -10 : -1);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_EQ(linesOf(GetParam().name).back(),
              asksForTheUnit ? "info FindNaxFpgaBinaryFile(): no fpga specified for unit ''" : line(-1, ""));
}

TEST_F(FindersTest, FailureClearsTheName)
{
    useUnit("NAXE");
    std::filesystem::remove(m_node.boardPath(directory));

    EXPECT_EQ(FindUBootBinaryFile(m_name.data(), m_name.size()), -4);
    EXPECT_EQ(m_name.name(), "");
    EXPECT_THAT(linesOf("FindUBootBinaryFile"),
                ElementsAre("info FindUBootBinaryFile(): FindUBootBinaryFile ret: -4, fileName: "));
}

} // namespace
} // namespace dorn::test
