// SPDX-License-Identifier: MIT
// The verbs of the noun raml, as they are started.
#include "DornCommand.hpp"

#include "NodeTest.hpp"
#include "RamlDocuments.hpp"
#include "Sanitizers.hpp"
#include "generator/RamlGenerator.hpp"
#include "text/Json.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

class DornRamlTest : public ::testing::Test {
protected:
    /// Writes a file and gives its path.
    std::string file(const std::string& name, const std::string& content)
    {
        m_node.writeBoardFile("/" + name, content);
        return m_node.boardPath("/" + name);
    }
    /// Runs a line of the shell, in the folder of the files, in which "$0" is the command.
    CommandResult shell(const std::string& line)
    {
        testkit::Process process("/bin/bash", {"-c", "cd \"$1\" && " + line, DORN_COMMAND, m_node.boardRoot()});
        const int status = process.waitForEnd();
        return {status, process.standardOutput(), process.standardError()};
    }

    testkit::TestNode m_node;
    const std::string m_good = ramlAround(ramlObject("Fan", "Fan=1", ramlParameter("speed", "40")));
    const std::string m_bad = ramlAround(ramlObject("Fan", "Fan=1", "      <p>40</p>\n"));
};

TEST_F(DornRamlTest, GoodDocumentIsFine)
{
    const std::string path = file("a b.xml", m_good);
    EXPECT_EQ(dorn({"raml", "check", path}),
              (CommandResult{0, path + ": RAML_OK: 1 block and 1 managed object can be used\n", ""}));
}

TEST_F(DornRamlTest, WhatIsWrongIsToldWithItsPlace)
{
    const std::string path = file("bad.xml", m_bad);
    EXPECT_EQ(dorn({"raml", "check", path}),
              (CommandResult{1,
                             path +
                                 ":4:7: <p>: Validation constraint violation: missing required attribute 'name' in "
                                 "element [p]. Detected in class [Fan]\n"
                                 "  4 |       <p>40</p>\n"
                                 "    |       ^\n" +
                                 path +
                                 ":2:3: <cmData>: Validation constraint violation: missing required element "
                                 "[managedObject]\n"
                                 "  2 |   <cmData type=\"plan\" id=\"1\">\n"
                                 "    |   ^\n" +
                                 path + ": RAML_SYNTAX_ERROR: 2 errors; 1 block and 0 managed objects can be used\n",
                             ""}));
}

TEST_F(DornRamlTest, CheckReadsAPipeAndSeveralFiles)
{
    file("good.xml", m_good);
    file("bad.xml", m_bad);
    EXPECT_EQ(shell("\"$0\" raml check - < good.xml"),
              (CommandResult{0, "<stdin>: RAML_OK: 1 block and 1 managed object can be used\n", ""}));
    const CommandResult several = shell("cat good.xml | \"$0\" raml check bad.xml - good.xml");
    EXPECT_EQ(several.status, 1);
    EXPECT_NE(several.answer.find("bad.xml: RAML_SYNTAX_ERROR"), std::string::npos) << several.answer;
    EXPECT_TRUE(several.answer.ends_with("<stdin>: RAML_OK: 1 block and 1 managed object can be used\n"
                                         "good.xml: RAML_OK: 1 block and 1 managed object can be used\n"))
        << several.answer;
}

TEST_F(DornRamlTest, FileThatCannotBeReadIsWhatAServiceCallsIt)
{
    EXPECT_EQ(
        dorn({"raml", "check", "/no/such.xml"}),
        (CommandResult{1,
                       "/no/such.xml: Opening of RAML file failed ('/no/such.xml' cannot be read: No such file or "
                       "directory)\n/no/such.xml: RAML_RESOURCE_LIMITATION: 1 error; 0 blocks and 0 managed "
                       "objects can be used\n",
                       ""}));
    EXPECT_EQ(dorn({"raml", "check", file("empty.xml", "")}).status, 1);
}

TEST_F(DornRamlTest, ScreenIsNotFloodedUnlessAskedFor)
{
    std::string objects;
    for (int index = 0; index < 50; ++index) {
        objects += ramlObject("Fan", "Fan=1", "", "modify");
    }
    const std::string path = file("bad.xml", ramlAround(objects));
    const CommandResult few = dorn({"raml", "check", path});
    EXPECT_LE(std::count(few.answer.begin(), few.answer.end(), '\n'), 25);
    EXPECT_TRUE(few.answer.ends_with(
        ": RAML_SYNTAX_ERROR: 51 errors; 43 more with --all; 1 block and 0 managed objects can be used\n"))
        << few.answer;
    const CommandResult every = dorn({"raml", "check", "--all", path});
    EXPECT_EQ(std::count(every.answer.begin(), every.answer.end(), '\n'), 51 * 3 + 1);
}

