// SPDX-License-Identifier: MIT
#include "raml/RamlDiff.hpp"

#include "RamlDocuments.hpp"
#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

/// What is printed of the difference between two documents.
std::string diffText(const std::string& before, const std::string& after, RamlDiffFields fields = RamlDiffFields::All)
{
    TestConsole console;
    std::string text;
    for (const RamlChange& change : diffRaml(*ramlModel(before), *ramlModel(after), fields)) {
        text += ramlChangeText(change, console);
    }
    return text;
}

/// The same of the parameters of one object.
std::string parameterDiff(const std::string& before, const std::string& after)
{
    const std::string begin = "~ Fan Fan=1\n";
    const std::string text =
        diffText(ramlAround(ramlObject("Fan", "Fan=1", before)), ramlAround(ramlObject("Fan", "Fan=1", after)));
    EXPECT_TRUE(text.empty() || text.starts_with(begin)) << text;
    return text.empty() ? text : text.substr(begin.size());
}

TEST(RamlDiffTest, SameDocumentLaidOutOtherwiseDoesNotDiffer)
{
    EXPECT_EQ(diffText(ramlAround(ramlObject("Fan", "Fan=1", ramlParameter("a", "1"))),
                       "<?xml version='1.0'?><raml xmlns='raml21.xsd' version='2.1E'><!-- x --><cmData id='1' "
                       "type='plan'><managedObject operation='create' distName='Fan=1' class='Fan'><p "
                       "name='a'><![CDATA[1]]></p></managedObject></cmData></raml>"),
              "");
}

TEST(RamlDiffTest, ObjectsThatCameAndWentAreToldByName)
{
    EXPECT_EQ(diffText(ramlAround(ramlObject("Fan", "Fan=1") + ramlObject("Fan", "Fan=2")),
                       ramlAround(ramlObject("Led", "Led=1") + ramlObject("Fan", "Fan=2"))),
              "- Fan Fan=1\n+ Led Led=1\n");
}

TEST(RamlDiffTest, OrderOfObjectsAndParametersMakesNoDifference)
{
    const std::string a = ramlParameter("a", "1");
    const std::string b = ramlParameter("b", "2");
    EXPECT_EQ(diffText(ramlAround(ramlObject("Fan", "Fan=1", a + b) + ramlObject("Led", "Led=1")),
                       ramlAround(ramlObject("Led", "Led=1") + ramlObject("Fan", "Fan=1", b + a))),
              "");
}

TEST(RamlDiffTest, ParametersAreComparedByName)
{
    EXPECT_EQ(parameterDiff(ramlParameter("a", "1") + ramlParameter("b", "2") + ramlParameter("c", "3"),
                            ramlParameter("a", "1") + ramlParameter("c", "4") + ramlParameter("d", "")),
              "    b: \"2\" -> none\n    c: \"3\" -> \"4\"\n    d: none -> \"\"\n");
}

TEST(RamlDiffTest, ParametersOfTheSameNameAreComparedInTheirOrder)
{
    EXPECT_EQ(parameterDiff(ramlParameter("a", "1") + ramlParameter("a", "2"),
                            ramlParameter("a", "1") + ramlParameter("a", "3") + ramlParameter("a", "4")),
              "    a#2: \"2\" -> \"3\"\n    a#3: none -> \"4\"\n");
}

/// Names that look like those which are made up here take nothing away.
TEST(RamlDiffTest, OddNamesHideNoDifference)
{
    const std::string odd = ramlParameter("a#2", "1") + ramlParameter("a", "2") + ramlParameter("a", "3");
    EXPECT_EQ(parameterDiff(odd, odd), "");
    EXPECT_NE(parameterDiff(odd, odd + ramlParameter("a#2", "4")), "");
    const std::string list = "<list name=\"l\"><p>1</p></list>" + ramlParameter("l[0]", "1");
    EXPECT_NE(parameterDiff(list, list + ramlParameter("l[0]", "2")), "");
    EXPECT_NE(parameterDiff(ramlParameter("@class", "1"), ramlParameter("@class", "2")), "");
}

TEST(RamlDiffTest, ListsAreComparedElementByElement)
{
    EXPECT_EQ(parameterDiff("<list name=\"l\"><p>1</p><p>2</p></list>", "<list name=\"l\"><p>2</p><p>2</p><p/></list>"),
              "    l: \"list of 2\" -> \"list of 3\"\n    l[0]: \"1\" -> \"2\"\n    l[2]: none -> \"\"\n");
}

TEST(RamlDiffTest, ItemsAreComparedByNameAndOperation)
{
    EXPECT_EQ(parameterDiff("<list name=\"l\"><item><p name=\"a\">1</p><p name=\"b\">2</p></item></list>",
                            "<list name=\"l\"><item operation=\"create\"><p name=\"a\">3</p></item></list>"),
              "    l[0]: \"item of 2\" -> \"item of 1\"\n    l[0].a: \"1\" -> \"3\"\n    l[0].b: \"2\" -> none\n"
              "    l[0]@operation: none -> \"create\"\n");
}

