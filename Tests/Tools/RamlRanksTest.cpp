// SPDX-License-Identifier: MIT
#include "raml/RamlRanks.hpp"

#include "Outcome.hpp"
#include "RamlDocuments.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using RAML::TmlMoHierarchyMap;

std::string failureOf(const std::string& text)
{
    try {
        parseRanks(text, "'ranks.txt'");
    } catch (const Failure& failure) {
        return failure.what();
    }
    return "none";
}

TEST(RamlRanksTest, ClassesAloneAreRankedInTheirOrder)
{
    EXPECT_EQ(parseRanks("Board\nFan\n\n# the rest\n  Led # last\n", ""),
              (TmlMoHierarchyMap{{"Board", 0}, {"Fan", 1}, {"Led", 2}}));
}

TEST(RamlRanksTest, RankCanBeGivenAndIsCountedOn)
{
    EXPECT_EQ(parseRanks("Board -3\nFan 7\nLed\nPort 7", ""),
              (TmlMoHierarchyMap{{"Board", -3}, {"Fan", 7}, {"Led", 8}, {"Port", 7}}));
    EXPECT_EQ(parseRanks("Board 2147483647\nFan", ""), (TmlMoHierarchyMap{{"Board", 2147483647}, {"Fan", 2147483647}}));
}

TEST(RamlRanksTest, WrongLineIsToldByItsNumber)
{
    EXPECT_EQ(failureOf("Board\nFan 1 2\n"), "'ranks.txt', line 2: is neither CLASS nor CLASS RANK");
    EXPECT_EQ(failureOf("Board x\n"), "'ranks.txt', line 1: is neither CLASS nor CLASS RANK");
    EXPECT_EQ(failureOf("Board 1x\n"), "'ranks.txt', line 1: is neither CLASS nor CLASS RANK");
    EXPECT_EQ(failureOf("Board 99999999999\n"), "'ranks.txt', line 1: is neither CLASS nor CLASS RANK");
    EXPECT_EQ(failureOf("Board\n\nBoard 7\n"), "'ranks.txt', line 3: 'Board' has a rank already");
}

TEST(RamlRanksTest, TableWithoutRanksIsRefused)
{
    EXPECT_EQ(failureOf(" \n# nothing\n"),
              "'ranks.txt' has no ranks: write a class a line, in the order in which they are to come");
}

/// "B1 A1 B2": the distinguished names in their order.
std::string namesOf(const RAML::RAML_Type& document)
{
    std::string names;
    for (const auto& block : document.cmDataList) {
        for (const auto& object : block->managedObjects) {
            names += (names.empty() ? "" : " ") + object->mDistName;
        }
    }
    return names;
}

RAML::RAML_Type::pointer documentOf(const std::vector<std::string>& distNames)
{
    std::string objects;
    for (const std::string& name : distNames) {
        objects += ramlObject(name.substr(0, 1), name);
    }
    return ramlModel(ramlAround(objects));
}

TEST(RamlRanksTest, ObjectsComeByRankAndKeepTheirOrderWithinOne)
{
    const RAML::RAML_Type::pointer document = documentOf({"B1", "C1", "A1", "B2", "A2", "C2"});
    EXPECT_EQ(sortRaml(*document, {{"A", 2}, {"B", 1}, {"C", 1}}), std::vector<std::string>{});
    EXPECT_EQ(namesOf(*document), "B1 C1 B2 C2 A1 A2");
}

TEST(RamlRanksTest, OrderWithinARankIsKeptInALongDocumentToo)
{
    std::vector<std::string> names;
    std::string expected;
    for (int index = 0; index < 200; ++index) {
        names.push_back("A" + std::to_string(index));
        expected += (index == 0 ? "" : " ") + names.back();
    }
    const RAML::RAML_Type::pointer document = documentOf(names);
    sortRaml(*document, {{"A", 1}});
    EXPECT_EQ(namesOf(*document), expected);
}

TEST(RamlRanksTest, ClassesWithoutRankComeLastAndAreTold)
{
    const RAML::RAML_Type::pointer document = documentOf({"Y1", "B1", "X1", "Y2", "A1"});
    const TmlMoHierarchyMap ranks{{"A", 1}, {"B", 2}};
    EXPECT_EQ(sortRaml(*document, ranks), (std::vector<std::string>{"Y", "X"}));
    EXPECT_EQ(namesOf(*document), "A1 B1 Y1 X1 Y2");
    dropUnranked(*document, ranks);
    EXPECT_EQ(namesOf(*document), "A1 B1");
}

} // namespace
} // namespace dorn::tool