TEST_F(DornRamlTest, CheckCanBeToldAsJson)
{
    const std::string path = file("bad.xml", "<data/>");
    EXPECT_EQ(dorn({"raml", "check", "--json", path}), (CommandResult{1, R"([
  {
    "file": ")" + path + R"(",
    "result": "RAML_SYNTAX_ERROR",
    "code": 3,
    "blocks": 0,
    "managedObjects": 0,
    "errorCount": 1,
    "errors": [
      {
        "line": 1,
        "column": 1,
        "element": "data",
        "text": "Validation constraint violation: missing required element [raml]"
      }
    ]
  }
]
)",
                                                                      ""}));
}

/// What is wrong is told in the answer, not in the log of a node, and no node is needed.
TEST_F(DornRamlTest, NoNodeIsNeededOrTouched)
{
    file("bad.xml", m_bad);
    const CommandResult usual = shell("\"$0\" raml check bad.xml");
    EXPECT_EQ(shell("DORN_RUN_DIR=/proc/none DORN_NID=x \"$0\" raml check bad.xml"), usual);
    EXPECT_EQ(usual.remarks, "");
}

TEST_F(DornRamlTest, LogThatIsSwitchedOffHidesNothing)
{
    file("bad.xml", m_bad);
    const CommandResult usual = shell("\"$0\" raml check bad.xml");
    EXPECT_EQ(shell("DORN_LOG_LEVEL=none \"$0\" raml check bad.xml"), usual);
    EXPECT_EQ(usual.remarks, "");
}

TEST_F(DornRamlTest, DocumentOrObjectIsShown)
{
    const std::string path = file("good.xml", m_good);
    EXPECT_EQ(dorn({"raml", "show", path}), (CommandResult{0,
                                                           path + "  version=2.1E xmlns=raml21.xsd\n"
                                                                  "└─ cmData  id=1 type=plan scope=changes\n"
                                                                  "   └─ Fan Fan=1  operation=create\n"
                                                                  "      └─ speed = 40\n",
                                                           ""}));
    EXPECT_EQ(dorn({"raml", "show", path, "Fan=1"}),
              (CommandResult{0, "Fan Fan=1  operation=create\n└─ speed = 40\n", ""}));
    EXPECT_EQ(dorn({"raml", "show", "--names", path}), (CommandResult{0, "Fan=1\n", ""}));
    EXPECT_EQ(dorn({"raml", "show", "--json", path, "Fan=1"}), (CommandResult{0, R"({
  "class": "Fan",
  "distName": "Fan=1",
  "operation": "create",
  "parameters": [
    {
      "name": "speed",
      "value": "40"
    }
  ]
}
)",
                                                                              ""}));
}

TEST_F(DornRamlTest, NameThatIsNotThereIsANo)
{
    const std::string path = file("good.xml", m_good);
    const std::string noObject = "dorn: there is no managed object 'Fan=2' in '" + path +
                                 "'; 'dorn raml show --names' lists all that there are\n";
    EXPECT_EQ(dorn({"raml", "show", path, "Fan=2"}), (CommandResult{1, "", noObject}));
    EXPECT_EQ(dorn({"raml", "get", path, "Fan=2", "speed"}), (CommandResult{1, "", noObject}));
    EXPECT_EQ(dorn({"raml", "get", path, "Fan=1", "mode"}),
              (CommandResult{1, "", "dorn: managed object 'Fan=1' has no parameter 'mode'; it has speed\n"}));
}

TEST_F(DornRamlTest, ParameterIsPrintedAlone)
{
    const std::string list = "<list name=\"l\"><p>1</p><p/><item><p name=\"a\">1</p><p name=\"b\">2</p></item></list>";
    const std::string path =
        file("good.xml", ramlAround(ramlObject("Fan", "Fan=1", ramlParameter("speed", "40") + list)));
    EXPECT_EQ(dorn({"raml", "get", path, "Fan=1", "speed"}), (CommandResult{0, "40\n", ""}));
    EXPECT_EQ(dorn({"raml", "get", path, "Fan=1", "l"}), (CommandResult{0, "1\n\na=1 b=2\n", ""}));
    EXPECT_EQ(dorn({"raml", "get", "--json", path, "Fan=1", "speed"}),
              (CommandResult{0, "{\n  \"name\": \"speed\",\n  \"value\": \"40\"\n}\n", ""}));
}