TEST(RamlDiffTest, ValueThatBecomesAListDiffers)
{
    EXPECT_EQ(parameterDiff(ramlParameter("l", "1"), "<list name=\"l\"/>"), "    l: \"1\" -> \"list of 0\"\n");
}

TEST(RamlDiffTest, AttributesOfAnObjectAreCompared)
{
    const std::string before = "<managedObject class=\"A\" distName=\"D\" operation=\"create\" id=\"1\"/>";
    const std::string after = "<managedObject class=\"B\" distName=\"D\" operation=\"subscribe\" filter=\"CM\"/>";
    EXPECT_EQ(diffText(ramlAround(before), ramlAround(after)), "~ A D\n"
                                                               "    @class: \"A\" -> \"B\"\n"
                                                               "    @operation: \"create\" -> \"subscribe\"\n"
                                                               "    @id: \"1\" -> none\n"
                                                               "    @filter: none -> \"CM\"\n");
}

TEST(RamlDiffTest, OnlyWhatIsWrittenCountsWhenAskedFor)
{
    const std::string before =
        "<managedObject class=\"A\" distName=\"D\" operation=\"create\" id=\"1\"><list name=\"l\"><item "
        "operation=\"delete\"/></list></managedObject>";
    const std::string after = "<managedObject class=\"A\" distName=\"D\" operation=\"create\"><list name=\"l\"><item/>"
                              "</list></managedObject>";
    EXPECT_EQ(diffText(ramlAround(before), ramlAround(after), RamlDiffFields::Written), "");
    EXPECT_NE(diffText(ramlAround(before), ramlAround(after)), "");
}

TEST(RamlDiffTest, DocumentAndBlocksAreCompared)
{
    const std::string object = "<managedObject class=\"A\" distName=\"D\" operation=\"create\"/>";
    EXPECT_EQ(diffText("<raml version=\"2.1\" xmlns=\"x\"><cmData type=\"plan\">" + object + "</cmData></raml>",
                       "<raml version=\"2.1E\" xmlns=\"x\"><cmData type=\"actual\" domain=\"d\">" + object +
                           "</cmData><cmData type=\"plan\">" + object + "</cmData></raml>"),
              "~ raml\n    @version: \"2.1\" -> \"2.1E\"\n"
              "~ cmData 1\n    @type: \"plan\" -> \"actual\"\n    @domain: none -> \"d\"\n"
              "+ cmData 2\n"
              "+ A D#2\n");
}

TEST(RamlDiffTest, ObjectThatMovedToAnotherBlockDiffers)
{
    const auto document = [](const std::string& first, const std::string& second) {
        return "<raml version=\"2.1\" xmlns=\"x\"><cmData type=\"plan\">" + ramlObject("A", "A=1") + first +
               "</cmData><cmData type=\"plan\">" + ramlObject("A", "A=2") + second + "</cmData></raml>";
    };
    const std::string moved = ramlObject("B", "B=1");
    EXPECT_EQ(diffText(document(moved, ""), document("", moved)), "~ B B=1\n    @cmData: \"1\" -> \"2\"\n");
}

TEST(RamlDiffTest, LogEntriesAreHistory)
{
    const std::string object = ramlObject("A", "A=1");
    EXPECT_EQ(diffText(ramlAround("<header><log dateTime=\"t\" action=\"a\"/></header>" + object), ramlAround(object)),
              "");
}

TEST(RamlDiffTest, ControlCharactersOfNamesAndValuesDoNotReachTheTerminal)
{
    EXPECT_EQ(parameterDiff(ramlParameter("a", "1"), ramlParameter("a", "1\n2")), "    a: \"1\" -> \"1\\n2\"\n");
}

TEST(RamlDiffTest, ChangesHaveTheirColour)
{
    TestConsole console(true);
    EXPECT_EQ(ramlChangeText({RamlChangeKind::Removed, "Fan=1", "Fan"}, console), "\033[31m- Fan Fan=1\033[0m\n");
    EXPECT_EQ(ramlChangeText({RamlChangeKind::Added, "Fan=1", "Fan"}, console), "\033[32m+ Fan Fan=1\033[0m\n");
    EXPECT_EQ(ramlChangeText({RamlChangeKind::Changed, "raml", ""}, console), "\033[33m~ raml\033[0m\n");
}

TEST(RamlDiffTest, JsonHasNullForWhatIsNotThere)
{
    EXPECT_EQ(
        jsonLine(ramlChangeJson({RamlChangeKind::Changed, "Fan=1", "Fan", {{"a", "1", std::nullopt}}})),
        R"({"change":"changed","subject":"Fan=1","class":"Fan","differences":[{"name":"a","old":"1","new":null}]})");
    EXPECT_EQ(jsonLine(ramlChangeJson({RamlChangeKind::Added, "cmData 2", ""})),
              R"({"change":"added","subject":"cmData 2"})");
}

} // namespace
} // namespace dorn::tool
