// SPDX-License-Identifier: MIT
#include "RadRows.hpp"
#include "RecordingPlatform.hpp"
#include "init/ApiStartup.h"
#include "rad/RadHwapiStateTable.hpp"
#include "rad/RadHwapiTable.hpp"

#include <gmock/gmock.h>

#include <set>

extern "C" std::uint32_t radIdentifierInC(int index);

namespace {

using dorn::test::formatted;
using dorn::test::hwaRows;
using dorn::test::hwaStateRows;
using dorn::test::RadRow;
using testing::ElementsAreArray;
using vel::hwapi::common::RadParameter;

TEST(RadParametersTest, IdentifiersOfHwaAreTheirIndicesInDomainTwo)
{
    ASSERT_EQ(std::size(hwaRows), 205U);
    for (std::uint32_t index = 0; index < 205; ++index) {
        EXPECT_EQ(hwaRows[index].index, index);
        EXPECT_EQ(hwaRows[index].identifier, 0x20000 + index) << hwaRows[index].name;
    }
    EXPECT_EQ(ERadHwapi_Last, 0x200CDU);
}

TEST(RadParametersTest, IdentifiersOfHwaStateAreTheirIndicesInDomain34)
{
    std::set<std::uint32_t> indices;
    for (const RadRow& row : hwaStateRows) {
        EXPECT_EQ(row.identifier, 0x220000 + row.index) << row.index;
        indices.insert(row.index);
    }
    EXPECT_EQ(indices.size(), 46U);
    EXPECT_EQ(*indices.rbegin(), 49U);
    for (const std::uint32_t missing : {15U, 16U, 17U, 18U}) {
        EXPECT_FALSE(indices.contains(missing));
    }
    EXPECT_EQ(ERadHwapiState_Last, 0x220032U);
}

TEST(RadParametersTest, CSeesTheSameIdentifiers)
{
    EXPECT_EQ(radIdentifierInC(0), 0x20000U);
    EXPECT_EQ(radIdentifierInC(1), 0x2004DU);
    EXPECT_EQ(radIdentifierInC(2), 0x200CDU);
    EXPECT_EQ(radIdentifierInC(3), 0x220000U);
    EXPECT_EQ(radIdentifierInC(4), 0x220032U);
}

/// What the platform is to be asked for these rows.
std::vector<std::string> declarationsOf(std::vector<std::string> calls, std::span<const RadRow> rows)
{
    for (const RadRow& row : rows) {
        if (row.name) {
            calls.push_back(
                formatted("AaConfigRadSetDefault(0x%X, \"%s\", %u)", row.identifier, row.name, row.defaultValue));
        }
    }
    return calls;
}

TEST(RadParametersTest, EveryHwaParameterIsDeclaredWithItsNameAndDefault)
{
    dorn::test::RecordingPlatform platform;

    ApiStartupInitializeRadParameters();

    EXPECT_EQ(platform.calls().size(), 1U + 205U);
    EXPECT_THAT(platform.calls(), ElementsAreArray(declarationsOf({"AaConfigRadSetMaxTagCount(2, 0x200CD)"}, hwaRows)));
}

TEST(RadParametersTest, RegisteredHwaStateParametersAreDeclaredWithTheirNamesAndDefaults)
{
    dorn::test::RecordingPlatform platform;

    ApiStartupInitializeStateRadParameters();

    EXPECT_EQ(platform.calls().size(), 1U + 36U);
    EXPECT_THAT(platform.calls(),
                ElementsAreArray(declarationsOf({"AaConfigRadSetMaxTagCount(34, 0x220032)"}, hwaStateRows)));
}

TEST(RadParametersTest, FifteenHwaParametersHaveADefault)
{
    std::map<std::string, std::uint32_t> defaults;
    for (const RadParameter& parameter : vel::hwapi::common::radHwapiTable) {
        if (parameter.defaultValue != 0) {
            defaults[parameter.name] = parameter.defaultValue;
        }
    }

    const std::map<std::string, std::uint32_t> expected = {
        {"CTC_ADDR", (192U << 24) | (168U << 16) | (255U << 8) | 126U},
        {"ANNOUNCEMSG", 1},
        {"CTXDELTA", 0x7F69E3},
        {"BMUWDPERIOD", 5},
        {"BMUWDTPERIOD", 4},
        {"DSPSIGCHK", 1},
        {"HDLC_CNTR", 60},
        {"EnablePowerCycleResetSlave", 1},
        {"KeepWelkLinkEnabledDuringReset", 1},
        {"K2LINK", 1},
        {"BBSStatsPeriod", 30},
        {"DisableUpHwapiWait", 1},
        {"UPlaneResetTimeoutInSecs", 90},
        {"UPlaneResetDspResetType", 4},
        {"SelfDiagnosticModeDisableRP441", 1}};

    EXPECT_EQ(defaults, expected);
}

TEST(RadParametersTest, OnlyTheNameEacStandsTwice)
{
    std::multiset<std::string> names;
    for (const RadParameter& parameter : vel::hwapi::common::radHwapiTable) {
        names.insert(parameter.name);
    }
    for (const std::string& name : names) {
        EXPECT_EQ(names.count(name), name == "EAC" ? 2U : 1U) << name;
    }
    EXPECT_EQ(ERadHwapi_SecureResetTimerTmo, 0x20000 + 56);
    EXPECT_EQ(ERadHwapi_PrintEacService, 0x20000 + 176);
}

TEST(RadParametersTest, NamesFitIntoThePlatform)
{
    for (const RadRow& row : hwaRows) {
        EXPECT_LE(std::string(row.name).size(), 63U);
    }
}

TEST(RadTableTest, TableWithAGapOrOutOfOrderIsNotDense)
{
    constexpr RadParameter dense[] = {{4, "a"}, {5, "b"}, {6, "c"}};
    constexpr RadParameter gap[] = {{4, "a"}, {6, "c"}};
    constexpr RadParameter swapped[] = {{5, "b"}, {4, "a"}, {6, "c"}};
    using vel::hwapi::common::isAscending;
    using vel::hwapi::common::isDense;

    EXPECT_TRUE(isDense(dense, 4, 7));
    EXPECT_FALSE(isDense(dense, 4, 8));
    EXPECT_FALSE(isDense(dense, 3, 6));
    EXPECT_FALSE(isDense(gap, 4, 7));
    EXPECT_FALSE(isDense(swapped, 4, 7));
    EXPECT_TRUE(isAscending(gap, 4, 7));
    EXPECT_FALSE(isAscending(gap, 4, 6));
    EXPECT_FALSE(isAscending(gap, 5, 7));
    EXPECT_FALSE(isAscending(swapped, 4, 7));
}

} // namespace