TEST_F(DornRamlTest, DocumentWithErrorsIsRefusedByVerbsThatUseIt)
{
    const std::string path = file("bad.xml", m_bad);
    const std::string remark = "dorn: '" + path +
                               "' is RAML_SYNTAX_ERROR: 4:7: <p>: Validation constraint violation: missing required "
                               "attribute 'name' in element [p]. Detected in class [Fan]; 'dorn raml check' shows all "
                               "that is wrong\n";
    EXPECT_EQ(dorn({"raml", "show", path}), (CommandResult{1, "", remark}));
    EXPECT_EQ(dorn({"raml", "get", path, "Fan=1", "speed"}), (CommandResult{1, "", remark}));
    EXPECT_EQ(dorn({"raml", "stats", path}), (CommandResult{1, "", remark}));
    EXPECT_EQ(dorn({"raml", "format", path}), (CommandResult{1, "", remark}));
    EXPECT_EQ(dorn({"raml", "diff", path, path}), (CommandResult{1, "", remark}));
    EXPECT_EQ(dorn({"raml", "sort", path, "--ranks", file("ranks", "Fan")}), (CommandResult{1, "", remark}));
}

TEST_F(DornRamlTest, DifferencesAreANo)
{
    const std::string before = file("before.xml", m_good);
    const std::string after =
        file("after.xml", ramlAround(ramlObject("Fan", "Fan=1", ramlParameter("speed", "50")) + ramlObject("A", "B")));
    EXPECT_EQ(dorn({"raml", "diff", before, before}), (CommandResult{0, "", ""}));
    EXPECT_EQ(dorn({"raml", "diff", before, after}),
              (CommandResult{1, "~ Fan Fan=1\n    speed: \"40\" -> \"50\"\n+ A B\n", ""}));
    EXPECT_EQ(shell("cat before.xml | \"$0\" raml diff - after.xml | wc -l").answer, "3\n");
    EXPECT_EQ(dorn({"raml", "diff", "--json", before, before}), (CommandResult{0, "[]\n", ""}));
    EXPECT_EQ(dorn({"raml", "diff", "--json", before, after}), (CommandResult{1, R"([
  {
    "change": "changed",
    "subject": "Fan=1",
    "class": "Fan",
    "differences": [
      {
        "name": "speed",
        "old": "40",
        "new": "50"
      }
    ]
  },
  {
    "change": "added",
    "subject": "B",
    "class": "A"
  }
]
)",
                                                                              ""}));
}

TEST_F(DornRamlTest, DocumentIsSortedByRanks)
{
    const std::string document = file("plan.xml", ramlAround(ramlObject("Fan", "Fan=1") + ramlObject("Led", "Led=1") +
                                                             ramlObject("Board", "Board=1")));
    const std::string ranks = file("ranks", "Board\nFan\n");
    const CommandResult sorted = dorn({"raml", "sort", document, "--ranks", ranks});
    EXPECT_EQ(sorted.status, 0);
    EXPECT_EQ(sorted.remarks, "dorn: no rank: Led; their objects come last\n");
    file("sorted.xml", sorted.answer);
    EXPECT_EQ(shell("\"$0\" raml show --names sorted.xml").answer, "Board=1\nFan=1\nLed=1\n");
    const CommandResult ranked = dorn({"raml", "sort", document, "--ranked-only", "--ranks", ranks});
    EXPECT_EQ(ranked.remarks, "dorn: no rank: Led; their objects are left out\n");
    EXPECT_EQ(ranked.answer.find("Led"), std::string::npos);
    EXPECT_EQ(dorn({"raml", "sort", document, "--ranks", "/no/such"}),
              (CommandResult{1, "", "dorn: '/no/such' cannot be read: No such file or directory\n"}));
}

TEST_F(DornRamlTest, DocumentIsPrintedAsItIsWritten)
{
    const std::string path =
        file("good.xml", "<raml version='2.1' xmlns='x'><cmData type='plan' name='n'><managedObject "
                         "class='Fan' distName='Fan=1' operation='create'><p "
                         "name='a'>1</p></managedObject></cmData></raml>");
    EXPECT_EQ(dorn({"raml", "format", path}),
              (CommandResult{0,
                             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<raml version=\"2.1\" xmlns=\"x\">\n"
                             "  <cmData id=\"\" type=\"plan\" scope=\"changes\" domain=\"\" "
                             "adaptationVersionMajor=\"\" >\n"
                             "    <header>\n"
                             "    </header>\n"
                             "\n"
                             "    <managedObject class=\"Fan\" operation=\"create\" distName=\"Fan=1\" version=\"\">\n"
                             "      <p name=\"a\">1</p>\n"
                             "    </managedObject>\n"
                             "\n"
                             "  </cmData>\n"
                             "\n"
                             "</raml>\n",
                             "dorn: not written: cmData@name (1)\n"}));
}

