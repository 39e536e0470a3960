// SPDX-License-Identifier: MIT
// What is written is read back, and where it is not.
#include "ModelText.hpp"
#include "RamlTest.hpp"
#include "RamlTexts.hpp"
#include "RandomModel.hpp"

#include "raml/RAML_ostream.hpp"
#include "raml/RamlParser.hpp"
#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <gmock/gmock.h>
#include <sstream>

namespace RAML {
namespace {

using dorn::test::errorLine;
using dorn::test::errorsOf;
using dorn::test::inBlock;
using dorn::test::inObject;
using dorn::test::object;
using dorn::test::randomModel;
using dorn::test::structureOf;
using dorn::test::textOf;
using testing::ElementsAre;
using testing::IsEmpty;

std::string written(const RAML_Type& document)
{
    std::ostringstream stream;
    stream << document;
    return stream.str();
}

/// Keeps errors only: there are many documents.
class RamlRoundTripTest : public ::testing::Test {
protected:
    RAML_Type::pointer parse(const std::string& text) { return RamlParser().parseRaml(text, m_result, false); }

    /// A document with one block, object, list and item, whose texts may be changed and which is then read back.
    RamlRoundTripTest()
        : m_document(parse(inObject("<p name='x'>1</p><list name='l'><p>2</p><item><p name='y'>3</p></item></list>")))
    {
        m_cmData = m_document->cmDataList.at(0);
        m_mo = m_cmData->managedObjects.at(0);
    }
    RAML_Type::pointer readBack() { return parse(written(*m_document)); }

