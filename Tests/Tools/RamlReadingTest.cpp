// SPDX-License-Identifier: MIT
#include "raml/RamlReading.hpp"

#include "NodeTest.hpp"
#include "Outcome.hpp"
#include "RamlDocuments.hpp"
#include "TestConsole.hpp"
#include "generator/RamlGenerator.hpp"

#include <gtest/gtest.h>
#include <ostream>

namespace dorn::tool {
namespace {

using namespace RAML;

constexpr std::size_t all = 1000;

/// "7:5: <p>: ..." of each finding, one a line.
std::string findingsOf(const std::string& text)
{
    std::string result;
    for (const RamlFinding& finding : readRaml(text, all).findings) {
        result += findingText(finding) + "\n";
    }
    return result;
}

class RamlReadingTest : public testkit::NodeTest {};

TEST_F(RamlReadingTest, GoodDocumentHasNoFindings)
{
    const RamlReading reading = readRaml(ramlAround(ramlObject("Fan", "Fan=1")), all);
    EXPECT_EQ(reading.result, RAML_OK);
    ASSERT_TRUE(reading.document);
    EXPECT_EQ(reading.document->cmDataList.size(), 1U);
    EXPECT_EQ(reading.findingCount, 0U);
}

TEST_F(RamlReadingTest, EmptyTextIsAnEmptyFile)
{
    const RamlReading reading = readRaml("", all);
    EXPECT_EQ(reading.result, RAML_INVALID_FILE_FORMAT);
    EXPECT_EQ(findingsOf(""), "Empty file\n");
    m_node.writeBoardFile("/empty.xml", "");
    RAML_ParsingResult result = RAML_OK;
    RamlParser().parseRaml("/empty.xml", result, true);
    EXPECT_EQ(result, reading.result);
    EXPECT_EQ(m_log.count("Error 0x20066 Empty file"), 1U);
}

TEST_F(RamlReadingTest, TextThatIsNoXmlIsToldWhereAndWhy)
{
    const RamlReading reading = readRaml("<raml>\n <cmData>\n</raml>\n", all);
    EXPECT_EQ(reading.result, RAML_MALFORMED_XML);
    ASSERT_EQ(reading.findings.size(), 1U);
    EXPECT_EQ(reading.findings.front().text, "Could not load XML file. XML possibly corrupt. Please check the raml "
                                             "document and try loading again!");
    EXPECT_EQ(reading.findings.front().line, 3U);
    EXPECT_NE(reading.findings.front().reason, "");
    EXPECT_EQ(reading.findings.front().element, "");
}

TEST_F(RamlReadingTest, OnlyTheFirstFindingsAreKeptAndAllAreCounted)
{
    std::string objects;
    for (int index = 0; index < 5; ++index) {
        objects += ramlObject("Fan", "Fan=1", "", "modify");
    }
    const RamlReading reading = readRaml(ramlAround(objects), 2);
    EXPECT_EQ(reading.findings.size(), 2U);
    EXPECT_EQ(reading.findingCount, 6U); // and no managed object
}

/// The log and the findings say the same, whoever reads first.
TEST_F(RamlReadingTest, FindingsAreTheLinesOfTheLog)
{
    const RamlReading reading = readRaml(ramlAround("    <managed/>\n" + ramlObject("Fan", "Fan=1", "<q/><p/>")), all);
    std::vector<std::string> logged;
    for (const host::LogLine& line : m_log.lines()) {
        if (line.severity == EAaSysLogSeverityLevel_Error) {
            logged.push_back(line.text);
        }
    }
    std::vector<std::string> found;
    for (const RamlFinding& finding : reading.findings) {
        found.push_back(finding.text);
    }
    EXPECT_EQ(found, logged);
    EXPECT_EQ(found.size(), 4U);
}

struct PlaceCase {
    const char* name;
    const char* text;
    const char* findings;
};

void PrintTo(const PlaceCase& test, std::ostream* stream)
{
    *stream << test.name;
}

class FindingPlaceTest : public testkit::NodeTest, public ::testing::WithParamInterface<PlaceCase> {};

TEST_P(FindingPlaceTest, FindingNamesTheOffendingElement)
{
    EXPECT_EQ(findingsOf(GetParam().text), GetParam().findings);
}

constexpr const char* violation = "Validation constraint violation: ";

// In each text the offending element is the only one that stands where the finding says.
const PlaceCase placeCases[] = {
    {"NoRaml", "<data/>", "1:1: <data>: Validation constraint violation: missing required element [raml]\n"},
    {"RootAttributes", "\n <raml version='2.0'/>",
     "2:2: <raml>: Validation constraint violation: RAML version mismatch.\n"
     "2:2: <raml>: Validation constraint violation: missing required attribute 'xmlns' in element [raml].\n"},
    {"NoBlock", "\n<raml version='2.1' xmlns=''>\n<other/></raml>",
     "2:1: <raml>: Validation constraint violation: missing required element [cmData]\n"},
    {"BlockType", "<raml version='2.1' xmlns=''>\n<other/>\n<cmData/>\n  <cmData type='x'/></raml>",
     "3:1: <cmData>: Validation constraint violation: missing required attribute 'type' in element [cmData].\n"
     "4:3: <cmData>: Validation constraint violation: Missing or invalid value for attribute 'type' in element "
     "[cmData]\n"},
    {"NoObject", "<raml version='2.1' xmlns=''>\n<cmData type='plan'>\n<header>\n</header></cmData></raml>",
     "2:1: <cmData>: Validation constraint violation: missing required element [managedObject]\n"},
    {"Header",
     "<raml version='2.1' xmlns=''><cmData type='plan'><header>\n<log dateTime='' action=''/>\n <a/>\n  <log "
     "dateTime=''/></header></cmData></raml>",
     "3:2: <a>: Validation constraint violation: tag name mismatch in element [header]. Detected unexpected tag 'a'.\n"
     "4:3: <log>: Validation constraint violation: missing required attribute 'dateTime' and/or 'action' in element "
     "[log].\n"
     "1:30: <cmData>: Validation constraint violation: missing required element [managedObject]\n"},
    {"Block",
     "<raml version='2.1' xmlns=''><cmData type='plan'><managedObject class='A' distName='B' operation='create'/>\n"
     " <a/></cmData></raml>",
     "2:2: <a>: Validation constraint violation: tag name mismatch in element [cmData]. Detected unexpected tag "
     "'a'.\n"},
    {"ObjectAttributes",
     "<raml version='2.1' xmlns=''><cmData type='plan'>\n<managedObject class='A' distName='B' operation='create'/>\n"
     " <managedObject/>\n  <managedObject class='A'/>\n   <managedObject class='A' distName='B'/></cmData></raml>",
     "3:2: <managedObject>: Validation constraint violation: missing required attribute 'class' in element "
     "[managedObject].\n"
     "4:3: <managedObject>: Validation constraint violation: missing required attribute 'distName' in element "
     "[managedObject].\n"
     "5:4: <managedObject>: MO of class 'A' with distName 'B' has incorrect operation type = ''\n"},
    {"ObjectContent",
     "<raml version='2.1' xmlns=''><cmData type='plan'><managedObject class='A' distName='B' operation='create'/>\n"
     "<managedObject class='A' distName='C' operation='create'>\n<p name='a'/>\n <q/>\n  <p/>\n<q/></managedObject>"
     "</cmData></raml>",
     "4:2: <q>: Validation constraint violation: tag name mismatch in element [q]. Detected unexpected tag [q]\n"
     "5:3: <p>: Validation constraint violation: missing required attribute 'name' in element [p]. Detected in class "
     "[A]\n"},
    {"ListName",
     "<raml version='2.1' xmlns=''><cmData type='plan'><managedObject class='A' distName='B' operation='create'/>"
     "<managedObject class='A' distName='C' operation='create'><list name=''/>\n <list/></managedObject></cmData>"
     "</raml>",
     "2:2: <list>: Validation constraint violation: missing required attribute 'name' in element [list]\n"},
    {"ListValue",
     "<raml version='2.1' xmlns=''><cmData type='plan'><managedObject class='A' distName='B' operation='create'/>"
     "<managedObject class='A' distName='C' operation='create'><list name=''><p/><item><p/></item>\n <p "
     "name='x'/></list></managedObject></cmData></raml>",
     "2:2: <p>: Validation constraint violation: prohibited attribute [x] present in element [p]\n"},
    {"ListContent",
     "<raml version='2.1' xmlns=''><cmData type='plan'><managedObject class='A' distName='B' operation='create'/>"
     "<managedObject class='A' distName='C' operation='create'><list name=''><p/>\n <a/></list></managedObject>"
     "</cmData></raml>",
     "2:2: <a>: Validation constraint violation: tag name mismatch in element [list]. Detected unexpected tag [a]\n"},
    {"ItemContent",
     "<raml version='2.1' xmlns=''><cmData type='plan'><managedObject class='A' distName='B' operation='create'/>"
     "<managedObject class='A' distName='C' operation='create'><list name=''><item><p/>\n <a/></item></list>"
     "</managedObject></cmData></raml>",
     "2:2: <a>: Validation constraint violation: tag name mismatch in element [item]. Detected unexpected tag [a]\n"},
    {"SecondBlock",
     "<raml version='2.1' xmlns=''><cmData type='plan'><managedObject class='A' distName='B' operation='create'>\n"
     "<p/></managedObject></cmData>\n<cmData type='plan'>\n<managedObject class='A' distName='C' operation='create'/>"
     "</cmData></raml>",
     "2:1: <p>: Validation constraint violation: missing required attribute 'name' in element [p]. Detected in class "
     "[A]\n"
     "1:30: <cmData>: Validation constraint violation: missing required element [managedObject]\n"},
};

INSTANTIATE_TEST_SUITE_P(Elements, FindingPlaceTest, ::testing::ValuesIn(placeCases),
                         [](const auto& test) { return test.param.name; });

/// What becomes of a document with a fault of the generator, and the begin of the first error line.
struct FaultResult {
    testkit::RamlFault fault;
    RAML_ParsingResult result;
    const char* line;
};
using testkit::RamlFault;
constexpr const char* notXml = "Could not load XML file. XML possibly corrupt.";
const FaultResult faultResults[] = {
    {RamlFault::NoText, RAML_INVALID_FILE_FORMAT, "Empty file"},
    {RamlFault::CutOff, RAML_MALFORMED_XML, notXml},
    {RamlFault::WrongEndTag, RAML_MALFORMED_XML, notXml},
    {RamlFault::ZeroByte, RAML_MALFORMED_XML, notXml},
    {RamlFault::NoRaml, RAML_SYNTAX_ERROR, "missing required element [raml]"},
    {RamlFault::NoVersion, RAML_SYNTAX_ERROR, "missing required attribute 'version' in element [ raml ]."},
    {RamlFault::WrongVersion, RAML_SYNTAX_ERROR, "RAML version mismatch."},
    {RamlFault::NoXmlns, RAML_SYNTAX_ERROR, "missing required attribute 'xmlns' in element [raml]."},
    {RamlFault::NoBlock, RAML_SYNTAX_ERROR, "missing required element [cmData]"},
    {RamlFault::NoType, RAML_SYNTAX_ERROR, "missing required attribute 'type' in element [cmData]."},
    {RamlFault::WrongType, RAML_SYNTAX_ERROR, "Missing or invalid value for attribute 'type' in element [cmData]"},
    {RamlFault::NoLogTime, RAML_SYNTAX_ERROR,
     "missing required attribute 'dateTime' and/or 'action' in element [log]."},
    {RamlFault::NoLogAction, RAML_SYNTAX_ERROR,
     "missing required attribute 'dateTime' and/or 'action' in element [log]."},
    {RamlFault::UnknownInHeader, RAML_SYNTAX_ERROR,
     "tag name mismatch in element [header]. Detected unexpected tag 'entry'."},
    {RamlFault::UnknownInBlock, RAML_SYNTAX_ERROR,
     "tag name mismatch in element [cmData]. Detected unexpected tag 'managed'."},
    {RamlFault::NoObject, RAML_SYNTAX_ERROR, "missing required element [managedObject]"},
    {RamlFault::NoClass, RAML_SYNTAX_ERROR, "missing required attribute 'class' in element [managedObject]."},
    {RamlFault::NoDistName, RAML_SYNTAX_ERROR, "missing required attribute 'distName' in element [managedObject]."},
    {RamlFault::NoOperation, RAML_SYNTAX_ERROR, "MO of class '"},
    {RamlFault::WrongOperation, RAML_SYNTAX_ERROR, "MO of class '"},
    {RamlFault::UnknownInObject, RAML_SYNTAX_ERROR, "tag name mismatch in element [q]. Detected unexpected tag [q]"},
    {RamlFault::NoParameterName, RAML_SYNTAX_ERROR, "missing required attribute 'name' in element [p]. Detected in"},
    {RamlFault::EmptyParameterName, RAML_SYNTAX_ERROR, "missing required attribute 'name' in element [p]. Detected in"},
    {RamlFault::NoListName, RAML_SYNTAX_ERROR, "missing required attribute 'name' in element [list]"},
    {RamlFault::NamedListValue, RAML_SYNTAX_ERROR, "prohibited attribute [limit] present in element [p]"},
    {RamlFault::UnknownInList, RAML_SYNTAX_ERROR, "tag name mismatch in element [list]. Detected unexpected tag [q]"},
    {RamlFault::UnknownInItem, RAML_SYNTAX_ERROR, "tag name mismatch in element [item]. Detected unexpected tag [q]"},
};
static_assert(std::size(faultResults) == testkit::ramlFaults.size());

class GeneratedFaultTest : public testkit::NodeTest, public ::testing::WithParamInterface<FaultResult> {};

TEST_P(GeneratedFaultTest, FaultIsFoundWhereverItStands)
{
    for (std::uint64_t seed = 1; seed <= 30; ++seed) {
        testkit::RamlShape shape{.seed = seed, .objects = seed % 7, .blocks = static_cast<std::uint32_t>(1 + seed % 3)};
        shape.isPlain = seed % 2 == 0;
        shape.faults = {GetParam().fault};
        const RamlReading reading = readRaml(testkit::ramlText(shape), all);
        ASSERT_EQ(reading.result, GetParam().result) << "seed " << seed;
        const std::string text = reading.findings.front().text;
        const std::string line = GetParam().line;
        EXPECT_TRUE(text.starts_with(line) || text.starts_with(violation + line)) << "seed " << seed << ": " << text;
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, GeneratedFaultTest, ::testing::ValuesIn(faultResults), [](const auto& row) {
    std::string name(testkit::textOf(row.param.fault).name);
    std::erase(name, '-');
    return name;
});

TEST_F(RamlReadingTest, GeneratedDocumentWithoutFaultIsGood)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        testkit::RamlShape shape{
            .seed = seed, .objects = seed % 17, .blocks = static_cast<std::uint32_t>(1 + seed % 3)};
        shape.isPlain = seed % 2 == 0;
        EXPECT_EQ(findingsOf(testkit::ramlText(shape)), "") << "seed " << seed;
    }
}

TEST_F(RamlReadingTest, VerbsThatNeedAGoodDocumentTellTheFirstError)
{
    TestConsole console;
    EXPECT_TRUE(goodRaml(ramlAround(ramlObject("Fan", "Fan=1")), "plan.xml", console));
    try {
        goodRaml("\n<data/>", "plan.xml", console);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_STREQ(failure.what(), "'plan.xml' is RAML_SYNTAX_ERROR: 2:1: <data>: Validation constraint violation: "
                                     "missing required element [raml]; 'dorn raml check' shows all that is wrong");
    }
}

TEST_F(RamlReadingTest, GreatTextIsSaidToTakeItsTime)
{
    TestConsole console(false, true);
    readRaml("<raml>", 1, "plan.xml", console);
    EXPECT_EQ(console.remarks(), "");
    readRaml("<raml>" + std::string(std::size_t{32} << 20U, ' '), 1, "plan.xml", console);
    EXPECT_EQ(console.remarks(), "\r\033[Kparsing 'plan.xml'  32 MiB\r\033[K");
}

} // namespace
} // namespace dorn::tool
