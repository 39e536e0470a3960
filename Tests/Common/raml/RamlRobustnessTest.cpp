// SPDX-License-Identifier: MIT
// Odd and hostile documents end in a clear result, with memory in proportion to their size.
#include "../OutOfMemory.hpp"
#include "RamlTexts.hpp"

#include "LogCapture.hpp"
#include "TestNode.hpp"
#include "raml/RamlParser.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <gtest/gtest.h>

namespace RAML {
namespace {

using dorn::test::inBlock;
using dorn::test::inItem;
using dorn::test::inList;
using dorn::test::inObject;
using dorn::test::memoryIsOut;
using dorn::test::memoryTaken;
using dorn::test::object;

std::string repeated(const std::string& text, std::size_t count)
{
    std::string all;
    all.reserve(text.size() * count);
    while (count-- > 0) {
        all += text;
    }
    return all;
}

class RamlRobustnessTest : public ::testing::Test {
protected:
    /// Reads a document and looks how many bytes have been taken for each of its own.
    RAML_ParsingResult resultOf(const std::string& text, double bytesForEach)
    {
        const std::size_t before = memoryTaken;
        RAML_ParsingResult result = RAML_OK;
        m_document = RamlParser().parseRaml(text, result, false);
        const auto taken = static_cast<double>(memoryTaken - before);
        EXPECT_LE(taken, bytesForEach * static_cast<double>(text.size()) + 100'000);
        return result;
    }

    const RAML_ManagedObjectType& mo() const { return *m_document->cmDataList.at(0)->managedObjects.at(0); }

    dorn::testkit::TestNode m_node;
    RAML_Type::pointer m_document;
};

constexpr std::size_t many = 1'000'000;
constexpr std::size_t deep = 100'000;

TEST_F(RamlRobustnessTest, ManagedObjectMayHaveAMillionAttributes)
{
    std::string attributes;
    for (std::size_t number = 0; number < many; ++number) {
        attributes += " x" + std::to_string(number) + "=''";
    }
    const std::string begin = "<managedObject" + attributes;
    EXPECT_EQ(resultOf(inBlock(begin + " class='A' distName='A-1' operation='create'/>"), 15), RAML_OK);
    EXPECT_EQ(mo().mDistName, "A-1");
    EXPECT_EQ(resultOf(inBlock(begin + "/>"), 15), RAML_SYNTAX_ERROR);
    EXPECT_EQ(resultOf(inBlock(begin + " x5=''/>"), 15), RAML_MALFORMED_XML);
}

TEST_F(RamlRobustnessTest, ElementsMayStandDeepInEachOther)
{
    const std::string nested = repeated("<q>", deep) + repeated("</q>", deep);
    EXPECT_EQ(resultOf(inObject("<defaults>" + nested + "</defaults><p name='x'>" + nested + "1</p>"), 20), RAML_OK);
    EXPECT_EQ(mo().mParameters.size(), 1U);
    EXPECT_EQ(resultOf(inObject(nested), 20), RAML_SYNTAX_ERROR);
    EXPECT_EQ(resultOf(repeated("<raml>", deep) + repeated("</raml>", deep), 20), RAML_SYNTAX_ERROR);
    EXPECT_EQ(resultOf(repeated("<q>", many), 50), RAML_MALFORMED_XML);
}

TEST_F(RamlRobustnessTest, EntitiesDoNotGrow)
{
    std::string declarations = "<!ENTITY e0 'lol'>";
    for (int level = 1; level < 30; ++level) {
        const std::string below = "&e" + std::to_string(level - 1) + ";";
        declarations += "<!ENTITY e" + std::to_string(level) + " '" + repeated(below, 10) + "'>";
    }
    const std::string doctype = "<!DOCTYPE raml [" + declarations + "]>";
    EXPECT_EQ(resultOf(doctype + inObject("<p name='x'>&e29;</p>"), 2), RAML_MALFORMED_XML);
    EXPECT_EQ(resultOf("<!DOCTYPE raml [<!ENTITY e '" + std::string(many, 'x') + "'>]>" +
                           inObject("<p name='x'>" + repeated("&e;", 1000) + "</p>"),
                       2),
              RAML_MALFORMED_XML);
    EXPECT_EQ(resultOf("<!DOCTYPE raml [<!ENTITY e SYSTEM '/etc/passwd'>]>" + inObject("<p name='x'>&e;</p>"), 2),
              RAML_MALFORMED_XML);
}

TEST_F(RamlRobustnessTest, ZeroBytesAreMalformed)
{
    const std::string zero(1, '\0');
    for (const std::string& text :
         {zero, zero + inObject(""), inObject("") + zero, inObject("<p name='x'>" + zero + "</p>"),
          inObject("<p name='" + zero + "'/>"), inObject("<p na" + zero + "me='x'/>"), inObject("<!--" + zero + "-->"),
          std::string(many, '\0')}) {
        EXPECT_EQ(resultOf(text, 2), RAML_MALFORMED_XML);
    }
}

TEST_F(RamlRobustnessTest, BrokenUtf8IsMalformed)
{
    for (const char* const bytes :
         {"\x80", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\xFF", "\xE2\x82"}) {
        EXPECT_EQ(resultOf(inObject(std::string("<p name='x'>") + bytes + "</p>"), 2), RAML_MALFORMED_XML);
        EXPECT_EQ(resultOf(inObject(std::string("<p name='") + bytes + "'/>"), 2), RAML_MALFORMED_XML);
        EXPECT_EQ(resultOf(inObject(std::string("<!--") + bytes + "-->"), 2), RAML_MALFORMED_XML);
    }
}

TEST_F(RamlRobustnessTest, Utf16IsMalformed)
{
    std::string text = "\xFF\xFE";
    for (const char c : inObject("")) {
        text += {c, '\0'};
    }
    EXPECT_EQ(resultOf(text, 2), RAML_MALFORMED_XML);
    EXPECT_EQ(resultOf(text.substr(2), 2), RAML_MALFORMED_XML);
}

TEST_F(RamlRobustnessTest, OtherEncodingsAreReadWhereTheyAreKnown)
{
    const std::string begin = "<?xml version='1.0' encoding='";
    EXPECT_EQ(resultOf(begin + "ISO-8859-1'?>" + inObject("<p name='x'>\xE4</p>"), 40), RAML_OK);
    EXPECT_EQ(boost::dynamic_pointer_cast<RAML_ParameterType>(mo().mParameters.at(0))->value, "\xC3\xA4");
    EXPECT_EQ(resultOf(begin + "UTF-16'?>" + inObject(""), 2), RAML_MALFORMED_XML);
    EXPECT_EQ(resultOf(begin + "no such encoding'?>" + inObject(""), 2), RAML_MALFORMED_XML);
}

TEST_F(RamlRobustnessTest, ManyUnknownTagsAreManyErrorsOnly)
{
    const dorn::testkit::LogCapture log;
    EXPECT_EQ(resultOf(inObject(repeated("<q/>", 1000)), 500), RAML_SYNTAX_ERROR);
    EXPECT_EQ(log.texts().size(), 1001U);
}

TEST_F(RamlRobustnessTest, LongTextsAreKept)
{
    const std::string text(10 * many, 'x');
    EXPECT_EQ(resultOf(inObject("<p name='" + text + "'>" + text + "</p>"), 3), RAML_OK);
    EXPECT_EQ(mo().mParameters.at(0)->name.size(), text.size());
}

TEST_F(RamlRobustnessTest, ManyObjectsListsAndItemsAreRead)
{
    EXPECT_EQ(resultOf(inObject(repeated("<list name='l'><p/></list>", deep)), 30), RAML_OK);
    EXPECT_EQ(mo().mParameters.size(), deep);
    EXPECT_EQ(resultOf(inList(repeated("<item><p name='y'>1</p></item>", deep)), 30), RAML_OK);
    EXPECT_EQ(resultOf(inItem(repeated("<p name='y'>1</p>", deep)), 30), RAML_OK);
    EXPECT_EQ(resultOf(inBlock(repeated(object("A-1", "<p name='x'>1</p>"), deep)), 30), RAML_OK);
    EXPECT_EQ(m_document->cmDataList.at(0)->managedObjects.size(), deep);
}

TEST_F(RamlRobustnessTest, XmlParserDoesWithoutMemory)
{
    const std::string text = inObject("<p name='x'>1</p>");
    AaGpuXmlParser parser(0);
    memoryIsOut = true;
    const AaGpuXmlNode* const root = parser.AaGpuXmlParse(text, "");
    memoryIsOut = false;
    EXPECT_EQ(root, nullptr);
    EXPECT_EQ(parser.AaGpuXmlLastResult(), AA_GPU_XML_NO_MEMORY);
    EXPECT_EQ(parser.AaGpuXmlLastError(), "1:1: no memory");
}

} // namespace
} // namespace RAML
