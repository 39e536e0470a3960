// SPDX-License-Identifier: MIT
#include "../ClassLayout.hpp"
#include "ModelText.hpp"
#include "RamlTest.hpp"
#include "RamlTexts.hpp"

#include "raml/RamlParser.hpp"
#include "raml/dataclasses/RAML_ItemType.hpp"

#include <algorithm>
#include <cstdio>
#include <gmock/gmock.h>
#include <memory>

namespace RAML {
using ParserTree = std::unique_ptr<AaGpuXmlNode>;
}
DORN_EXPOSE(ParserTreeTag, RAML::RamlParser, RAML::ParserTree, mDocumentNode)

namespace RAML {
namespace {

using dorn::test::debugLine;
using dorn::test::errorLine;
using dorn::test::errorsOf;
using dorn::test::inBlock;
using dorn::test::inObject;
using dorn::test::inRaml;
using dorn::test::object;
using dorn::test::structureOf;
using dorn::test::textOf;
using testing::ElementsAre;
using testing::IsEmpty;

class RamlParserTest : public dorn::test::RamlTest {
protected:
    RAML_Type::pointer parse(const std::string& text) { return m_parser.parseRaml(text, m_result, false); }

    const AaGpuXmlNode* tree() const { return (m_parser.*exposed(dorn::test::ParserTreeTag{})).get(); }
    bool hasTree() const { return tree() != nullptr; }

    RamlParser m_parser;
    RAML_ParsingResult m_result = RAML_RESOURCE_LIMITATION;
};

TEST_F(RamlParserTest, ParserSaysWhenItBeginsAndEnds)
{
    m_log.clear();
    {
        const RamlParser parser;
        EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("RamlParser::RamlParser")));
    }
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("RamlParser::RamlParser"), debugLine("RamlParser::~RamlParser")));
}

TEST_F(RamlParserTest, DefaultConfigIsRequired)
{
    EXPECT_TRUE(m_parser.defaultConfigRequired());
    parse("");
    EXPECT_TRUE(m_parser.defaultConfigRequired());
}

TEST_F(RamlParserTest, ParserIsNotCopied)
{
    static_assert(!std::is_copy_constructible_v<RamlParser> && !std::is_copy_assignable_v<RamlParser>);
}

TEST_F(RamlParserTest, ModelStandsByItself)
{
    RAML_Type::pointer document;
    {
        std::string text = inObject("<p name='x'>some value that is not short</p>");
        RamlParser parser;
        document = parser.parseRaml(text, m_result, false);
        text.assign(text.size(), '#');
    }
    EXPECT_EQ(structureOf(document), "raml(2.1,ns) cmData(actual,all) A:A-1(x=some value that is not short)");
}

TEST_F(RamlParserTest, EachDocumentBeginsAnew)
{
    const RAML_Type::pointer first = parse(inObject("<q/>"));
    EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
    const RAML_Type::pointer second = parse(inObject("<p name='x'>1</p>"));
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_NE(first, second);
    EXPECT_EQ(structureOf(first), "raml(2.1,ns) cmData(actual,all)");
    EXPECT_EQ(structureOf(second), "raml(2.1,ns) cmData(actual,all) A:A-1(x=1)");
}

TEST_F(RamlParserTest, MalformedTextBehindAGoodOneIsMalformed)
{
    parse(inObject(""));
    EXPECT_TRUE(hasTree());
    EXPECT_EQ(parse("<raml>"), nullptr);
    EXPECT_EQ(m_result, RAML_MALFORMED_XML);
    EXPECT_FALSE(hasTree());
    EXPECT_NE(parse(inObject("")), nullptr);
    EXPECT_EQ(m_result, RAML_OK);
}

TEST_F(RamlParserTest, MalformedXmlIsReported)
{
    m_log.clear();
    EXPECT_EQ(parse("<raml>"), nullptr);
    EXPECT_THAT(
        m_log.texts(),
        ElementsAre(debugLine("RamlParser::parseRaml"), debugLine("RamlParser::load"),
                    errorLine("Could not load XML file. XML possibly corrupt. Please check the raml document and "
                              "try loading again!")));
}

