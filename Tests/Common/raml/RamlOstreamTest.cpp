// SPDX-License-Identifier: MIT
#include "RamlTest.hpp"

#include "raml/RAML_ostream.hpp"
#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <algorithm>
#include <gmock/gmock.h>
#include <sstream>

namespace RAML {
namespace {

using dorn::test::debugLine;
using testing::ElementsAre;
using testing::IsEmpty;

template <class Value>
std::string written(const Value& value)
{
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

class RamlOstreamTest : public dorn::test::RamlTest {
protected:
    static RAML_ManagedObjectType::pointer object(const std::string& className = "A")
    {
        RAML_ManagedObjectType::pointer mo = RAML_ManagedObjectType::create();
        mo->setClassName(className);
        mo->setDistName("B");
        mo->setVersion("C");
        mo->setOperation(RAML_OP_CREATE);
        return mo;
    }

    static RAML_ListType::pointer list(const std::string& name)
    {
        RAML_ListType::pointer made = RAML_ListType::create();
        made->name = name;
        return made;
    }

    static RAML_ListParameterType::pointer bare(const std::string& value)
    {
        RAML_ListParameterType::pointer made = RAML_ListParameterType::create();
        made->value = value;
        return made;
    }

    static RAML_ItemType::pointer item(const std::vector<RAML_ItemParameterType>& parameters)
    {
        RAML_ItemType::pointer made = RAML_ItemType::create();
        made->params = parameters;
        return made;
    }

    /// A document with one block.
    static RAML_Type::pointer document()
    {
        RAML_Type::pointer made = RAML_Type::create();
        made->version = "2.1E";
        made->xmlns = "ns";
        made->cmDataList.push_back(RAML_CMDataType::create());
        made->cmDataList[0]->type = RAML_PLAN_CANDIDATE;
        made->cmDataList[0]->scope = RAML_SCOPE_ALL;
        return made;
    }
};

TEST_F(RamlOstreamTest, DocumentIsWrittenLineByLine)
{
    const RAML_Type::pointer made = document();
    RAML_CMDataType& cmData = *made->cmDataList[0];
    cmData.id = "i";
    cmData.name = "is not written";
    cmData.domain = "d";
    cmData.adaptationVersionMajor = "m";
    cmData.managedObjects.push_back(object());
    cmData.managedObjects[0]->addMOparams(RAML_ParameterType::create("x", "v"));

    EXPECT_EQ(written(*made),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<raml version=\"2.1E\" xmlns=\"ns\">\n"
              "  <cmData id=\"i\" type=\"plan\" scope=\"all\" domain=\"d\" adaptationVersionMajor=\"m\" >\n"
              "    <header>\n"
              "    </header>\n"
              "\n"
              "    <managedObject class=\"A\" operation=\"create\" distName=\"B\" version=\"C\">\n"
              "      <p name=\"x\">v</p>\n"
              "    </managedObject>\n"
              "\n"
              "  </cmData>\n"
              "\n"
              "</raml>\n");
}

TEST_F(RamlOstreamTest, EmptyDocumentHasItsRoot)
{
    EXPECT_EQ(written(RAML_Type()), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                    "<raml version=\"\" xmlns=\"\">\n"
                                    "</raml>\n");
}

TEST_F(RamlOstreamTest, EmptyPointersAreNoBlocks)
{
    const RAML_Type::pointer made = document();
    const std::string before = written(*made);
    made->cmDataList.insert(made->cmDataList.begin(), nullptr);
    made->cmDataList.push_back(nullptr);
    EXPECT_EQ(written(*made), before);
}

TEST_F(RamlOstreamTest, BlocksFollowEachOther)
{
    const RAML_Type::pointer made = document();
    made->cmDataList.push_back(RAML_CMDataType::create());
    EXPECT_EQ(written(*made), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                              "<raml version=\"2.1E\" xmlns=\"ns\">\n" +
                                  written(*made->cmDataList[0]) + "\n" + written(*made->cmDataList[1]) +
                                  "\n"
                                  "</raml>\n");
}

TEST_F(RamlOstreamTest, BlockWithoutPlanAndScope)
{
    EXPECT_EQ(written(RAML_CMDataType()),
              "  <cmData id=\"\" type=\"none\" scope=\"\" domain=\"\" adaptationVersionMajor=\"\" >\n"
              "    <header>\n"
              "    </header>\n"
              "\n"
              "  </cmData>\n");
}

TEST_F(RamlOstreamTest, PlansAndScopesAreWritten)
{
    RAML_CMDataType cmData;
    const std::vector<std::string> plans{"actual", "plan", "defaults", "none", ""};
    const std::vector<std::string> scopes{"all", "hierarchy", "changes", "selection", "", ""};
    for (std::size_t plan = 0; plan < plans.size(); ++plan) {
        for (std::size_t scope = 0; scope < scopes.size(); ++scope) {
            cmData.type = static_cast<RAML_PlanType>(plan);
            cmData.scope = static_cast<RAML_ScopeType>(scope);
            EXPECT_THAT(written(cmData),
                        testing::HasSubstr(" type=\"" + plans[plan] + "\" scope=\"" + scopes[scope] + "\" "));
        }
    }
}

TEST_F(RamlOstreamTest, EmptyPointersAreNoObjects)
{
    RAML_CMDataType cmData;
    cmData.managedObjects = {object("A1"), object("A2")};
    const std::string before = written(cmData);
    cmData.managedObjects = {nullptr, cmData.managedObjects[0], nullptr, cmData.managedObjects[1], nullptr};
    EXPECT_EQ(written(cmData), before);
    EXPECT_THAT(before, testing::EndsWith("    </header>\n\n" + written(cmData.managedObjects[1]) + "\n" +
                                          written(cmData.managedObjects[3]) + "\n  </cmData>\n"));
}

TEST_F(RamlOstreamTest, HeaderHasItsLogsOnLinesOfTheirOwn)
{
    RAML_HeaderType header;
    EXPECT_EQ(written(header), "    <header>\n    </header>\n");

    RAML_LogType log;
    log.dateTime = "t";
    log.action = "a";
    log.user = "u";
    log.text = "x<y";
    log.appInfo = log.appVersion = log.adaptationVersionMinor = "is not written";
    header.logs = {log, RAML_LogType()};

    EXPECT_EQ(written(log), "      <log dateTime=\"t\" action=\"a\" user=\"u\" >x<y</log>");
    EXPECT_EQ(written(header), "    <header>\n"
                               "      <log dateTime=\"t\" action=\"a\" user=\"u\" >x<y</log>\n"
                               "      <log dateTime=\"\" action=\"\" user=\"\" ></log>\n"
                               "    </header>\n");
}

TEST_F(RamlOstreamTest, ObjectIsWrittenWithItsOperation)
{
    EXPECT_EQ(written(object()), "    <managedObject class=\"A\" operation=\"create\" distName=\"B\" version=\"C\">\n"
                                 "    </managedObject>\n");
}

TEST_F(RamlOstreamTest, ObjectWithoutOperationHasTwoBlanks)
{
    const RAML_ManagedObjectType::pointer mo = object();
    mo->setOperation(RAML_OP_NONE);
    EXPECT_EQ(written(mo), "    <managedObject class=\"A\"  distName=\"B\" version=\"C\">\n"
                           "    </managedObject>\n");
}

TEST_F(RamlOstreamTest, OperationsWithoutTextAreWrittenEmpty)
{
    const std::vector<std::string> texts{"query", "create", "delete", "update", "action", "", "", "auto"};
    const RAML_ManagedObjectType::pointer mo = object();
    for (std::size_t value = 0; value < texts.size(); ++value) {
        mo->setOperation(static_cast<RAML_MOOperationType>(value));
        EXPECT_THAT(written(mo), testing::StartsWith("    <managedObject class=\"A\" operation=\"" + texts[value] +
                                                     "\" distName=\"B\""));
    }
    mo->setOperation(RAML_OP_INVALID);
    EXPECT_THAT(written(mo), testing::HasSubstr(" operation=\"\" distName"));
}

TEST_F(RamlOstreamTest, OtherFieldsOfAnObjectAreNotWritten)
{
    const RAML_ManagedObjectType::pointer mo = object();
    const std::string before = written(mo);
    mo->mId = mo->mName = mo->mVendor = mo->mTimeStamp = mo->mOperationName = mo->mSequenceNumber = "x";
    mo->mDefaults = {"x", "x", "x"};
    mo->mLevelScope = RAML_LSCOPE_WHOLE_SUBTREE;
    mo->mFuncScope = RAML_FSCOPE_FM;
    mo->mFilter = RAML_FILTER_CM;
    EXPECT_EQ(written(mo), before);
}

TEST_F(RamlOstreamTest, WritingAnObjectIsLogged)
{
    const RAML_ManagedObjectType::pointer mo = object();
    m_log.clear();
    written(mo);
    mo->setOperation(RAML_OP_SUBSCRIBE);
    written(mo);
    EXPECT_THAT(m_log.texts(), ElementsAre(debugLine("Serializing RAML::RAML_ManagedObjectType A create B"),
                                           debugLine("Serializing RAML::RAML_ManagedObjectType A  B")));
}

TEST_F(RamlOstreamTest, ParametersAreOnLinesOfTheirOwn)
{
    const RAML_ManagedObjectType::pointer mo = object();
    mo->addMOparams(RAML_ParameterType::create("x", "1"));
    mo->addMOparams(list("l"));
    mo->addMOparams(boost::make_shared<RAML_MOParameterType>(RAML_ITEM, "nothing"));
    EXPECT_EQ(written(mo), "    <managedObject class=\"A\" operation=\"create\" distName=\"B\" version=\"C\">\n"
                           "      <p name=\"x\">1</p>\n"
                           "      <list name=\"l\">\n"
                           "      </list>\n"
                           "\n"
                           "    </managedObject>\n");
}

TEST_F(RamlOstreamTest, ValueOfASimpleParameterIsEscaped)
{
    EXPECT_EQ(written(*RAML_ParameterType::create("a&b", "<&>")), "      <p name=\"a&b\"><&amp;></p>");
}

TEST_F(RamlOstreamTest, ParameterOfAnotherClassThanItsTypeIsNotWritten)
{
    const RAML_ParameterType::pointer simple = RAML_ParameterType::create("x", "1");
    for (const RAML_ParamType type : {RAML_LIST, RAML_LIST_P, RAML_ITEM, static_cast<RAML_ParamType>(9)}) {
        simple->type = type;
        EXPECT_EQ(written(*simple), "");
    }
    const RAML_ListType::pointer aList = list("l");
    for (const RAML_ParamType type : {RAML_P, RAML_LIST_P, RAML_ITEM, static_cast<RAML_ParamType>(9)}) {
        aList->type = type;
        EXPECT_EQ(written(*aList), "");
    }
    EXPECT_EQ(written(RAML_MOParameterType(RAML_P, "x")), "");
    EXPECT_EQ(written(RAML_MOParameterType(RAML_LIST, "x")), "");
}

TEST_F(RamlOstreamTest, ListIsWrittenElementByElement)
{
    const RAML_ListType::pointer made = list("l");
    made->add(bare("1&2"));
    made->add(item({{"a", "<3>"}, {"b", ""}, {"", "4"}}));
    made->add(bare(""));
    EXPECT_EQ(written(*made), "      <list name=\"l\">\n"
                              "        <p>1&2</p>\n"
                              "        <item>\n"
                              "          <p name=\"a\"><3></p>\n"
                              "          <p name=\"b\"></p>\n"
                              "          <p name=\"\">4</p>\n"
                              "        </item>\n"
                              "        <p></p>\n"
                              "      </list>");
}

TEST_F(RamlOstreamTest, OperationOfAnItemIsNotWritten)
{
    const RAML_ListType::pointer made = list("l");
    const RAML_ItemType::pointer anItem = item({});
    anItem->setListItemOperation(RAML_LIST_ITEM_OP_CREATE);
    made->add(anItem);
    EXPECT_EQ(written(*made), "      <list name=\"l\">\n        <item>\n        </item>\n      </list>");
}

TEST_F(RamlOstreamTest, ElementOfAnotherClassThanItsTypeIsNotWritten)
{
    const RAML_ListType::pointer made = list("l");
    const RAML_ListParameterType::pointer aBare = bare("1");
    const RAML_ItemType::pointer anItem = item({});
    made->add(aBare);
    made->add(anItem);
    made->add(RAML_ListElementType::pointer());
    aBare->type = RAML_ITEM;
    anItem->type = RAML_LIST_P;
    EXPECT_EQ(written(*made), "      <list name=\"l\">\n      </list>");
    aBare->type = RAML_P;
    anItem->type = RAML_LIST;
    EXPECT_EQ(written(*made), "      <list name=\"l\">\n      </list>");
}

TEST_F(RamlOstreamTest, TextsOfAListAreLogged)
{
    const RAML_ListType::pointer made = list("l");
    made->add(bare("1"));
    made->add(bare(""));
    made->add(item({{"a", "2"}, {"b", ""}, {"", "3"}, {"", ""}}));
    m_log.clear();
    written(*made);
    EXPECT_THAT(m_log.texts(),
                ElementsAre(debugLine("ListName = l"), debugLine("value = 1"), debugLine("name=a; value=2")));
}

TEST_F(RamlOstreamTest, ListWithoutNameIsNotLogged)
{
    m_log.clear();
    EXPECT_EQ(written(*list("")), "      <list name=\"\">\n      </list>");
    EXPECT_THAT(m_log.texts(), testing::Not(testing::Contains(testing::HasSubstr("ListName"))));
}

TEST_F(RamlOstreamTest, OneCharacterAtMostIsEscaped)
{
    const std::vector<std::pair<std::string, std::string>> texts{
        {"", ""},
        {"plain text", "plain text"},
        {"a&b&c", "a&amp;b&c"},
        {"<&>", "<&amp;>"},
        {"a<b<c", "a&lt;b<c"},
        {"\"'><", "\"'>&lt;"},
        {"x>y", "x&gt;y"},
        {"'\">>", "'\"&gt;>"},
        {"'\"\"", "'&quot;\""},
        {"it's", "it&#39;s"},
        {"''", "&#39;'"},
        {"&amp;", "&amp;amp;"},
        {"\xC3\xA4&", "\xC3\xA4&amp;"},
    };

    for (const auto& [text, escaped] : texts) {
        EXPECT_EQ(handleXmlCharacters(text), escaped);
    }
    EXPECT_EQ(handleXmlCharacters(std::string("a\0&", 3)), std::string("a\0&amp;", 7));
}

/// A stream's end that remembers what had come at each flush.
class FlushRecorder : public std::stringbuf {
public:
    std::vector<std::string> linesAtFlush;

protected:
    int sync() override
    {
        const std::string all = str();
        linesAtFlush.push_back(all.substr(m_flushed));
        m_flushed = all.size();
        return 0;
    }

private:
    std::size_t m_flushed = 0;
};

TEST_F(RamlOstreamTest, EveryLineEndFlushes)
{
    const RAML_Type::pointer made = document();
    const RAML_ManagedObjectType::pointer mo = object();
    const RAML_ListType::pointer aList = list("l");
    aList->add(bare("1"));
    aList->add(item({{"a", "2"}}));
    mo->addMOparams(RAML_ParameterType::create("x", "1"));
    mo->addMOparams(aList);
    made->cmDataList[0]->managedObjects.push_back(mo);
    made->cmDataList[0]->header.logs.emplace_back();
    FlushRecorder recorder;
    std::ostream stream(&recorder);

    stream << *made;

    const std::string all = written(*made);
    EXPECT_EQ(recorder.linesAtFlush.size(), static_cast<std::size_t>(std::count(all.begin(), all.end(), '\n')));
    EXPECT_THAT(recorder.linesAtFlush, testing::Each(testing::MatchesRegex("[^\n]*\n")));
}

TEST_F(RamlOstreamTest, OperatorsReturnTheirStream)
{
    std::ostringstream stream;
    const RAML_Type::pointer made = document();
    EXPECT_EQ(&(stream << *made), &stream);
    EXPECT_EQ(&(stream << *made->cmDataList[0]), &stream);
    EXPECT_EQ(&(stream << RAML_HeaderType()), &stream);
    EXPECT_EQ(&(stream << RAML_LogType()), &stream);
    EXPECT_EQ(&(stream << object()), &stream);
    EXPECT_EQ(&(stream << *RAML_ParameterType::create()), &stream);
    EXPECT_EQ(&(stream << *list("l")), &stream);
    EXPECT_EQ(&(stream << RAML_MOParameterType(RAML_ITEM, "x")), &stream);
}

TEST_F(RamlOstreamTest, BadStreamIsLeftToTheCaller)
{
    std::ostringstream stream;
    stream.setstate(std::ios::failbit);
    stream << *document();
    EXPECT_EQ(stream.str(), "");
    EXPECT_TRUE(stream.fail());
}

} // namespace
} // namespace RAML
