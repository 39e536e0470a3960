// SPDX-License-Identifier: MIT
#include "raml/RamlStats.hpp"

#include "RamlDocuments.hpp"
#include "TestConsole.hpp"
#include "generator/RamlGenerator.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

const std::string document =
    ramlAround("<header><log dateTime=\"t\" action=\"a\"/></header>" +
               ramlObject("Fan", "Fan=1",
                          ramlParameter("a", "12345") + "<list name=\"l\"><p>12</p><item><p name=\"x\">1</p><p "
                                                        "name=\"y\">1234567</p></item></list>") +
               ramlObject("Led", "Led=1", "", "delete") + ramlObject("Fan", "Fan=1", ramlParameter("b", "1")));

TEST(RamlStatsTest, ClassesAreCounted)
{
    TestConsole console;
    EXPECT_EQ(ramlStatsText(ramlStats(*ramlModel(document), 2048), console),
              "2.0 KiB, 1 block, 1 log entry; objects: 2 create, 1 delete\n"
              "1 object with the distinguished name of an earlier one\n"
              "CLASS  OBJECTS  PARAMETERS  LISTS  ELEMENTS  VALUE BYTES  LONGEST\n"
              "Fan    2        2           1      2         16           7\n"
              "Led    1        0           0      0         0            0\n"
              "all    3        2           1      2         16           7\n");
}

TEST(RamlStatsTest, JsonHasTheSameNumbers)
{
    EXPECT_EQ(jsonLine(ramlStatsJson(ramlStats(*ramlModel(ramlAround(ramlObject("Fan", "Fan=1"))), 77))),
              R"({"bytes":77,"blocks":1,"logs":0,"repeatedNames":0,"operations":{"query":0,"create":1,"delete":0,)"
              R"("update":0,"action":0,"subscribe":0,"unsubscribe":0,"auto":0},"all":{"objects":1,"parameters":0,)"
              R"("lists":0,"elements":0,"valueBytes":0,"greatestValue":0},"classes":[{"class":"Fan","objects":1,)"
              R"("parameters":0,"lists":0,"elements":0,"valueBytes":0,"greatestValue":0}]})");
}

TEST(RamlStatsTest, ClassesAddUpToAll)
{
    const RamlStats stats = ramlStats(*ramlModel(testkit::ramlText({.seed = 5, .objects = 100, .blocks = 3})), 0);
    RamlClassStats sum;
    for (const auto& [name, one] : stats.classes) {
        sum.objects += one.objects;
        sum.parameters += one.parameters;
        sum.elements += one.elements;
        sum.valueBytes += one.valueBytes;
    }
    EXPECT_EQ(stats.blocks, 3U);
    EXPECT_EQ(stats.logs, 6U);
    EXPECT_EQ(stats.all.objects, 100U);
    EXPECT_EQ(sum.objects, stats.all.objects);
    EXPECT_EQ(sum.parameters, stats.all.parameters);
    EXPECT_EQ(sum.elements, stats.all.elements);
    EXPECT_EQ(sum.valueBytes, stats.all.valueBytes);
    EXPECT_EQ(stats.repeatedNames, 0U);
}

TEST(RamlStatsTest, CountsHaveTheirWord)
{
    EXPECT_EQ(counted(0, "block"), "0 blocks");
    EXPECT_EQ(counted(1, "log entry"), "1 log entry");
    EXPECT_EQ(counted(2, "log entry"), "2 log entries");
}

} // namespace
} // namespace dorn::tool