TEST_F(RamlParserTest, OtherTopElementIsReported)
{
    m_log.clear();
    EXPECT_EQ(parse("<other/>"), nullptr);
    EXPECT_THAT(m_log.texts(),
                ElementsAre(debugLine("RamlParser::parseRaml"), debugLine("RamlParser::load"),
                            debugLine("RamlParser::parseRaml: Start Parsing of a RAML document"),
                            debugLine("RamlParser::getNextSiblingNode"),
                            errorLine("Validation constraint violation: missing required element [raml]"),
                            debugLine("RamlParser::parseRaml: End Parsing Raml document")));
}

TEST_F(RamlParserTest, EveryAttributeOfABlockIsStored)
{
    const RAML_Type::pointer document =
        parse("<raml version='2.1E' xmlns='x &amp; y'><cmData type='plan' scope='selection' domain=' d ' "
              "adaptationVersionMajor='LN7' name='the block' id='4711' other='no'>" +
              object("A-1") + "</cmData></raml>");

    ASSERT_EQ(m_result, RAML_OK);
    EXPECT_EQ(document->version, "2.1E");
    EXPECT_EQ(document->xmlns, "x & y");

    const RAML_CMDataType& cmData = *document->cmDataList.at(0);
    EXPECT_EQ(cmData.type, RAML_PLAN_CANDIDATE);
    EXPECT_EQ(cmData.scope, RAML_SCOPE_SELECTION);
    EXPECT_EQ(cmData.domain, " d ");
    EXPECT_EQ(cmData.adaptationVersionMajor, "LN7");
    EXPECT_EQ(cmData.name, "the block");
    EXPECT_EQ(cmData.id, "4711");
}

TEST_F(RamlParserTest, EveryAttributeOfALogIsStored)
{
    const RAML_Type::pointer document =
        parse(inBlock("<header><log dateTime='t' action='a' user='u' appInfo='i' appVersion='v' "
                      "adaptationVersionMinor='m'>text</log></header>" +
                      object("A-1")));
    const RAML_LogType& log = document->cmDataList.at(0)->header.logs.at(0);
    EXPECT_THAT((std::vector{log.dateTime, log.action, log.user, log.appInfo, log.text, log.appVersion,
                             log.adaptationVersionMinor}),
                ElementsAre("t", "a", "u", "i", "text", "", ""));
}

TEST_F(RamlParserTest, EveryAttributeOfAManagedObjectIsStored)
{
    const RAML_Type::pointer document =
        parse(inBlock("<managedObject class='A' distName='A-1' operation='subscribe' version='v' id='i' vendor='e' "
                      "timeStamp='t' name='n' actionName='o' levelScope='wholeSubtree' funcScope='QOS' filter='CM' "
                      "sequenceNo='007'/>"));

    ASSERT_EQ(m_result, RAML_OK);
    const RAML_ManagedObjectType& mo = *document->cmDataList.at(0)->managedObjects.at(0);
    EXPECT_THAT((std::vector{mo.mClassname, mo.mDistName, mo.mVersion, mo.mId, mo.mVendor, mo.mTimeStamp, mo.mName,
                             mo.mOperationName, mo.mSequenceNumber}),
                ElementsAre("A", "A-1", "v", "i", "e", "t", "n", "o", "007"));
    EXPECT_EQ(mo.mOperation, RAML_OP_SUBSCRIBE);
    EXPECT_EQ(mo.mLevelScope, RAML_LSCOPE_WHOLE_SUBTREE);
    EXPECT_EQ(mo.mFuncScope, RAML_FSCOPE_QOS);
    EXPECT_EQ(mo.mFilter, RAML_FILTER_CM);
    EXPECT_EQ(mo.mDefaults.name + mo.mDefaults.id + mo.mDefaults.status, "");
}

TEST_F(RamlParserTest, MissingAttributesAreEmptyOrNone)
{
    const RAML_Type::pointer document = parse(inObject(""));
    EXPECT_EQ(textOf(document), "raml(2.1,ns) cmData(actual,all)<,,,> A:A-1<1,,,,,,,0,0,0,>()");
}

TEST_F(RamlParserTest, UnknownTextsOfOptionalAttributesAreNoError)
{
    const RAML_Type::pointer document =
        parse(inBlock("<managedObject class='A' distName='A-1' operation='query' levelScope='x' funcScope='FM PM' "
                      "filter='x'><list name='l'><item operation='x'/></list></managedObject>"));
    ASSERT_EQ(m_result, RAML_OK);
    const RAML_ManagedObjectType& mo = *document->cmDataList.at(0)->managedObjects.at(0);
    EXPECT_EQ(mo.mLevelScope, RAML_LSCOPE_INVALID);
    EXPECT_EQ(mo.mFuncScope, RAML_FSCOPE_INVALID);
    EXPECT_EQ(mo.mFilter, RAML_FILTER_INVALID);
    EXPECT_THAT(errorsOf(m_log), IsEmpty());
}