TEST_F(DornRamlTest, WhatIsWrittenCanBeToldAsJson)
{
    const std::string path = file("plan.xml", ramlAround(ramlObject("Fan", "Fan=1") + ramlObject("Led", "Led=1")));
    const auto answerAround = [](const std::string& document, const std::string& end) {
        return "{\n  \"document\": " + jsonLine(Json(document)) +
               ",\n  \"readsBack\": true,\n  \"trouble\": null,\n  \"notWritten\": {}" + end + "\n}\n";
    };
    EXPECT_EQ(dorn({"raml", "format", "--json", path}),
              (CommandResult{0, answerAround(dorn({"raml", "format", path}).answer, ""), ""}));
    const std::string ranks = file("ranks", "Led\n");
    EXPECT_EQ(dorn({"raml", "sort", "--json", path, "--ranks", ranks}),
              (CommandResult{0,
                             answerAround(dorn({"raml", "sort", path, "--ranks", ranks}).answer,
                                          ",\n  \"unranked\": [\n    \"Fan\"\n  ]"),
                             ""}));
}

TEST_F(DornRamlTest, WhatWouldNotReadBackIsNotPrinted)
{
    const std::string path = file("good.xml", ramlAround(ramlObject("Fan", "Fan=1", "", "subscribe")));
    EXPECT_EQ(dorn({"raml", "format", path}),
              (CommandResult{1, "",
                             "dorn: what services write would not read back: operation subscribe of 'Fan=1' is not "
                             "written; --force prints it all the same\n"}));
    EXPECT_EQ(dorn({"raml", "format", "--force", path}).status, 0);
}

TEST_F(DornRamlTest, GeneratedDocumentIsTheGenerators)
{
    EXPECT_EQ(dorn({"raml", "generate"}), (CommandResult{0, testkit::ramlText({}), ""}));
    testkit::RamlShape shape{.seed = 7,
                             .objects = 3,
                             .blocks = 2,
                             .logs = 0,
                             .classes = 2,
                             .depth = 2,
                             .parameters = 1,
                             .lists = 2,
                             .listElements = 1,
                             .valueBytes = 4,
                             .isPlain = true};
    shape.faults = {testkit::RamlFault::NoClass, testkit::RamlFault::WrongType};
    EXPECT_EQ(dorn({"raml",     "generate", "--seed",     "7", "--objects",     "3", "--blocks",     "2",
                    "--logs",   "0",        "--classes",  "2", "--depth",       "2", "--parameters", "1",
                    "--lists",  "2",        "--elements", "1", "--value-bytes", "4", "--plain",      "--fault",
                    "no-class", "--fault",  "wrong-type"}),
              (CommandResult{0, testkit::ramlText(shape), ""}));
    EXPECT_EQ(dorn({"raml", "generate", "--size", "10K"}).answer, testkit::ramlText({.bytes = 10240}));
    EXPECT_TRUE(dorn({"raml", "generate", "--list-faults"}).answer.starts_with("FAULT"));
    EXPECT_TRUE(dorn({"raml", "generate", "--list-faults", "--json"})
                    .answer.starts_with("[\n  {\n    \"name\": \"no-text\",\n"));
}

TEST_F(DornRamlTest, GeneratedDocumentCanBeToldAsJson)
{
    const testkit::RamlShape shape{.seed = 9, .faults = {testkit::RamlFault::ZeroByte}};
    EXPECT_EQ(
        dorn({"raml", "generate", "--json", "--seed", "9", "--fault", "zero-byte"}),
        (CommandResult{
            0,
            jsonText(Json{{"seed", 9}, {"faults", Json::array({"zero-byte"})}, {"document", testkit::ramlText(shape)}}),
            ""}));
}

TEST_F(DornRamlTest, VerbsMeetInPipes)
{
    EXPECT_EQ(
        shell("\"$0\" raml generate --plain --objects 200 --seed 3 > a.xml && \"$0\" raml format a.xml | \"$0\" "
              "raml diff a.xml - && \"$0\" raml generate --fault no-class | \"$0\" raml check - | tail -n 1 | cut -d : "
              "-f 2"),
        (CommandResult{0, " RAML_SYNTAX_ERROR\n", ""}));
}

TEST_F(DornRamlTest, ReaderWhoHasSeenEnoughIsNoFailure)
{
    EXPECT_EQ(shell("\"$0\" raml generate --size 1024G | head -c 5; echo \" ${PIPESTATUS[0]}\""),
              (CommandResult{0, "<?xml 0\n", ""}));
}

