// SPDX-License-Identifier: MIT
// What an error leaves of the element that it stands in, and what is not read behind it. Each part is read alone, so
// that the parts around it cannot hide anything.
#include "ModelText.hpp"
#include "RamlTest.hpp"
#include "RamlTexts.hpp"

#include "raml/RamlParser.hpp"

#include <gmock/gmock.h>
#include <utility>

namespace RAML {
namespace {

using dorn::test::debugLine;
using dorn::test::errorsOf;
using dorn::test::inObject;
using dorn::test::inRaml;
using dorn::test::object;
using dorn::test::textOf;
using testing::ElementsAre;
using testing::IsEmpty;

class RamlErrorTest : public dorn::test::RamlTest {
protected:
    RAML_Type::pointer parse(const std::string& text) { return m_parser.parseRaml(text, m_result, false); }

    RamlParser m_parser;
    RAML_ParsingResult m_result = RAML_OK;
};

TEST_F(RamlErrorTest, DocumentIsNotReadBehindAnError)
{
    RAML_Type document;
    AaGpuXmlNode* const raml = nodeOf(inObject(""));
    m_result = RAML_SYNTAX_ERROR;
    m_parser.in_raml(raml, document, m_result);
    EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
    EXPECT_EQ(document.version + document.xmlns, "");
    EXPECT_THAT(document.cmDataList, IsEmpty());
    EXPECT_EQ(m_log.count(debugLine("cm data")), 0U);
    EXPECT_THAT(errorsOf(m_log), IsEmpty());
}

TEST_F(RamlErrorTest, BlockIsNotReadBehindAnError)
{
    const RAML_CMDataType::pointer cmData = RAML_CMDataType::create();
    AaGpuXmlNode* const block = nodeOf("<cmData type='plan' id='i'><header/></cmData>");
    m_result = RAML_SYNTAX_ERROR;
    m_parser.in_cmData(block, cmData, m_result);
    EXPECT_EQ(cmData->type, RAML_PLAN_CANDIDATE);
    EXPECT_EQ(cmData->id, "i");
    EXPECT_EQ(m_log.count(debugLine("RamlParser::in_header")), 0U);
    EXPECT_THAT(errorsOf(m_log), IsEmpty());
}

TEST_F(RamlErrorTest, BlockOfAWrongTypeStaysEmpty)
{
    const std::string others = " scope='all' id='i' domain='d' name='n' adaptationVersionMajor='m'>";
    const std::string empty = "raml(2.1,ns) cmData(none,)<,,,>";
    EXPECT_EQ(textOf(parse(inRaml("<cmData type='x'" + others + object("A-1") + "</cmData>"))), empty);
    EXPECT_EQ(textOf(parse(inRaml("<cmData" + others + object("A-1") + "</cmData>"))), empty);
}

TEST_F(RamlErrorTest, ObjectOfAWrongOperationHasItsAttributes)
{
    const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
    m_result = RAML_OK;

    m_parser.in_mo(nodeOf("<managedObject class='A' distName='A-1' operation='modify' version='v' id='i' vendor='e' "
                          "timeStamp='t' name='n' actionName='o' levelScope='wholeSubtree' funcScope='QOS' filter='CM' "
                          "sequenceNo='007'><p name='x'>1</p></managedObject>"),
                   mo, m_result);

    EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
    EXPECT_THAT((std::vector{mo->mClassname, mo->mDistName, mo->mVersion, mo->mId, mo->mVendor, mo->mTimeStamp,
                             mo->mName, mo->mOperationName, mo->mSequenceNumber}),
                ElementsAre("A", "A-1", "v", "i", "e", "t", "n", "o", "007"));
    EXPECT_EQ(mo->mOperation, RAML_OP_INVALID);
    EXPECT_EQ(mo->mLevelScope, RAML_LSCOPE_WHOLE_SUBTREE);
    EXPECT_EQ(mo->mFuncScope, RAML_FSCOPE_QOS);
    EXPECT_EQ(mo->mFilter, RAML_FILTER_CM);
    EXPECT_THAT(mo->mParameters, IsEmpty());
}

TEST_F(RamlErrorTest, ObjectWithoutOneOfItsNamesHasNeither)
{
    for (const char* const text : {"<managedObject class='A' operation='create' id='i'><p name='x'/></managedObject>",
                                   "<managedObject distName='A-1' operation='create' id='i'><p name='x'/>"
                                   "</managedObject>"}) {
        const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
        m_result = RAML_OK;
        m_parser.in_mo(nodeOf(text), mo, m_result);
        EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
        EXPECT_EQ(mo->mClassname + mo->mDistName + mo->mId, "");
        EXPECT_EQ(mo->mOperation, RAML_OP_NONE);
        EXPECT_THAT(mo->mParameters, IsEmpty());
    }
}

TEST_F(RamlErrorTest, ObjectHasWhatWasReadUntilItEnds)
{
    const std::vector<std::pair<std::string, std::vector<std::string>>> contents{
        {"<p name='a'/><q/><p name='b'/>", {"a", "b"}}, // an unknown tag is passed over
        {"<p name='a'/><p/><p name='b'/>", {"a"}},      // all else ends the object
        {"<p name='a'/><p name=''>1</p><p name='b'/>", {"a"}},
        {"<p name='a'/><list/><p name='b'/>", {"a"}},
        {"<p name='a'/><list name='l'><q/></list><p name='b'/>", {"a"}},
        {"<q/><p name='a'/><list name='l'/><p name='b'/>", {"a"}},
    };

    for (const auto& [content, names] : contents) {
        const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
        m_result = RAML_OK;
        m_parser.in_mo(nodeOf(object("A-1", content)), mo, m_result);
        EXPECT_EQ(m_result, RAML_SYNTAX_ERROR) << content;

        std::vector<std::string> kept;
        for (const RAML_MOParameterType::pointer& parameter : mo->mParameters) {
            kept.push_back(parameter->name);
        }
        EXPECT_EQ(kept, names) << content;
    }
}

TEST_F(RamlErrorTest, BadListIsDropped)
{
    for (const char* const text :
         {"<list><p>1</p></list>", "<list name='l'><p>1</p><p name='x'>2</p></list>",
          "<list name='l'><p>1</p><q/></list>", "<list name='l'><p>1</p><item><q/></item></list>"}) {
        const RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
        m_result = RAML_OK;
        m_parser.in_list(nodeOf(text), mo, m_result);
        EXPECT_EQ(m_result, RAML_SYNTAX_ERROR) << text;
        EXPECT_THAT(mo->mParameters, IsEmpty()) << text;
    }
}

TEST_F(RamlErrorTest, BadItemIsDropped)
{
    const RAML_ListType::pointer list = RAML_ListType::create();
    m_result = RAML_OK;
    m_parser.in_item(nodeOf("<item operation='create'><p name='x'>1</p><q/></item>"), list, m_result);
    EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
    EXPECT_THAT(list->listElements, IsEmpty());
}

} // namespace
} // namespace RAML