TEST_F(RamlParserTest, ParametersHaveTheirTypes)
{
    const RAML_Type::pointer document = parse(inObject("<p name='x'>1</p><list name='l'><p>2</p><item/></list>"));
    const auto& parameters = document->cmDataList.at(0)->managedObjects.at(0)->mParameters;
    ASSERT_EQ(parameters.size(), 2U);
    EXPECT_EQ(parameters[0]->type, RAML_P);
    EXPECT_EQ(parameters[1]->type, RAML_LIST);
    const auto& elements = boost::dynamic_pointer_cast<RAML_ListType>(parameters[1])->listElements;
    ASSERT_EQ(elements.size(), 2U);
    EXPECT_EQ(elements[0]->type, RAML_LIST_P);
    EXPECT_EQ(elements[1]->type, RAML_ITEM);
}

TEST_F(RamlParserTest, PlaceForManagedObjectsIsTakenBeforehand)
{
    std::string objects = "<header/><x/>";
    for (int number = 0; number < 37; ++number) {
        objects += object("A-" + std::to_string(number));
    }
    const RAML_Type::pointer document = parse(inBlock(objects));
    EXPECT_GE(document->cmDataList.at(0)->managedObjects.capacity(), 37U);
}

const std::string sibling = "RamlParser::getNextSiblingNode";

class Trace {
public:
    Trace& operator<<(const std::string& text)
    {
        m_lines.push_back(debugLine(text));
        return *this;
    }
    Trace& present(const std::vector<std::string>& attributes)
    {
        for (const std::string& attribute : attributes) {
            *this << "RamlParser::GetAttributeNode " + attribute << "RamlParser::GetAttributeNode attribute node found";
        }
        return *this;
    }
    Trace& absent(const std::vector<std::string>& attributes)
    {
        for (const std::string& attribute : attributes) {
            *this << "RamlParser::GetAttributeNode " + attribute;
        }
        return *this;
    }
    Trace& error(const std::string& text)
    {
        m_lines.push_back(errorLine("Validation constraint violation: " + text));
        return *this;
    }
    const std::vector<std::string>& lines() const { return m_lines; }

private:
    std::vector<std::string> m_lines;
};

std::string addressOf(const RAML_ManagedObjectType& mo)
{
    char text[32];
    std::snprintf(text, sizeof text, "%p", static_cast<const void*>(&mo));
    return text;
}

