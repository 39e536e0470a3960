// SPDX-License-Identifier: MIT
#include "generator/RamlGenerator.hpp"

#include "generator/ValueText.hpp"
#include "xml/XmlDocument.hpp"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

namespace dorn::testkit {
namespace {

/// Calls @p look for each element of a well-formed document.
void forEachElement(const std::string& text, const std::function<void(const AaGpuXmlNode&)>& look)
{
    const host::XmlDocument document = host::parseXml(text, "", host::XmlFaultPolicy::GiveNothing);
    ASSERT_FALSE(document.fault) << document.fault->line << ": " << document.fault->reason;
    std::vector<const AaGpuXmlNode*> pending{document.root.get()};
    while (!pending.empty()) {
        const AaGpuXmlNode& node = *pending.back();
        pending.pop_back();
        look(node);
        for (auto child = node.AaGpuXmlGetFirstChildren(); child != node.AaGpuXmlGetLastChildren(); ++child) {
            if ((*child)->AaGpuXmlGetType() == AA_GPU_XML_ELEMENT_NODE) {
                pending.push_back(*child);
            }
        }
    }
}

std::map<std::string, unsigned> countElements(const std::string& text)
{
    std::map<std::string, unsigned> counts;
    forEachElement(text, [&counts](const AaGpuXmlNode& node) { ++counts[node.AaGpuXmlGetName()]; });
    return counts;
}

std::string attributeOf(const AaGpuXmlNode& element, const std::string& name)
{
    for (auto child = element.AaGpuXmlGetFirstChildren(); child != element.AaGpuXmlGetLastChildren(); ++child) {
        if ((*child)->AaGpuXmlGetType() == AA_GPU_XML_ATTRIBUTE_NODE && (*child)->AaGpuXmlGetName() == name) {
            return (*child)->AaGpuXmlGetValue();
        }
    }
    return "";
}

/// The values of an attribute of all elements of a name, in no order.
std::multiset<std::string> attributesOf(const std::string& text, const std::string& element, const std::string& name)
{
    std::multiset<std::string> values;
    forEachElement(text, [&](const AaGpuXmlNode& node) {
        if (node.AaGpuXmlGetName() == element) {
            values.insert(attributeOf(node, name));
        }
    });
    return values;
}

std::size_t partsOf(const std::string& distName)
{
    return static_cast<std::size_t>(std::count(distName.begin(), distName.end(), ',')) + 1;
}

TEST(RamlGeneratorTest, DocumentIsTheSameOnEveryMachine)
{
    RamlShape shape;
    shape.seed = 7;
    shape.objects = 2;
    shape.logs = 1;
    shape.parameters = 2;
    shape.isPlain = true;
    EXPECT_EQ(ramlText(shape), R"(<?xml version="1.0" encoding="UTF-8"?>
<raml version="2.1E" xmlns="raml21.xsd">
  <cmData id="1" type="actual" scope="all" domain="board" adaptationVersionMajor="1">
    <header>
      <log dateTime="2026-11-21T09:18:01Z" action="created" user="operator">made</log>
    </header>
    <managedObject class="Board" operation="create" distName="Board=1" version="1.0">
      <p name="limit">&#39;off Zürich</p>
      <p name="mode"></p>
      <list name="level">
        <p>5695520281</p>
        <p>971358</p>
        <p>0708</p>
      </list>
      <p name="label">8293674426007731</p>
    </managedObject>
    <managedObject class="Port" operation="action" distName="Board=1,Port=1" version="1.0">
      <p name="limit">481</p>
      <p name="mode">032701073034848</p>
      <list name="level">
        <p>0296820</p>
        <p></p>
        <p>on</p>
        <p>3076180</p>
        <p></p>
        <p>8</p>
      </list>
    </managedObject>
  </cmData>
</raml>
)");
}

TEST(RamlGeneratorTest, SeedMakesTheDifference)
{
    EXPECT_EQ(ramlText({.seed = 2}), ramlText({.seed = 2}));
    EXPECT_NE(ramlText({.seed = 2}), ramlText({.seed = 3}));
}

TEST(RamlGeneratorTest, BlocksLogsAndObjectsAreAsManyAsAskedFor)
{
    std::map<std::string, unsigned> counts = countElements(ramlText({.objects = 50, .blocks = 7, .logs = 3}));
    EXPECT_EQ(counts["raml"], 1U);
    EXPECT_EQ(counts["cmData"], 7U);
    EXPECT_EQ(counts["header"], 7U);
    EXPECT_EQ(counts["log"], 21U);
    EXPECT_EQ(counts["managedObject"], 50U);
}

TEST(RamlGeneratorTest, EachBlockHasAnObject)
{
    std::map<std::string, unsigned> counts = countElements(ramlText({.objects = 0, .blocks = 4}));
    EXPECT_EQ(counts["cmData"], 4U);
    EXPECT_EQ(counts["managedObject"], 4U);
}

TEST(RamlGeneratorTest, LeastShapeIsADocument)
{
    const RamlShape least{.objects = 0,
                          .blocks = 0,
                          .logs = 0,
                          .classes = 0,
                          .depth = 0,
                          .parameters = 0,
                          .lists = 0,
                          .listElements = 0,
                          .valueBytes = 0};
    std::map<std::string, unsigned> counts = countElements(ramlText(least));
    EXPECT_EQ(counts["managedObject"], 1U);
    EXPECT_EQ(counts["p"] + counts["list"] + counts["log"], 0U);
}

TEST(RamlGeneratorTest, ParametersListsAndElementsAreAsManyOnAverage)
{
    std::map<std::string, unsigned> counts =
        countElements(ramlText({.objects = 400, .parameters = 10, .lists = 4, .listElements = 5, .isPlain = true}));
    EXPECT_NEAR(counts["list"], 1600, 200);
    EXPECT_NEAR(counts["p"] + counts["item"], 4000 + 8000 + 0.75 * 8000, 2000); // an item has 0 to 3 values
}

TEST(RamlGeneratorTest, ClassesAreAsManyAsAskedFor)
{
    for (const std::uint32_t classes : {1U, 2U, 40U}) {
        const std::multiset<std::string> names =
            attributesOf(ramlText({.objects = 1000, .classes = classes}), "managedObject", "class");
        EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), classes);
    }
}

