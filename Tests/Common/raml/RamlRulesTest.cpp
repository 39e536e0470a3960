// SPDX-License-Identifier: MIT
// Every rule of every element: what comes of a document, which errors are logged in which order, what is in the model.
#include "ModelText.hpp"
#include "RamlTest.hpp"
#include "RamlTexts.hpp"

#include "raml/RamlParser.hpp"

#include <ostream>

namespace RAML {
namespace {

using dorn::test::errorLine;
using dorn::test::errorsOf;
using dorn::test::inBlock;
using dorn::test::inItem;
using dorn::test::inList;
using dorn::test::inObject;
using dorn::test::inRaml;
using dorn::test::object;

struct Rule {
    std::string name;
    std::string text;
    RAML_ParsingResult result;
    std::vector<std::string> errors;
    std::string model;

    friend std::ostream& operator<<(std::ostream& stream, const Rule& rule) { return stream << rule.text; }
};

class RamlRulesTest : public dorn::test::RamlTest, public ::testing::WithParamInterface<Rule> {};

TEST_P(RamlRulesTest, DocumentIsReadByTheRule)
{
    const Rule& rule = GetParam();
    std::vector<std::string> errors;
    for (const std::string& error : rule.errors) {
        errors.push_back(errorLine(error));
    }
    RamlParser parser;
    RAML_ParsingResult result = RAML_RESOURCE_LIMITATION;

    const RAML_Type::pointer document = parser.parseRaml(rule.text, result, false);

    EXPECT_EQ(result, rule.result);
    EXPECT_EQ(errorsOf(m_log), errors);
    EXPECT_EQ(dorn::test::structureOf(document), rule.model);
}

std::string nameOf(const ::testing::TestParamInfo<Rule>& info)
{
    return info.param.name;
}

const std::string violation = "Validation constraint violation: ";
const std::string noRaml = violation + "missing required element [raml]";
const std::string noCmData = violation + "missing required element [cmData]";
const std::string noMo = violation + "missing required element [managedObject]";
const std::string corrupt =
    "Could not load XML file. XML possibly corrupt. Please check the raml document and try loading again!";

std::string unexpected(const std::string& element, const std::string& tag)
{
    return violation + "tag name mismatch in element [" + element + "]. Detected unexpected tag '" + tag + "'.";
}

std::string unexpectedInMo(const std::string& tag)
{
    return violation + "tag name mismatch in element [" + tag + "]. Detected unexpected tag [" + tag + "]";
}

std::string unexpectedIn(const std::string& element, const std::string& tag)
{
    return violation + "tag name mismatch in element [" + element + "]. Detected unexpected tag [" + tag + "]";
}

std::string wrongOperation(const std::string& operation)
{
    return "MO of class 'A' with distName 'A-1' has incorrect operation type = '" + operation + "'";
}

const std::string raml = "raml(2.1,ns)";
const std::string block = raml + " cmData(actual,all)";

const std::string noVersion = violation + "missing required attribute 'version' in element [ raml ].";
const std::string noXmlns = violation + "missing required attribute 'xmlns' in element [raml].";
const std::string wrongVersion = violation + "RAML version mismatch.";
const std::string good = "<cmData type='actual' scope='all'>" + object("A-1") + "</cmData>";

INSTANTIATE_TEST_SUITE_P(
    Document, RamlRulesTest,
    ::testing::Values(
        Rule{"EmptyText", "", RAML_MALFORMED_XML, {corrupt}, "none"},
        Rule{"Blanks", " \n ", RAML_MALFORMED_XML, {corrupt}, "none"},
        Rule{"NotWellFormed", "<raml>", RAML_MALFORMED_XML, {corrupt}, "none"},
        Rule{"TwoDocuments", inObject("") + inObject(""), RAML_MALFORMED_XML, {corrupt}, "none"},
        Rule{"UnknownEntity", inObject("<p name='x'>&y;</p>"), RAML_MALFORMED_XML, {corrupt}, "none"},
        Rule{"OtherElement", "<Raml/>", RAML_SYNTAX_ERROR, {noRaml}, "none"},
        Rule{"RamlInside", "<doc>" + inObject("") + "</doc>", RAML_SYNTAX_ERROR, {noRaml}, "none"},
        Rule{"Good", inObject(""), RAML_OK, {}, block + " A:A-1()"},
        Rule{"BesideComments",
             "<?xml version='1.0'?><!-- a --><?b c?>" + inObject("") + "<!-- d -->",
             RAML_OK,
             {},
             block + " A:A-1()"},
        Rule{"WithDoctype", "<!DOCTYPE raml SYSTEM 'raml21.dtd'>" + inObject(""), RAML_OK, {}, block + " A:A-1()"},
        Rule{"NoVersion", "<raml xmlns='ns'>" + good + "</raml>", RAML_SYNTAX_ERROR, {noVersion}, "raml(,)"},
        Rule{"NoXmlns", "<raml version='2.1'>" + good + "</raml>", RAML_SYNTAX_ERROR, {noXmlns}, "raml(,)"},
        Rule{"NeitherVersionNorXmlns", "<raml>" + good + "</raml>", RAML_SYNTAX_ERROR, {noVersion, noXmlns}, "raml(,)"},
        Rule{"Version20",
             "<raml version='2.0' xmlns='ns'>" + good + "</raml>",
             RAML_SYNTAX_ERROR,
             {wrongVersion},
             "raml(,)"},
        Rule{"VersionInSmallLetters",
             "<raml version='2.1e' xmlns='ns'>" + good + "</raml>",
             RAML_SYNTAX_ERROR,
             {wrongVersion},
             "raml(,)"},
        Rule{"EmptyVersion",
             "<raml version='' xmlns='ns'>" + good + "</raml>",
             RAML_SYNTAX_ERROR,
             {wrongVersion},
             "raml(,)"},
        Rule{"VersionWithBlank",
             "<raml version='2.1 ' xmlns='ns'>" + good + "</raml>",
             RAML_SYNTAX_ERROR,
             {wrongVersion},
             "raml(,)"},
        Rule{"WrongVersionAndNoXmlns",
             "<raml version='2'>" + good + "</raml>",
             RAML_SYNTAX_ERROR,
             {wrongVersion, noXmlns},
             "raml(,)"},
        Rule{"Version21E",
             "<raml version='2.1E' xmlns='ns'>" + good + "</raml>",
             RAML_OK,
             {},
             "raml(2.1E,ns) cmData(actual,all) A:A-1()"},
        Rule{"EmptyXmlns",
             "<raml version='2.1' xmlns=''>" + good + "</raml>",
             RAML_OK,
             {},
             "raml(2.1,) cmData(actual,all) A:A-1()"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Raml, RamlRulesTest,
    ::testing::Values(
        Rule{"NoBlock", inRaml(""), RAML_SYNTAX_ERROR, {noCmData}, raml},
        Rule{
            "OtherElementsOnly", inRaml("<cmdata/><header/>text<managedObject/>"), RAML_SYNTAX_ERROR, {noCmData}, raml},
        Rule{"OtherElementsBesideABlock",
             inRaml("<other/>text" + good + "<!-- c --><other><cmData/></other>"),
             RAML_OK,
             {},
             block + " A:A-1()"},
        Rule{"TwoBlocks",
             inRaml(good + "<cmData type='plan'>" + object("A-2") + "</cmData>"),
             RAML_OK,
             {},
             block + " A:A-1() cmData(plan,changes) A:A-2()"},
        Rule{"BadBlockBeforeAGoodOne",
             inRaml("<cmData/>" + good),
             RAML_SYNTAX_ERROR,
             {violation + "missing required attribute 'type' in element [cmData]."},
             raml + " cmData(none,) cmData(actual,all)"},
        Rule{"EmptyBlockBeforeABadOne",
             inRaml("<cmData type='plan'/><cmData type='x'/>"),
             RAML_SYNTAX_ERROR,
             {noMo, violation + "Missing or invalid value for attribute 'type' in element [cmData]"},
             raml + " cmData(plan,changes) cmData(none,)"},
        Rule{"GoodBlockBeforeABadOne",
             inRaml(good + "<cmData type='actual' scope='all'/>"),
             RAML_SYNTAX_ERROR,
             {noMo},
             block + " A:A-1() cmData(actual,all)"}),
    nameOf);

const std::string noType = violation + "missing required attribute 'type' in element [cmData].";
const std::string wrongType = violation + "Missing or invalid value for attribute 'type' in element [cmData]";

Rule typeRule(const std::string& name, const std::string& type, RAML_ParsingResult result, const std::string& model)
{
    return {name, inRaml("<cmData type='" + type + "'>" + object("A-1") + "</cmData>"), result,
            result == RAML_OK ? std::vector<std::string>{} : std::vector<std::string>{wrongType}, raml + model};
}

Rule scopeRule(const std::string& name, const std::string& attribute, const std::string& scope)
{
    return {name,
            inRaml("<cmData type='actual' " + attribute + ">" + object("A-1") + "</cmData>"),
            RAML_OK,
            {},
            raml + " cmData(actual," + scope + ") A:A-1()"};
}

INSTANTIATE_TEST_SUITE_P(
    BlockAttributes, RamlRulesTest,
    ::testing::Values(
        Rule{"NoType",
             inRaml("<cmData scope='all' id='i'>" + object("A-1") + "<x/></cmData>"),
             RAML_SYNTAX_ERROR,
             {noType},
             raml + " cmData(none,)"},
        typeRule("TypeActual", "actual", RAML_OK, " cmData(actual,changes) A:A-1()"),
        typeRule("TypePlan", "plan", RAML_OK, " cmData(plan,changes) A:A-1()"),
        typeRule("TypeDefaults", "defaults", RAML_OK, " cmData(defaults,changes) A:A-1()"),
        typeRule("TypeCandidate", "candidate", RAML_SYNTAX_ERROR, " cmData(none,)"),
        typeRule("TypeNone", "none", RAML_SYNTAX_ERROR, " cmData(none,)"),
        typeRule("TypeEmpty", "", RAML_SYNTAX_ERROR, " cmData(none,)"),
        typeRule("TypeInCapitals", "ACTUAL", RAML_SYNTAX_ERROR, " cmData(none,)"), scopeRule("NoScope", "", "changes"),
        scopeRule("ScopeAll", "scope='all'", "all"), scopeRule("ScopeHierarchy", "scope='hierarchy'", "hierarchy"),
        scopeRule("ScopeChanges", "scope='changes'", "changes"),
        scopeRule("ScopeSelection", "scope='selection'", "selection"), scopeRule("ScopeEmpty", "scope=''", "changes"),
        scopeRule("ScopeInCapitals", "scope='ALL'", "changes"), scopeRule("ScopeNone", "scope='none'", "changes")),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Block, RamlRulesTest,
    ::testing::Values(
        Rule{"NoObject", inBlock(""), RAML_SYNTAX_ERROR, {noMo}, block},
        Rule{"HeaderOnly", inBlock("<header/>text"), RAML_SYNTAX_ERROR, {noMo}, block},
        Rule{"ObjectsInTheirOrder",
             inBlock(object("A-2") + "text<!-- c -->" + object("A-1") + object("A-2")),
             RAML_OK,
             {},
             block + " A:A-2() A:A-1() A:A-2()"},
        Rule{"UnknownTagOnly", inBlock("<x/>"), RAML_SYNTAX_ERROR, {unexpected("cmData", "x"), noMo}, block},
        Rule{"UnknownTagBehindAnObject",
             inBlock(object("A-1") + "<x/>" + object("A-2")),
             RAML_SYNTAX_ERROR,
             {unexpected("cmData", "x")},
             block + " A:A-1()"},
        Rule{"UnknownTagBeforeAnObject",
             inBlock("<x/>" + object("A-1", "<p name='n'>1</p>")),
             RAML_SYNTAX_ERROR,
             {unexpected("cmData", "x"), noMo},
             block},
        Rule{"EveryUnknownTag",
             inBlock("<p/><list/><item/><log/><defaults/><extension/><cmData/>" + object("A-1")),
             RAML_SYNTAX_ERROR,
             {unexpected("cmData", "p"), unexpected("cmData", "list"), unexpected("cmData", "item"),
              unexpected("cmData", "log"), unexpected("cmData", "defaults"), unexpected("cmData", "extension"),
              unexpected("cmData", "cmData"), noMo},
             block},
        Rule{"BadObjectBeforeAGoodOne",
             inBlock(object("A-1", "<q/>") + object("A-2")),
             RAML_SYNTAX_ERROR,
             {unexpectedInMo("q"), noMo},
             block},
        Rule{"ObjectsBehindABadOneAreRead",
             inBlock(object("A-1") + object("A-2", "<q/>") + object("A-3", "<r/>") + object("A-4")),
             RAML_SYNTAX_ERROR,
             {unexpectedInMo("q"), unexpectedInMo("r")},
             block + " A:A-1()"}),
    nameOf);

const std::string log1 = "<log dateTime='t' action='a'/>";
const std::string badLog = violation + "missing required attribute 'dateTime' and/or 'action' in element [log].";

INSTANTIATE_TEST_SUITE_P(
    Header, RamlRulesTest,
    ::testing::Values(
        Rule{"Empty", inBlock("<header/>" + object("A-1")), RAML_OK, {}, block + " A:A-1()"},
        Rule{"AttributesAreNotRead", inBlock("<header x='1'/>" + object("A-1")), RAML_OK, {}, block + " A:A-1()"},
        Rule{"WholeLog",
             inBlock("<header><log dateTime='t' action='a' user='u' appInfo='i' appVersion='v'> x </log></header>" +
                     object("A-1")),
             RAML_OK,
             {},
             block + " log(t,a,u,i, x ) A:A-1()"},
        Rule{"ShortLog",
             inBlock("<header>text" + log1 + "</header>" + object("A-1")),
             RAML_OK,
             {},
             block + " log(t,a,,,) A:A-1()"},
        Rule{"EmptyAttributes",
             inBlock("<header><log dateTime='' action=''/></header>" + object("A-1")),
             RAML_OK,
             {},
             block + " log(,,,,) A:A-1()"},
        Rule{"SeveralHeaders",
             inBlock("<header>" + log1 + "</header>" + object("A-1") + "<header>" + log1 + log1 + "</header>"),
             RAML_OK,
             {},
             block + " log(t,a,,,) log(t,a,,,) log(t,a,,,) A:A-1()"},
        Rule{"NoDateTime",
             inBlock("<header>" + log1 + "<log action='a'/><x/>" + log1 + "</header>" + object("A-1")),
             RAML_SYNTAX_ERROR,
             {badLog, noMo},
             block + " log(t,a,,,)"},
        Rule{"NoAction",
             inBlock("<header><log dateTime='t'/></header>" + object("A-1")),
             RAML_SYNTAX_ERROR,
             {badLog, noMo},
             block},
        Rule{"NeitherOfThem",
             inBlock("<header><log/></header>" + object("A-1")),
             RAML_SYNTAX_ERROR,
             {badLog, noMo},
             block},
        Rule{"UnknownTag",
             inBlock("<header><x/>" + log1 + "<y/></header>" + object("A-1") + "<z/>"),
             RAML_SYNTAX_ERROR,
             {unexpected("header", "x"), unexpected("header", "y"), noMo},
             block + " log(t,a,,,)"},
        Rule{"UnknownTagBeforeABadLog",
             inBlock("<header><x/><log/><y/></header>" + object("A-1")),
             RAML_SYNTAX_ERROR,
             {unexpected("header", "x"), badLog, noMo},
             block},
        Rule{"BadHeaderBehindAnObject",
             inBlock(object("A-1") + "<header><log/></header>" + object("A-2") + "<x/>"),
             RAML_SYNTAX_ERROR,
             {badLog},
             block + " A:A-1()"},
        Rule{"GoodHeaderBehindABadObject",
             inBlock(object("A-1") + object("A-2", "<q/>") + "<header>" + log1 + "</header>" + object("A-3") + "<x/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedInMo("q")},
             block + " log(t,a,,,) A:A-1()"}),
    nameOf);

const std::string noClass = violation + "missing required attribute 'class' in element [managedObject].";
const std::string noDistName = violation + "missing required attribute 'distName' in element [managedObject].";

Rule operationRule(const std::string& name, const std::string& operation, bool isKnown)
{
    return {name,
            inBlock("<managedObject class='A' distName='A-1' operation='" + operation +
                    "'><p name='x'>1</p><q/></managedObject>"),
            RAML_SYNTAX_ERROR,
            isKnown ? std::vector{unexpectedInMo("q"), noMo} : std::vector{wrongOperation(operation), noMo}, block};
}

INSTANTIATE_TEST_SUITE_P(
    ObjectAttributes, RamlRulesTest,
    ::testing::Values(
        Rule{"NoClass",
             inBlock("<managedObject distName='A-1' operation='create'><q/></managedObject>"),
             RAML_SYNTAX_ERROR,
             {noClass, noMo},
             block},
        Rule{"NoDistName",
             inBlock("<managedObject class='A' operation='create'><q/></managedObject>"),
             RAML_SYNTAX_ERROR,
             {noDistName, noMo},
             block},
        Rule{"NothingAtAll", inBlock("<managedObject/>"), RAML_SYNTAX_ERROR, {noClass, noMo}, block},
        Rule{"EmptyNames",
             inBlock("<managedObject class='' distName='' operation='create'/>"),
             RAML_OK,
             {},
             block + " :()"},
        Rule{"NoOperation",
             inBlock("<managedObject class='A' distName='A-1'><q/></managedObject>"),
             RAML_SYNTAX_ERROR,
             {wrongOperation(""), noMo},
             block},
        Rule{"NoOperationBehindAGoodObject",
             inBlock(object("A-0") + "<managedObject class='A' distName='A-1'/>"),
             RAML_SYNTAX_ERROR,
             {wrongOperation("")},
             block + " A:A-0()"},
        operationRule("OperationEmpty", "", false), operationRule("OperationModify", "modify", false),
        operationRule("OperationInCapitals", "Create", false), operationRule("OperationQuery", "query", true),
        operationRule("OperationCreate", "create", true), operationRule("OperationDelete", "delete", true),
        operationRule("OperationUpdate", "update", true), operationRule("OperationAction", "action", true),
        operationRule("OperationSubscribe", "subscribe", true),
        operationRule("OperationUnsubscribe", "unsubscribe", true), operationRule("OperationAuto", "auto", true)),
    nameOf);

const std::string noName = violation + "missing required attribute 'name' in element [p]. Detected in class [A]";

INSTANTIATE_TEST_SUITE_P(
    Object, RamlRulesTest,
    ::testing::Values(
        Rule{"ParametersInTheirOrder",
             inObject("<p name='y'>1</p>text<list name='l'><p>2</p></list><p name='x'>3</p><p name='y'>4</p>"),
             RAML_OK,
             {},
             block + " A:A-1(y=1 l[2] x=3 y=4)"},
        Rule{"ParameterWithoutValue", inObject("<p name='x'/>"), RAML_OK, {}, block + " A:A-1(x=)"},
        Rule{"ValueIsNotTrimmed", inObject("<p name=' x '> 1\n</p>"), RAML_OK, {}, block + " A:A-1( x = 1\n)"},
        Rule{"ValueInPieces",
             inObject("<p name='x'>1&lt;<!-- c --><![CDATA[<2>]]></p>"),
             RAML_OK,
             {},
             block + " A:A-1(x=1<<2>)"},
        Rule{"ElementsInAParameterAreNotRead", inObject("<p name='x'>1<q/>2</p>"), RAML_OK, {}, block + " A:A-1(x=12)"},
        Rule{"ParameterWithoutName", inObject("<p>1</p><q/>"), RAML_SYNTAX_ERROR, {noName, noMo}, block},
        Rule{"ParameterWithEmptyName", inObject("<p name=''>1</p><q/>"), RAML_SYNTAX_ERROR, {noName, noMo}, block},
        Rule{"ParameterWithoutNameBehindAnUnknownTag",
             inObject("<q/><p/><r/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedInMo("q"), noName, noMo},
             block},
        Rule{"UnknownTags",
             inObject("<q/><p name='x'>1</p><r/><item/><managedObject/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedInMo("q"), unexpectedInMo("r"), unexpectedInMo("item"), unexpectedInMo("managedObject"), noMo},
             block},
        Rule{"OptionalTagsAreSkipped",
             inObject("<defaults><q/><p/></defaults><p name='x'>1</p><extension name='y'><managedObject/></extension>"),
             RAML_OK,
             {},
             block + " A:A-1(x=1)"},
        Rule{"OptionalTagsInCapitals",
             inObject("<Defaults/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedInMo("Defaults"), noMo},
             block}),
    nameOf);

const std::string noListName = violation + "missing required attribute 'name' in element [list]";

std::string prohibited(const std::string& name)
{
    return violation + "prohibited attribute [" + name + "] present in element [p]";
}

INSTANTIATE_TEST_SUITE_P(
    List, RamlRulesTest,
    ::testing::Values(
        Rule{"Empty", inList(""), RAML_OK, {}, block + " A:A-1(l[])"},
        Rule{"ElementsInTheirOrder",
             inList("<p>2</p>text<item><p name='a'>3</p></item><p> 1 </p><p/>"),
             RAML_OK,
             {},
             block + " A:A-1(l[2 {a=3}  1  ])"},
        Rule{"NoName", inObject("<list><q/></list><q/>"), RAML_SYNTAX_ERROR, {noListName, noMo}, block},
        Rule{"EmptyName", inObject("<list name=''><p>1</p></list>"), RAML_OK, {}, block + " A:A-1([1])"},
        Rule{"NamedValue", inList("<p>1</p><p name='x'>2</p><q/>"), RAML_SYNTAX_ERROR, {prohibited("x"), noMo}, block},
        Rule{"ValueWithEmptyName", inList("<p name=''>1</p>"), RAML_OK, {}, block + " A:A-1(l[1])"},
        Rule{"UnknownTag", inList("<p>1</p><q/><r/>"), RAML_SYNTAX_ERROR, {unexpectedIn("list", "q"), noMo}, block},
        Rule{"ListInAList", inList("<list name='m'/>"), RAML_SYNTAX_ERROR, {unexpectedIn("list", "list"), noMo}, block},
        Rule{"BadListEndsTheObject",
             inObject("<list name='l'><q/></list><r/><p/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedIn("list", "q"), noMo},
             block},
        Rule{"ListBehindAnErrorIsRead",
             inObject("<q/><list name='l'><p>1</p><r/></list><s/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedInMo("q"), unexpectedIn("list", "r"), noMo},
             block},
        Rule{"ListBehindAnErrorEndsTheObject",
             inObject("<q/><list name='l'><p>1</p></list><s/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedInMo("q"), noMo},
             block},
        Rule{"ListBehindAnErrorEndsWithItsFirstItem",
             inObject("<q/><list name='l'><p>1</p><item/><item><r/></item></list><s/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedInMo("q"), noMo},
             block}),
    nameOf);

// No line about a block without objects follows these errors: each has to give the result code by itself.
Rule behindAGoodObject(const std::string& name, const std::string& objectText, const std::string& error)
{
    return {name, inBlock(object("A-0") + objectText + object("A-2")), RAML_SYNTAX_ERROR, {error}, block + " A:A-0()"};
}

INSTANTIATE_TEST_SUITE_P(
    BehindAGoodObject, RamlRulesTest,
    ::testing::Values(
        behindAGoodObject("NoClass", "<managedObject distName='A-1' operation='create'/>", noClass),
        behindAGoodObject("NoDistName", "<managedObject class='A' operation='create'/>", noDistName),
        behindAGoodObject("WrongOperation", "<managedObject class='A' distName='A-1' operation='modify'/>",
                          wrongOperation("modify")),
        behindAGoodObject("UnknownTag", object("A-1", "<q/>"), unexpectedInMo("q")),
        behindAGoodObject("ParameterWithoutName", object("A-1", "<p>1</p>"), noName),
        behindAGoodObject("ParameterWithEmptyName", object("A-1", "<p name=''>1</p>"), noName),
        behindAGoodObject("ListWithoutName", object("A-1", "<list/>"), noListName),
        behindAGoodObject("NamedValueInAList", object("A-1", "<list name='l'><p name='x'>1</p></list>"),
                          prohibited("x")),
        behindAGoodObject("UnknownTagInAList", object("A-1", "<list name='l'><q/></list>"), unexpectedIn("list", "q")),
        behindAGoodObject("UnknownTagInAnItem", object("A-1", "<list name='l'><item><q/></item></list>"),
                          unexpectedIn("item", "q")),
        behindAGoodObject("UnknownTagInAHeader", "<header><x/></header>", unexpected("header", "x")),
        behindAGoodObject("LogWithoutAction", "<header><log dateTime='t'/></header>", badLog),
        behindAGoodObject("UnknownTagInTheBlock", "<x/>", unexpected("cmData", "x"))),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Item, RamlRulesTest,
    ::testing::Values(
        Rule{"Empty", inItem(""), RAML_OK, {}, block + " A:A-1(l[{}])"},
        Rule{"ParametersInTheirOrder",
             inItem("<p name='b'>1</p>text<p name='a'> 2 </p><p name='b'/>"),
             RAML_OK,
             {},
             block + " A:A-1(l[{b=1 a= 2  b=}])"},
        Rule{"ParameterWithoutName", inItem("<p>1</p><p name=''>2</p>"), RAML_OK, {}, block + " A:A-1(l[{=1 =2}])"},
        Rule{"Operations",
             inList(
                 "<item operation='create'/><item operation='delete'/><item operation='update'/><item operation=''/>"),
             RAML_OK,
             {},
             block + " A:A-1(l[create{} delete{} ?{} {}])"},
        Rule{"UnknownTag",
             inItem("<p name='a'>1</p><q/><r/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedIn("item", "q"), noMo},
             block},
        Rule{
            "ListInAnItem", inItem("<list name='m'/>"), RAML_SYNTAX_ERROR, {unexpectedIn("item", "list"), noMo}, block},
        Rule{"BadItemEndsListAndObject",
             inObject("<list name='l'><item><q/></item><r/></list><s/>"),
             RAML_SYNTAX_ERROR,
             {unexpectedIn("item", "q"), noMo},
             block}),
    nameOf);

} // namespace
} // namespace RAML