TEST_F(RamlParserTest, EveryStepIsLogged)
{
    m_log.clear();
    const RAML_Type::pointer document =
        parse("<raml version='2.1' xmlns='ns'><cmData type='actual'>"
              "<header><log dateTime='t' action='a' user='u'>text</log></header>"
              "<managedObject class='A' distName='A-1' operation='create' funcScope='FM' sequenceNo='7'>"
              "<p name='x'>1</p>"
              "<list name='l'><p>2</p><item operation='create'><p name='y'>3</p><p/></item></list>"
              "<defaults/></managedObject></cmData></raml>");

    const RAML_ManagedObjectType& mo = *document->cmDataList.at(0)->managedObjects.at(0);
    Trace trace;
    trace << "RamlParser::parseRaml"
          << "RamlParser::load"
          << "RamlParser::parseRaml: Start Parsing of a RAML document";
    trace << sibling << "Constructor of Raml_Type"
          << "RamlParser::in_raml";
    trace.present({"version", "xmlns"});
    trace << sibling << "cm data"
          << "Constructor of CmDataType []";
    trace << "RamlParser::in_cmData"
          << "RamlParser::in_cmDataAttributesOnly";
    trace.present({"type"}) << "RamlParser::getPlanType";
    trace.absent({"scope", "domain", "adaptationVersionMajor"});
    trace << "Mandatory attribute 'adaptationVersionMajor' missing. Defaulting to []";
    trace.absent({"name", "id"}) << "RamlParser::getScopeType";
    trace << sibling << sibling << sibling; // the managed objects are counted
    trace << sibling << "RamlParser::in_header" << sibling;
    trace.present({"dateTime", "action", "user"}).absent({"appInfo"}) << "t:        a (u)  text" << sibling;
    trace << sibling << "Constructor of Raml_ManagedObjectType [] " + addressOf(mo) << "RamlParser::in_mo";
    trace.present({"class", "distName", "operation"});
    trace.absent({"version", "id", "vendor", "timeStamp", "name", "actionName", "levelScope"});
    trace.present({"funcScope"}).absent({"filter"}).present({"sequenceNo"});
    trace << "funcScope = FM value = 2";
    trace << "Raml2.1 attributes in MO: class [A], operation [create], distName [A-1]";
    trace << "Raml2.1E attributes in MO: levelScope [], funcScope [FM], filter [], sequenceNo [7]";
    trace << "Raml2.1E attributes in MO: levelScope [0], funcScope [2], filter [0], sequenceNo [7]";
    trace << sibling;
    trace.present({"name"}) << "--p: 'x'    '1'";
    trace << sibling << "RamlParser::in_list";
    trace.present({"name"}) << "--list: l";
    trace << sibling;
    trace.absent({"name"}) << "Constructor RAML_ListElementType (type=RAML_LIST_P)"
                           << "----p ''    '2'";
    trace << sibling << "RamlParser::in_item"
          << "Constructor RAML_ListElementType (type=RAML_ITEM)"
          << "----item";
    trace.present({"operation"}) << "ListItem with attribute operation [create]";
    trace << sibling;
    trace.present({"name"}) << "------p: 'y'    '3'";
    trace << sibling;
    trace.absent({"name"}) << "------p: ''    ''";
    trace << sibling << sibling;
    trace << sibling << "Optional tag 'defaults' ignored!" << sibling;
    trace << sibling << "Created 1 RamlMo instances" << sibling;
    trace << "RamlParser::parseRaml: End Parsing Raml document";

    EXPECT_EQ(m_log.texts(), trace.lines());
}

TEST_F(RamlParserTest, BlockThatIsNotReadIsCounted)
{
    parse("<raml version='2.1' xmlns='ns'><cmData/></raml>");
    EXPECT_EQ(m_log.count(debugLine("Created 0 RamlMo instances")), 1U);
}

TEST_F(RamlParserTest, StoredValuesOfUnknownTextsAreLogged)
{
    parse(
        inBlock("<managedObject class='A' distName='A-1' operation='query' levelScope='x' funcScope='x' filter='x'/>"));
    EXPECT_EQ(m_log.count(debugLine("Raml2.1E attributes in MO: levelScope [3], funcScope [-2147483648], filter [3], "
                                    "sequenceNo []")),
              1U);
}

TEST_F(RamlParserTest, ElementsThatArePassedOverAreSteps)
{
    RAML_Type document;
    AaGpuXmlNode* const raml = nodeOf("<raml version='2.1' xmlns='ns'><other/><another/></raml>");
    m_result = RAML_OK;
    m_log.clear();
    m_parser.in_raml(raml, document, m_result);
    Trace trace;
    trace << "RamlParser::in_raml";
    trace.present({"version", "xmlns"}) << sibling << sibling << sibling;
    EXPECT_EQ(m_log.texts(), trace.error("missing required element [cmData]").lines());
}

TEST_F(RamlParserTest, EveryElementIsAStepWhenObjectsAreCounted)
{
    const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
    AaGpuXmlNode* const block = nodeOf("<block type='plan'><header/><header/><header/></block>");
    m_result = RAML_OK;
    m_log.clear();
    m_parser.in_cmData(block, cmData, m_result);
    // Four steps to count, as many to read, and one in each header.
    EXPECT_EQ(m_log.count(debugLine(sibling)), 4U + 4U + 3U);
}

TEST_F(RamlParserTest, ActionIsNotLookedUpWithoutDateTime)
{
    RAML_HeaderType header;
    AaGpuXmlNode* const node = nodeOf("<header><log action='a'/></header>");
    m_log.clear();
    m_parser.in_header(node, header, m_result);
    Trace trace;
    trace << "RamlParser::in_header" << sibling;
    trace.absent({"dateTime"});
    trace.error("missing required attribute 'dateTime' and/or 'action' in element [log].");
    EXPECT_EQ(m_log.texts(), trace.lines());
}

