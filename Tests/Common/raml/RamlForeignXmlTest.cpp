// SPDX-License-Identifier: MIT
// Trees that the host's XML parser does not make, but another platform's may.
#include "ForeignXml.hpp"
#include "ModelText.hpp"
#include "RecordingPlatform.hpp"

#include "raml/RamlParser.hpp"

#include <gmock/gmock.h>

namespace RAML {
namespace {

using dorn::test::ForeignNode;
using dorn::test::RecordingPlatform;
using dorn::test::structureOf;
using dorn::test::textOf;
using testing::ElementsAre;
using testing::IsEmpty;

class RamlForeignXmlTest : public ::testing::Test {
protected:
    RAML_Type::pointer parse()
    {
        dorn::test::foreignTree = m_root.release();
        return RamlParser().parseRaml("the text does not matter", m_result, false);
    }

    std::vector<std::string> errors() const { return m_platform.calls("Error "); }

    /// Adds attributes.
    static ForeignNode& with(ForeignNode& node, const std::vector<std::pair<std::string, std::string>>& attributes)
    {
        for (const auto& [name, value] : attributes) {
            node.add(AA_GPU_XML_ATTRIBUTE_NODE, name, value);
        }
        return node;
    }

    static void addText(ForeignNode& node, const std::string& name = "p")
    {
        node.add(AA_GPU_XML_INVALID, name, "text");
    }

    /// Adds a `raml` element with a block. @return the block
    static ForeignNode& addBlock(ForeignNode& root)
    {
        ForeignNode& raml = with(root.add(AA_GPU_XML_ELEMENT_NODE, "raml"), {{"version", "2.1"}, {"xmlns", "ns"}});
        addText(raml, "cmData");
        return with(raml.add(AA_GPU_XML_ELEMENT_NODE, "cmData"), {{"type", "actual"}});
    }

    static ForeignNode& addObject(ForeignNode& cmData, const std::string& distName)
    {
        return with(cmData.add(AA_GPU_XML_ELEMENT_NODE, "managedObject"),
                    {{"class", "A"}, {"distName", distName}, {"operation", "create"}});
    }

    std::vector<std::string> debugLines(const std::string& beginning) const
    {
        return m_platform.calls("Debug 0x20066 " + beginning);
    }

    /// Adds a `raml` element with one managed object, with nodes of text wherever they may stand.
    static void addRaml(ForeignNode& root, const std::string& distName)
    {
        ForeignNode& cmData = addBlock(root);
        addText(cmData);
        ForeignNode& mo = addObject(cmData, distName);
        addText(mo);
        ForeignNode& p = with(mo.add(AA_GPU_XML_ELEMENT_NODE, "p", "1"), {{"name", "x"}});
        addText(p);
        ForeignNode& list = with(mo.add(AA_GPU_XML_ELEMENT_NODE, "list"), {{"name", "l"}});
        addText(list);
        ForeignNode& item = list.add(AA_GPU_XML_ELEMENT_NODE, "item");
        addText(item);
        addText(mo);
    }