TEST(RamlGeneratorTest, DistinguishedNamesAreATreeWithoutRepetition)
{
    const std::multiset<std::string> names =
        attributesOf(ramlText({.objects = 500, .depth = 5}), "managedObject", "distName");
    std::size_t deepest = 0;
    for (const std::string& name : names) {
        EXPECT_EQ(names.count(name), 1U) << name;
        deepest = std::max(deepest, partsOf(name));
        const std::size_t lastPart = name.rfind(',');
        EXPECT_TRUE(lastPart == std::string::npos || names.contains(name.substr(0, lastPart))) << name;
    }
    EXPECT_EQ(deepest, 5U);
}

TEST(RamlGeneratorTest, BytesAreReachedAndHardlyExceeded)
{
    for (const std::uint32_t blocks : {1U, 5U}) {
        const std::string text = ramlText({.bytes = 200'000, .blocks = blocks});
        EXPECT_GE(text.size(), 200'000U);
        EXPECT_LT(text.size(), 210'000U);
        EXPECT_EQ(countElements(text)["cmData"], blocks);
    }
}

TEST(RamlGeneratorTest, ValuesHaveTheAverageSize)
{
    std::size_t bytes = 0;
    unsigned values = 0;
    forEachElement(ramlText({.objects = 200, .valueBytes = 100, .isPlain = true}), [&](const AaGpuXmlNode& node) {
        if (std::string(node.AaGpuXmlGetName()) == "p") {
            bytes += std::string(node.AaGpuXmlGetValue()).size();
            ++values;
        }
    });
    EXPECT_NEAR(static_cast<double>(bytes) / values, 100, 10);
}

TEST(RamlGeneratorTest, PlainDocumentHasWhatIsWrittenOnly)
{
    const std::string text = ramlText({.objects = 300, .isPlain = true});
    for (const char* const absent : {"<defaults", "<extension", "<!--", "appInfo", "vendor=", "subscribe", "<item "}) {
        EXPECT_EQ(text.find(absent), std::string::npos) << absent;
    }
    const std::string full = ramlText({.objects = 300});
    for (const char* const present : {"<defaults", "<extension", "<!--", "appInfo", "vendor=", "subscribe", "<item "}) {
        EXPECT_NE(full.find(present), std::string::npos) << present;
    }
}

TEST(RamlGeneratorTest, PlainValueHasAtMostOneSpecialCharacter)
{
    std::size_t greatest = 0;
    forEachElement(ramlText({.objects = 300, .isPlain = true}), [&greatest](const AaGpuXmlNode& node) {
        const std::string value = node.AaGpuXmlGetValue();
        const auto isSpecial = [](char c) { return std::string_view("&<>\"'").find(c) != std::string_view::npos; };
        greatest = std::max(greatest, static_cast<std::size_t>(std::count_if(value.begin(), value.end(), isSpecial)));
    });
    EXPECT_EQ(greatest, 1U);
}

TEST(RamlGeneratorTest, PiecesAreTheDocumentAndProgressRises)
{
    const RamlShape shape{.objects = 30, .blocks = 3};
    RamlGenerator generator(shape);
    std::string text;
    double progress = 0;
    unsigned pieces = 0;
    for (std::string_view piece = generator.next(); !piece.empty(); piece = generator.next()) {
        text += piece;
        ++pieces;
        EXPECT_GE(generator.progress(), progress);
        progress = generator.progress();
    }
    EXPECT_EQ(text, ramlText(shape));
    EXPECT_EQ(pieces, 1U + 3 + 30 + 3 + 1);
    EXPECT_EQ(generator.progress(), 1);
    EXPECT_EQ(generator.next(), "");
}

class RamlFaultTest : public ::testing::TestWithParam<RamlFaultText> {};

/// That each fault is refused is shown where documents are read.
TEST_P(RamlFaultTest, FaultMakesAnotherDocument)
{
    for (std::uint64_t seed = 1; seed < 20; ++seed) {
        const RamlShape whole{.seed = seed, .objects = 4, .blocks = 2};
        RamlShape faulty = whole;
        faulty.faults = {GetParam().fault};
        EXPECT_NE(ramlText(faulty), ramlText(whole)) << GetParam().name;
        faulty.bytes = 3000;
        EXPECT_NE(ramlText(faulty), ramlText({.seed = seed, .bytes = 3000, .blocks = 2})) << GetParam().name;
    }
}

TEST_P(RamlFaultTest, FaultIsFoundByItsName)
{
    EXPECT_EQ(ramlFaultOf(GetParam().name), GetParam().fault);
    EXPECT_EQ(textOf(GetParam().fault).name, GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Faults, RamlFaultTest, ::testing::ValuesIn(ramlFaults), [](const auto& row) {
    std::string name(row.param.name);
    std::erase(name, '-');
    return name;
});

TEST(RamlFaultNameTest, UnknownNameIsNoFault)
{
    EXPECT_EQ(ramlFaultOf("no-such-fault"), std::nullopt);
}

TEST(ValueTextTest, SpecialCharactersAreEscaped)
{
    EXPECT_EQ(escaped("a&b<c>d\"e'f"), "a&amp;b&lt;c&gt;d&quot;e&#39;f");
}

} // namespace
} // namespace dorn::testkit