TEST_F(RamlParserTest, NothingIsLookedUpBehindAMissingNameOfAnObject)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    m_log.clear();
    m_parser.in_mo(nodeOf("<managedObject distName='A-1' operation='create'/>"), mo, m_result);
    m_parser.in_mo(nodeOf("<managedObject class='A' operation='create'/>"), mo, m_result);
    Trace trace;
    trace << "RamlParser::in_mo";
    trace.absent({"class"}).error("missing required attribute 'class' in element [managedObject].");
    trace << "RamlParser::in_mo";
    trace.present({"class"}).absent({"distName"});
    trace.error("missing required attribute 'distName' in element [managedObject].");
    EXPECT_EQ(m_log.texts(), trace.lines());
}

TEST_F(RamlParserTest, AttributesOfAnObjectAreLoggedBeforeItsOperationIsJudged)
{
    parse(inBlock("<managedObject class='A' distName='A-1' operation='modify' levelScope='x' sequenceNo='7'/>"));
    const std::vector<std::string> lines = m_log.texts();
    const auto first = std::find(lines.begin(), lines.end(),
                                 debugLine("Raml2.1 attributes in MO: class [A], operation [modify], distName [A-1]"));
    ASSERT_GE(std::distance(first, lines.end()), 4);
    EXPECT_THAT(
        std::vector(first + 1, first + 4),
        ElementsAre(debugLine("Raml2.1E attributes in MO: levelScope [x], funcScope [], filter [], sequenceNo [7]"),
                    debugLine("Raml2.1E attributes in MO: levelScope [3], funcScope [0], filter [0], sequenceNo [7]"),
                    errorLine("MO of class 'A' with distName 'A-1' has incorrect operation type = 'modify'")));
}

TEST_F(RamlParserTest, OperationsAreLoggedAsTheyStandInTheDocument)
{
    parse(inBlock("<managedObject class='A' distName='A-1' operation='subscribe'>"
                  "<list name='l'><item operation='update'/><item/></list></managedObject>"));
    EXPECT_EQ(m_log.count(debugLine("Raml2.1 attributes in MO: class [A], operation [subscribe], distName [A-1]")), 1U);
    EXPECT_EQ(m_log.count(debugLine("ListItem with attribute operation [update]")), 1U);
    EXPECT_EQ(m_log.count(debugLine("ListItem with attribute operation []")), 1U);
}

TEST_F(RamlParserTest, EmptyAdaptationVersionIsThere)
{
    parse(inRaml("<cmData type='actual' adaptationVersionMajor=''>" + object("A-1") + "</cmData>"));
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_EQ(m_log.count(debugLine("Mandatory attribute 'adaptationVersionMajor' missing. Defaulting to []")), 0U);
    parse(inRaml("<cmData type='actual'>" + object("A-1") + "</cmData>"));
    EXPECT_EQ(m_log.count(debugLine("Mandatory attribute 'adaptationVersionMajor' missing. Defaulting to []")), 1U);
}

TEST_F(RamlParserTest, ExtensionIsLoggedAsIgnored)
{
    parse(inObject("<extension/>"));
    EXPECT_EQ(m_log.count(debugLine("Optional tag 'extension' ignored!")), 1U);
}

TEST_F(RamlParserTest, TextsWithPercentSignsAreLoggedAsTheyAre)
{
    parse(inObject("<p name='%s%n'>%d</p><%/>"));
    EXPECT_EQ(m_result, RAML_MALFORMED_XML); // a name has no such sign
    parse(inObject("<p name='%s%n'>%d</p>"));
    EXPECT_EQ(m_log.count(debugLine("--p: '%s%n'    '%d'")), 1U);
}

TEST_F(RamlParserTest, AttributeIsLookedUpByItsWholeName)
{
    AaGpuXmlNode* const node = nodeOf("<a name='1' Name='2' empty=''><other name='3' inside='4'/></a>");
    std::string value = "before";
    EXPECT_EQ(m_parser.GetAttributeValue(node, "Name", value), 1U);
    EXPECT_EQ(value, "2");
    EXPECT_EQ(m_parser.GetAttributeValue(node, "empty", value), 1U);
    EXPECT_EQ(value, "");
    value = "before";
    EXPECT_EQ(m_parser.GetAttributeValue(node, "other", value), 0U);
    EXPECT_EQ(m_parser.GetAttributeValue(node, "inside", value), 0U);
    EXPECT_EQ(m_parser.GetAttributeValue(node, "nam", value), 0U);
    EXPECT_EQ(value, "before");
}

