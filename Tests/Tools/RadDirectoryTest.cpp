// SPDX-License-Identifier: MIT
#include "answers/RadDirectory.hpp"

#include "Outcome.hpp"

#include <gmock/gmock.h>

namespace dorn::tool {
namespace {

using ::testing::ThrowsMessage;

class RadDirectoryTest : public ::testing::Test {
protected:
    std::string failureOf(const std::string& address) const
    {
        try {
            return "found " + std::to_string(m_directory.find(address));
        } catch (const Failure& failure) {
            return failure.what();
        }
    }

    const RadDirectory m_directory{{
        {2, "HWA", 4, {{0x20000, "FIRM", 0, 1}, {0x20001, "EAC", 7, 7}, {0x20003, "EAC", 0, 0}}},
        {34, "HWAState", 2, {{0x220000, "LedState", 0, 2}, {0x220001, "FIRM2", 0, 0}}},
        {40, "Other", 1, {{0x280000, "LedState", 0, 0}}},
    }};
};

TEST_F(RadDirectoryTest, ParameterIsFoundByNumber)
{
    EXPECT_EQ(m_directory.find("0x20001"), 0x20001U);
    EXPECT_EQ(m_directory.find("131073"), 0x20001U);
}

TEST_F(RadDirectoryTest, ParameterIsFoundByDomainAndName)
{
    EXPECT_EQ(m_directory.find("HWA/FIRM"), 0x20000U);
    EXPECT_EQ(m_directory.find("2/FIRM"), 0x20000U);
    EXPECT_EQ(m_directory.find("Other/LedState"), 0x280000U);
}

TEST_F(RadDirectoryTest, ParameterIsFoundByItsNameAloneWhereItIsTheOnlyOne)
{
    EXPECT_EQ(m_directory.find("FIRM"), 0x20000U);
}

TEST_F(RadDirectoryTest, IdentifierThatIsNotDeclaredIsFoundByNumber)
{
    EXPECT_EQ(m_directory.find("0x20002"), 0x20002U);
}

TEST_F(RadDirectoryTest, SeveralOfOneNameAreNamed)
{
    EXPECT_EQ(failureOf("EAC"),
              "'EAC' is the name of 2 R&D parameters: 0x20001 (HWA) and 0x20003 (HWA); give the number of one");
    EXPECT_EQ(failureOf("HWA/EAC"),
              "'HWA/EAC' is the name of 2 R&D parameters: 0x20001 (HWA) and 0x20003 (HWA); give the number of one");
    EXPECT_EQ(failureOf("LedState"), "'LedState' is the name of 2 R&D parameters: 0x220000 (HWAState) and 0x280000 "
                                     "(Other); give the number of one");
}

TEST_F(RadDirectoryTest, UnknownNameIsAFailure)
{
    EXPECT_EQ(failureOf("Nothing"),
              "no R&D parameter 'Nothing' on this node; 'dorn rad list' shows all that there are");
    EXPECT_EQ(failureOf("HWA/LedState2"),
              "no R&D parameter 'HWA/LedState2' on this node; 'dorn rad list' shows all that there are");
    EXPECT_EQ(failureOf(""), "no R&D parameter '' on this node; 'dorn rad list' shows all that there are");
}

TEST_F(RadDirectoryTest, NameInOtherLettersIsProposed)
{
    EXPECT_EQ(failureOf("firm"), "no R&D parameter 'firm' on this node; did you mean HWA/FIRM?");
}

TEST_F(RadDirectoryTest, UnknownDomainIsAFailure)
{
    EXPECT_EQ(failureOf("HWB/FIRM"), "no R&D domain 'HWB' on this node; there are HWA (2), HWAState (34), Other (40)");
    EXPECT_THAT([this] { m_directory.findDomain("3"); },
                ThrowsMessage<Failure>("no R&D domain '3' on this node; there are HWA (2), HWAState (34), Other (40)"));
}

TEST_F(RadDirectoryTest, NumberOfNoDomainIsAFailure)
{
    EXPECT_EQ(failureOf("0x30000"), "no R&D parameter 0x30000 on this node: its number belongs to none of the domains "
                                    "HWA (2), HWAState (34), Other (40)");
    EXPECT_EQ(failureOf("0x1000020000"), "no R&D parameter 68719607808 on this node: its number belongs to none of the "
                                         "domains HWA (2), HWAState (34), Other (40)");
}

TEST_F(RadDirectoryTest, NumberBeyondItsDomainIsAFailure)
{
    EXPECT_EQ(failureOf("0x20004"), "no R&D parameter 0x20004 on this node: domain HWA has 4 identifiers");
}

TEST_F(RadDirectoryTest, DomainIsFoundByNameOrNumber)
{
    EXPECT_EQ(m_directory.findDomain("HWAState").number, 34);
    EXPECT_EQ(m_directory.findDomain("0x22").number, 34);
}

TEST_F(RadDirectoryTest, EntriesAreThoseOfAllDomainsOrOfOne)
{
    EXPECT_EQ(m_directory.entries().size(), 6U);
    const std::vector<RadEntry> entries = m_directory.entries("HWAState");
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].address(), "HWAState/LedState");
    EXPECT_TRUE(entries[0].isChanged());
    EXPECT_FALSE(entries[1].isChanged());
}

TEST_F(RadDirectoryTest, EntryWithoutNameIsAddressedByNumber)
{
    EXPECT_EQ((RadEntry{{0x20002, "", 0, 0}, "HWA"}).address(), "0x20002");
}

} // namespace
} // namespace dorn::tool