TEST_F(DornRamlTest, EndlessPipeIsRefused)
{
    EXPECT_EQ(shell("yes '<raml>' | \"$0\" raml show - --limit 3M"),
              (CommandResult{1, "", "dorn: standard input is greater than 3.0 MiB; --limit sets another limit\n"}));
}

/// The file says that it has a value of two gibibytes; nobody reads so much, or takes memory for it.
TEST_F(DornRamlTest, GreatFileIsRefusedUnreadInLittleMemory)
{
    if (test::hasAddressSanitizer || test::hasThreadSanitizer) {
        GTEST_SKIP() << "a sanitizer needs more address space than this";
    }
    const std::string path = file("great.xml", "<raml><p>");
    ASSERT_EQ(truncate(path.c_str(), off_t{1} << 31), 0);
    EXPECT_EQ(shell("ulimit -v 300000 && \"$0\" raml show great.xml"),
              (CommandResult{1, "", "dorn: 'great.xml' is greater than 256 MiB; --limit sets another limit\n"}));
}

TEST_F(DornRamlTest, PipeThatIsCutIsJudgedByWhatCame)
{
    file("good.xml", m_good);
    const CommandResult result = shell("head -c 100 good.xml | \"$0\" raml check -");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.answer.find("<stdin>: RAML_MALFORMED_XML: 1 error"), std::string::npos) << result.answer;
}

struct UsageCase {
    const char* name;
    std::vector<std::string> arguments;
    const char* remark;
};

void PrintTo(const UsageCase& test, std::ostream* stream)
{
    *stream << test.name;
}

class DornRamlUsageTest : public ::testing::TestWithParam<UsageCase> {};

TEST_P(DornRamlUsageTest, WrongUseIsToldWithTheHelpToAskFor)
{
    std::vector<std::string> arguments{"raml"};
    arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    const std::string help = "\nTry 'dorn raml " + GetParam().arguments.front() + " --help'\n";
    EXPECT_EQ(dorn(arguments), (CommandResult{2, "", "dorn: " + std::string(GetParam().remark) + help}));
}

INSTANTIATE_TEST_SUITE_P(
    Verbs, DornRamlUsageTest,
    ::testing::Values(
        UsageCase{"CheckNothing", {"check"}, "'dorn raml check' needs FILE"},
        UsageCase{"CheckOption", {"check", "--al", "x"}, "unknown option '--al' of 'dorn raml check'"},
        UsageCase{"CheckLimit",
                  {"check", "x", "--limit", "5X"},
                  "--limit: '5X' is not a size (a number of bytes, or of K, M, G, up to 1024G)"},
        UsageCase{"ShowNothing", {"show"}, "'dorn raml show' needs FILE"},
        UsageCase{"ShowMore", {"show", "a", "b", "c"}, "'dorn raml show' does not take the argument 'c'"},
        UsageCase{"ShowNamesOfOne", {"show", "--names", "a", "b"}, "'DISTNAME' and '--names' do not go together"},
        UsageCase{"GetLess", {"get", "a", "b"}, "'dorn raml get' needs PARAMETER"},
        UsageCase{"DiffOne", {"diff", "a"}, "'dorn raml diff' needs AFTER"},
        UsageCase{"DiffStandardInputTwice", {"diff", "-", "-"}, "only one of the documents can be standard input"},
        UsageCase{"SortWithoutRanks", {"sort", "a"}, "'dorn raml sort' needs --ranks"},
        UsageCase{"SortStandardInputTwice",
                  {"sort", "-", "--ranks", "-"},
                  "only one of document and ranks can be standard input"},
        UsageCase{"StatsNothing", {"stats"}, "'dorn raml stats' needs FILE"},
        UsageCase{"FormatNothing", {"format"}, "'dorn raml format' needs FILE"},
        UsageCase{"GenerateFault",
                  {"generate", "--fault", "x"},
                  "--fault: 'x' is none; 'dorn raml generate --list-faults' shows all that there are"},
        UsageCase{"GenerateObjects",
                  {"generate", "--objects", "many"},
                  "--objects: 'many' is not a number (decimal, or hexadecimal behind 0x)"},
        UsageCase{"GenerateDepth",
                  {"generate", "--depth", "1000001"},
                  "--depth: 1000001 is too great; the greatest is 1000000"},
        UsageCase{"GenerateSizeAndObjects",
                  {"generate", "--size", "1K", "--objects", "1"},
                  "'--objects' and '--size' do not go together"}),
    [](const auto& test) { return test.param.name; });

} // namespace
} // namespace dorn::tool