TEST_F(RamlParserTest, NameOfAnAttributeDoesNotEndAtAZeroByte)
{
    AaGpuXmlNode* const node = nodeOf("<a name='1'/>");
    std::string value = "before";
    m_log.clear();
    EXPECT_EQ(m_parser.GetAttributeValue(node, std::string("name\0x", 6), value), 0U);
    EXPECT_EQ(m_parser.GetAttributeValue(node, std::string("name\0", 5), value), 0U);
    EXPECT_EQ(value, "before");
    EXPECT_EQ(m_log.texts(), Trace().absent({"name", "name"}).lines());
}

TEST_F(RamlParserTest, NodeWithoutChildrenHasNoAttribute)
{
    std::string value = "before";
    EXPECT_EQ(m_parser.GetAttributeValue(nullptr, "name", value), 0U);
    EXPECT_EQ(m_parser.GetAttributeValue(nodeOf("<a>text</a>"), "name", value), 0U);
    EXPECT_EQ(value, "before");
}

TEST_F(RamlParserTest, LookingUpAnAttributeIsLogged)
{
    AaGpuXmlNode* const node = nodeOf("<a name='1'/>");
    std::string value;
    m_log.clear();
    m_parser.GetAttributeValue(node, "name", value);
    m_parser.GetAttributeValue(nullptr, "name", value);
    EXPECT_EQ(m_log.texts(), Trace().present({"name"}).absent({"name"}).lines());
}

TEST_F(RamlParserTest, SiblingsAreSearchedFromTheFirstOneOn)
{
    AaGpuXmlNode* const first = *nodeOf("<a b='1' c='2'><b/><c/><b/></a>")->AaGpuXmlGetFirstChildren();
    const auto find = [&](AaGpuXmlNode* from, EAaGpuXmlNodeType type, const char* name) {
        return m_parser.getNextSiblingNode(from, type, name);
    };

    AaGpuXmlNode* const firstElement = find(first, AA_GPU_XML_ELEMENT_NODE, nullptr);
    AaGpuXmlNode* const elementC = find(first, AA_GPU_XML_ELEMENT_NODE, "c");

    ASSERT_TRUE(firstElement && elementC);
    EXPECT_STREQ(firstElement->AaGpuXmlGetName(), "b");
    EXPECT_EQ(firstElement->AaGpuXmlGetNext(), elementC);
    EXPECT_EQ(find(elementC, AA_GPU_XML_ELEMENT_NODE, "c"), elementC);
    EXPECT_EQ(find(elementC, AA_GPU_XML_ELEMENT_NODE, "b"), elementC->AaGpuXmlGetNext());
    EXPECT_EQ(find(elementC->AaGpuXmlGetNext(), AA_GPU_XML_ELEMENT_NODE, "c"), nullptr);
    EXPECT_EQ(find(first, AA_GPU_XML_ATTRIBUTE_NODE, "b"), first);
    EXPECT_STREQ(find(first, AA_GPU_XML_ATTRIBUTE_NODE, "c")->AaGpuXmlGetValue(), "2");
    EXPECT_EQ(find(first, AA_GPU_XML_ROOT_NODE, nullptr), nullptr);
    EXPECT_EQ(find(nullptr, AA_GPU_XML_ELEMENT_NODE, nullptr), nullptr);
}

TEST_F(RamlParserTest, PlanTypesAreKnownByTheirTexts)
{
    EXPECT_EQ(m_parser.getPlanType("actual"), RAML_PLAN_ACTUAL);
    EXPECT_EQ(m_parser.getPlanType("plan"), RAML_PLAN_CANDIDATE);
    EXPECT_EQ(m_parser.getPlanType("defaults"), RAML_PLAN_DEFAULTS);
    EXPECT_EQ(m_parser.getPlanType("none"), RAML_PLAN_NONE);
    EXPECT_EQ(m_parser.getPlanType("candidate"), RAML_PLAN_NONE);
    EXPECT_EQ(m_parser.getPlanType(""), RAML_PLAN_NONE);
}

TEST_F(RamlParserTest, ScopeTypesAreKnownByTheirTexts)
{
    EXPECT_EQ(m_parser.getScopeType("all"), RAML_SCOPE_ALL);
    EXPECT_EQ(m_parser.getScopeType("hierarchy"), RAML_SCOPE_HIERARCHY);
    EXPECT_EQ(m_parser.getScopeType("changes"), RAML_SCOPE_CHANGES);
    EXPECT_EQ(m_parser.getScopeType("selection"), RAML_SCOPE_SELECTION);
    EXPECT_EQ(m_parser.getScopeType("none"), RAML_SCOPE_INVALID);
    EXPECT_EQ(m_parser.getScopeType("All"), RAML_SCOPE_INVALID);
    EXPECT_EQ(m_parser.getScopeType(""), RAML_SCOPE_INVALID);
}