    dorn::testkit::TestNode m_node;
    dorn::testkit::LogCapture m_log;
    RAML_ParsingResult m_result = RAML_OK;
    RAML_Type::pointer m_document;
    RAML_CMDataType::pointer m_cmData;
    RAML_ManagedObjectType::pointer m_mo;
};

TEST_F(RamlRoundTripTest, ModelsWithinTheLimitsAreReadBackEqual)
{
    for (std::uint32_t number = 0; number < 1000; ++number) {
        const RAML_Type::pointer model = randomModel(number);
        const RAML_Type::pointer again = parse(written(*model));
        ASSERT_EQ(m_result, RAML_OK) << number << written(*model);
        ASSERT_EQ(textOf(again), textOf(model)) << number;
    }
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(RamlRoundTripTest, WrittenDocumentIsWrittenAgainTheSame)
{
    for (std::uint32_t number = 0; number < 300; ++number) {
        const std::string text = written(*randomModel(number));
        ASSERT_EQ(written(*parse(text)), text);
    }
}

TEST_F(RamlRoundTripTest, ReadDocumentIsReadBackWithoutWhatIsNotWritten)
{
    m_document =
        parse("<raml version='2.1' xmlns='ns'><other/><cmData type='defaults' name='n' id='i' domain='d'>"
              "<header><log dateTime='t' action='a' user='u' appInfo='f'> text </log></header>"
              "<managedObject class='A' distName='A-1' operation='action' actionName='o' version='v' id='i' vendor='e' "
              "timeStamp='t' name='n' levelScope='wholeSubtree' funcScope='QOS' filter='CM' sequenceNo='7'>"
              "<defaults/><p name='x'> a&lt;b </p><list name='l'><item operation='delete'><p>1</p></item><p/></list>"
              "</managedObject></cmData></raml>");
    ASSERT_EQ(m_result, RAML_OK);
    EXPECT_EQ(
        textOf(readBack()),
        "raml(2.1,ns) cmData(defaults,changes)<,i,d,> log(t,a,u,, text ) A:A-1<4,v,,,,,,0,0,0,>(x= a<b  l[{=1} ])");
    EXPECT_EQ(m_result, RAML_OK);
}

TEST_F(RamlRoundTripTest, PlanNoneIsRejected)
{
    m_cmData->type = RAML_PLAN_NONE;
    EXPECT_EQ(structureOf(readBack()), "raml(2.1,ns) cmData(none,)");
    EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
    EXPECT_THAT(errorsOf(m_log), ElementsAre(errorLine("Validation constraint violation: Missing or invalid value for "
                                                       "attribute 'type' in element [cmData]")));
}

TEST_F(RamlRoundTripTest, ScopesWithoutTextBecomeChanges)
{
    for (const RAML_ScopeType scope : {RAML_SCOPE_NONE, RAML_SCOPE_INVALID}) {
        m_cmData->scope = scope;
        EXPECT_EQ(readBack()->cmDataList.at(0)->scope, RAML_SCOPE_CHANGES);
        EXPECT_EQ(m_result, RAML_OK);
    }
}

TEST_F(RamlRoundTripTest, NameOfABlockAndOperationOfAnItemAreLost)
{
    m_cmData->name = "n";
    const auto list = boost::dynamic_pointer_cast<RAML_ListType>(m_mo->findParameter("l"));
    boost::dynamic_pointer_cast<RAML_ItemType>(list->listElements.at(1))->setListItemOperation("create");
    EXPECT_EQ(textOf(readBack()), "raml(2.1,ns) cmData(actual,all)<,,,> A:A-1<1,,,,,,,0,0,0,>(x=1 l[2 {y=3}])");
}

TEST_F(RamlRoundTripTest, ObjectsWithoutWrittenOperationAreRejected)
{
    for (const RAML_MOOperationType operation :
         {RAML_OP_NONE, RAML_OP_SUBSCRIBE, RAML_OP_UNSUBSCRIBE, RAML_OP_INVALID}) {
        m_mo->setOperation(operation);
        m_log.clear();
        EXPECT_EQ(structureOf(readBack()), "raml(2.1,ns) cmData(actual,all)");
        EXPECT_EQ(m_result, RAML_SYNTAX_ERROR);
        EXPECT_THAT(
            errorsOf(m_log),
            ElementsAre(errorLine("MO of class 'A' with distName 'A-1' has incorrect operation type = ''"),
                        errorLine("Validation constraint violation: missing required element [managedObject]")));
    }
}

TEST_F(RamlRoundTripTest, SecondSpecialCharacterOfAValueBreaksTheDocument)
{
    const RAML_MOParameterType::pointer parameter = m_mo->findParameter("x");
    for (const char* const value : {"&&", "a<b<c", "&<", "&amp;<"}) {
        boost::dynamic_pointer_cast<RAML_ParameterType>(parameter)->value = value;
        EXPECT_EQ(readBack(), nullptr);
        EXPECT_EQ(m_result, RAML_MALFORMED_XML) << value;
    }
}

TEST_F(RamlRoundTripTest, SecondSpecialCharacterThatMeansNothingInTextIsReadBack)
{
    const RAML_MOParameterType::pointer parameter = m_mo->findParameter("x");
    for (const char* const value : {"&>", "<>", ">>", "\"\"", "''", "&'\">"}) {
        boost::dynamic_pointer_cast<RAML_ParameterType>(parameter)->value = value;
        EXPECT_EQ(structureOf(readBack()),
                  std::string("raml(2.1,ns) cmData(actual,all) A:A-1(x=") + value + " l[2 {y=3}])");
    }
}

TEST_F(RamlRoundTripTest, SpecialCharactersElsewhereBreakTheDocument)
{
    const auto list = boost::dynamic_pointer_cast<RAML_ListType>(m_mo->findParameter("l"));
    m_cmData->header.logs.emplace_back();
    RAML_LogType& log = m_cmData->header.logs[0];
    const std::vector<std::string*> texts{
        &m_document->xmlns,
        &m_cmData->id,
        &m_cmData->domain,
        &m_cmData->adaptationVersionMajor,
        &log.dateTime,
        &log.action,
        &log.user,
        &log.text,
        &m_mo->mClassname,
        &m_mo->mDistName,
        &m_mo->mVersion,
        &m_mo->findParameter("x")->name,
        &list->name,
        &boost::dynamic_pointer_cast<RAML_ListParameterType>(list->listElements.at(0))->value,
        &boost::dynamic_pointer_cast<RAML_ItemType>(list->listElements.at(1))->params.at(0).name,
        &boost::dynamic_pointer_cast<RAML_ItemType>(list->listElements.at(1))->params.at(0).value,
    };

    for (std::string* const text : texts) {
        for (const char* const special : {"&", "<"}) {
            const std::string before = std::exchange(*text, special);
            EXPECT_EQ(readBack(), nullptr);
            EXPECT_EQ(m_result, RAML_MALFORMED_XML);
            *text = before;
        }
    }

    EXPECT_NE(readBack(), nullptr);
    EXPECT_EQ(m_result, RAML_OK);
}

TEST_F(RamlRoundTripTest, QuotesInAttributesBreakTheDocument)
{
    m_mo->mDistName = "a\"b";
    EXPECT_EQ(readBack(), nullptr);
    EXPECT_EQ(m_result, RAML_MALFORMED_XML);
}

} // namespace
} // namespace RAML