    RecordingPlatform m_platform;
    std::unique_ptr<ForeignNode> m_root = std::make_unique<ForeignNode>(AA_GPU_XML_ROOT_NODE, "");
    RAML_ParsingResult m_result = RAML_OK;
};

TEST_F(RamlForeignXmlTest, RootWithoutChildrenIsNoDocument)
{
    EXPECT_EQ(parse(), nullptr);
    EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
    EXPECT_THAT(errors(), ElementsAre("Error 0x20066 RAML Document does not contain an XML document!"));
    EXPECT_THAT(m_platform.calls("Debug 0x20066 RamlParser::parseRaml"),
                ElementsAre("Debug 0x20066 RamlParser::parseRaml",
                            "Debug 0x20066 RamlParser::parseRaml: Start Parsing of a RAML document",
                            "Debug 0x20066 RamlParser::parseRaml: End Parsing Raml document"));
}

TEST_F(RamlForeignXmlTest, FirstRamlElementAmongTheTopNodesCounts)
{
    m_root->add(AA_GPU_XML_INVALID, "raml", "text");
    m_root->add(AA_GPU_XML_ATTRIBUTE_NODE, "raml", "attribute");
    m_root->add(AA_GPU_XML_ELEMENT_NODE, "other");
    addRaml(*m_root, "A-1");
    addRaml(*m_root, "A-2");
    EXPECT_EQ(structureOf(parse()), "raml(2.1,ns) cmData(actual,changes) A:A-1(x=1 l[{}])");
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(RamlForeignXmlTest, TopNodesWithoutRamlElementAreASyntaxError)
{
    m_root->add(AA_GPU_XML_ATTRIBUTE_NODE, "raml", "attribute");
    m_root->add(AA_GPU_XML_ROOT_NODE, "raml");
    EXPECT_EQ(parse(), nullptr);
    EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
    EXPECT_THAT(errors(),
                ElementsAre("Error 0x20066 Validation constraint violation: missing required element [raml]"));
}

TEST_F(RamlForeignXmlTest, FileThatCannotBeOpenedIsAFailure)
{
    EXPECT_EQ(RamlParser().parseRaml("/ffs/site.xml", m_result, true), nullptr);
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_THAT(errors(), ElementsAre("Error 0x20066 Opening of RAML file failed"));
    EXPECT_THAT(m_platform.calls("AaGpuXml"), IsEmpty());
}

TEST_F(RamlForeignXmlTest, XmlParserIsAskedWithoutOptionsAndEncoding)
{
    parse();
    EXPECT_THAT(m_platform.calls("AaGpuXml"),
                ElementsAre("AaGpuXmlParser(0)", "AaGpuXmlParse(\"the text does not matter\", \"\")"));
}

TEST_F(RamlForeignXmlTest, KindsOfNodesHaveTheirValues)
{
    EXPECT_THAT((std::vector<int>{AA_GPU_XML_INVALID, AA_GPU_XML_ELEMENT_NODE, AA_GPU_XML_ATTRIBUTE_NODE,
                                  AA_GPU_XML_ROOT_NODE}),
                ElementsAre(0, 1, 2, 3));
}

TEST_F(RamlForeignXmlTest, LinesThatEndWithALineFeed)
{
    ForeignNode& cmData = addBlock(*m_root);
    with(cmData.add(AA_GPU_XML_ELEMENT_NODE, "header").add(AA_GPU_XML_ELEMENT_NODE, "log", "text"),
         {{"dateTime", "t"}, {"action", "a"}, {"user", "u"}});
    ForeignNode& mo = addObject(cmData, "A-1");
    with(mo.add(AA_GPU_XML_ELEMENT_NODE, "list"), {{"name", "l"}}).add(AA_GPU_XML_ELEMENT_NODE, "item");
    with(mo.add(AA_GPU_XML_ELEMENT_NODE, "list"), {{"name", ""}});
    parse();
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_THAT(debugLines("t: "), ElementsAre("Debug 0x20066 t:        a (u)  text\n"));
    EXPECT_THAT(debugLines("--list"), ElementsAre("Debug 0x20066 --list: l\n", "Debug 0x20066 --list: \n"));
    EXPECT_THAT(debugLines("----item"), ElementsAre("Debug 0x20066 ----item\n"));
}

TEST_F(RamlForeignXmlTest, OtherNodesInAHeaderAreSkipped)
{
    ForeignNode& cmData = addBlock(*m_root);
    ForeignNode& header = cmData.add(AA_GPU_XML_ELEMENT_NODE, "header");
    addText(header, "log");
    header.add(AA_GPU_XML_ATTRIBUTE_NODE, "log");
    addText(header, "other");
    ForeignNode& log = header.add(AA_GPU_XML_ELEMENT_NODE, "log", "x");
    addText(log, "dateTime");
    with(log, {{"dateTime", "t"}, {"action", "a"}});
    header.add(AA_GPU_XML_ROOT_NODE, "log");
    addObject(cmData, "A-1");
    EXPECT_EQ(structureOf(parse()), "raml(2.1,ns) cmData(actual,changes) log(t,a,,,x) A:A-1()");
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(RamlForeignXmlTest, AttributesMayStandBehindOtherChildren)
{
    ForeignNode& raml = m_root->add(AA_GPU_XML_ELEMENT_NODE, "raml");
    ForeignNode& cmData = raml.add(AA_GPU_XML_ELEMENT_NODE, "cmData");
    addText(raml);
    with(raml, {{"xmlns", "ns"}, {"version", "2.1E"}});

    ForeignNode& mo = cmData.add(AA_GPU_XML_ELEMENT_NODE, "managedObject");
    addText(cmData);
    with(cmData, {{"id", "i"}, {"type", "plan"}});

    with(mo.add(AA_GPU_XML_ELEMENT_NODE, "p", "1"), {{"name", "x"}});
    with(mo, {{"distName", "A-1"}});
    addText(mo);
    with(mo, {{"operation", "create"}});

    ForeignNode& list = mo.add(AA_GPU_XML_ELEMENT_NODE, "list");
    list.add(AA_GPU_XML_ELEMENT_NODE, "p", "2");
    with(list, {{"name", "l"}});
    with(mo, {{"class", "A"}, {"sequenceNo", "7"}}); // the last one that is looked for, after some that are not there
    addText(mo);

    EXPECT_EQ(textOf(parse()), "raml(2.1E,ns) cmData(plan,changes)<,i,,> A:A-1<1,,,,,,,0,0,0,7>(x=1 l[2])");
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(RamlForeignXmlTest, FirstAttributeOfANameCounts)
{
    m_root->add(AA_GPU_XML_ELEMENT_NODE, "name", "element");
    addText(*m_root, "name");
    with(*m_root, {{"other", "0"}, {"name", "1"}});
    addText(*m_root);
    with(*m_root, {{"name", "2"}});
    std::string value;
    EXPECT_EQ(RamlParser().GetAttributeValue(m_root.get(), "name", value), 1U);
    EXPECT_EQ(value, "1");
}

TEST_F(RamlForeignXmlTest, NodesOfOtherKindsAreNoAttributes)
{
    m_root->add(AA_GPU_XML_ELEMENT_NODE, "name", "element");
    m_root->add(AA_GPU_XML_ROOT_NODE, "name", "root");
    addText(*m_root, "name");
    std::string value = "before";
    EXPECT_EQ(RamlParser().GetAttributeValue(m_root.get(), "name", value), 0U);
    EXPECT_EQ(value, "before");
}

TEST_F(RamlForeignXmlTest, NextTreeTakesThePlaceOfTheLast)
{
    RamlParser parser;
    addRaml(*m_root, "A-1");
    dorn::test::foreignTree = m_root.release();
    parser.load("", m_result, false);
    EXPECT_GT(ForeignNode::count, 20);
    dorn::test::foreignTree = new ForeignNode(AA_GPU_XML_ROOT_NODE, "");
    parser.load("", m_result, false);
    EXPECT_EQ(ForeignNode::count, 1);
    parser.load("", m_result, false); // not well-formed
    EXPECT_EQ(ForeignNode::count, 0);
}

TEST_F(RamlForeignXmlTest, TreeEndsWithTheParser)
{
    {
        RamlParser parser;
        addRaml(*m_root, "A-1");
        dorn::test::foreignTree = m_root.release();
        const RAML_Type::pointer document = parser.parseRaml("", m_result, false);
        EXPECT_EQ(m_result, RAML_OK);
        EXPECT_GT(ForeignNode::count, 20);
    }
    EXPECT_EQ(ForeignNode::count, 0);
}

} // namespace
} // namespace RAML