TEST_F(RamlParserTest, PartsOfADocumentMayBeReadAlone)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    m_result = RAML_OK;
    m_parser.in_mo(nodeOf(object("A-1", "<p name='x'>1</p>")), mo, m_result);
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_EQ(mo->mParameters.size(), 1U);

    m_parser.in_list(nodeOf("<list name='l'><p>1</p></list>"), mo, m_result);
    EXPECT_EQ(mo->mParameters.size(), 2U);
    m_result = RAML_SYNTAX_ERROR;
    m_parser.in_list(nodeOf("<list name='m'><p>1</p></list>"), mo, m_result);
    EXPECT_EQ(mo->mParameters.size(), 2U);

    const RAML_ListType::pointer list = RAML_ListType::create();
    m_parser.in_item(nodeOf("<item><p name='y'>2</p></item>"), list, m_result);
    EXPECT_EQ(list->listElements.size(), 1U);
    EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
}

TEST_F(RamlParserTest, LoadingBeginsWithoutError)
{
    m_result = RAML_SYNTAX_ERROR;
    m_parser.load("<a/>", m_result, false);
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_TRUE(hasTree());
    m_result = RAML_SYNTAX_ERROR;
    m_parser.load("<a>", m_result, false); // that there is no tree is not its matter
    EXPECT_EQ(m_result, RAML_OK);
    EXPECT_FALSE(hasTree());
}

TEST_F(RamlParserTest, FileThatIsNotReadLeavesTheTree)
{
    m_node.writeBoardFile("/ffs/empty.xml", "");
    parse(inObject(""));
    const AaGpuXmlNode* const before = tree();
    ASSERT_TRUE(before);
    m_parser.parseRaml("/ffs/none.xml", m_result, true);
    EXPECT_EQ(m_result, RAML_RESOURCE_LIMITATION);
    EXPECT_EQ(tree(), before);
    m_parser.parseRaml("/ffs/empty.xml", m_result, true);
    EXPECT_EQ(m_result, RAML_INVALID_FILE_FORMAT);
    EXPECT_EQ(tree(), before);
}

TEST_F(RamlParserTest, NamesOfElementsStandInTheMessages)
{
    const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
    RAML_HeaderType header;
    RAML_Type document;

    m_parser.in_raml(nodeOf("<other/>"), document, m_result);
    m_result = RAML_OK;
    m_parser.in_cmData(nodeOf("<block type='plan'><x/></block>"), cmData, m_result);
    m_parser.in_cmDataAttributesOnly(nodeOf("<block/>"), cmData, m_result);
    m_parser.in_cmDataAttributesOnly(nodeOf("<block type='x'/>"), cmData, m_result);
    m_parser.in_header(nodeOf("<top><x/></top>"), header, m_result);
    m_parser.in_mo(nodeOf("<mo/>"), RAML_ManagedObjectType::create(), m_result);
    m_parser.in_mo(nodeOf("<mo class=''/>"), RAML_ManagedObjectType::create(), m_result);
    m_parser.in_list(nodeOf("<row/>"), RAML_ManagedObjectType::create(), m_result);

    const std::string violation = "Validation constraint violation: ";
    EXPECT_THAT(errorsOf(m_log),
                ElementsAre(errorLine(violation + "missing required attribute 'version' in element [ other ]."),
                            errorLine(violation + "missing required attribute 'xmlns' in element [other]."),
                            errorLine(violation + "tag name mismatch in element [block]. Detected unexpected tag 'x'."),
                            errorLine(violation + "missing required element [managedObject]"),
                            errorLine(violation + "missing required attribute 'type' in element [block]."),
                            errorLine(violation + "Missing or invalid value for attribute 'type' in element [block]"),
                            errorLine(violation + "tag name mismatch in element [top]. Detected unexpected tag 'x'."),
                            errorLine(violation + "missing required attribute 'class' in element [mo]."),
                            errorLine(violation + "missing required attribute 'distName' in element [mo]."),
                            errorLine(violation + "missing required attribute 'name' in element [row]")));
}

} // namespace
} // namespace RAML
