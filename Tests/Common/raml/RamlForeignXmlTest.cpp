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
using testing::ElementsAre;
using testing::IsEmpty;

class RamlForeignXmlTest : public ::testing::Test {
protected:
    RAML_Type::pointer parse()
    {
        dorn::test::foreignTree = m_root;
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

    static void addText(ForeignNode& node) { node.add(AA_GPU_XML_INVALID, "p", "text"); }

    /// Adds a `raml` element with one managed object, with nodes of text wherever they may stand.
    static void addRaml(ForeignNode& root, const std::string& distName)
    {
        ForeignNode& raml = with(root.add(AA_GPU_XML_ELEMENT_NODE, "raml"), {{"version", "2.1"}, {"xmlns", "ns"}});
        addText(raml);
        ForeignNode& cmData = with(raml.add(AA_GPU_XML_ELEMENT_NODE, "cmData"), {{"type", "actual"}});
        addText(cmData);
        ForeignNode& mo = with(cmData.add(AA_GPU_XML_ELEMENT_NODE, "managedObject"),
                               {{"class", "A"}, {"distName", distName}, {"operation", "create"}});
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
    ForeignNode* m_root = new ForeignNode(AA_GPU_XML_ROOT_NODE, ""); ///< the parser's in the end
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

TEST_F(RamlForeignXmlTest, TopNodesWithoutRamlElement)
{
    m_root->add(AA_GPU_XML_ATTRIBUTE_NODE, "raml", "attribute");
    m_root->add(AA_GPU_XML_ROOT_NODE, "raml");
    EXPECT_EQ(parse(), nullptr);
    EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
    EXPECT_THAT(errors(),
                ElementsAre("Error 0x20066 Validation constraint violation: missing required element [raml]"));
}

TEST_F(RamlForeignXmlTest, FileThatCannotBeOpened)
{
    delete m_root;
    EXPECT_EQ(RamlParser().parseRaml("/ffs/site.xml", m_result, true), nullptr);
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_THAT(errors(), ElementsAre("Error 0x20066 Opening of RAML file failed"));
}

} // namespace
} // namespace RAML
