// SPDX-License-Identifier: MIT
#include "Completion.hpp"

#include "Nouns.hpp"
#include "Process.hpp"
#include "Program.hpp"
#include "TestNode.hpp"

#include <gtest/gtest.h>
#include <sstream>

namespace dorn::tool {
namespace {

/// @p text as `bash` quotes it.
std::string quoted(std::string text)
{
    for (std::size_t at = text.find(' '); at != std::string::npos; at = text.find(' ', at + 2)) {
        text.insert(at, 1, '\\');
    }
    return text;
}

class CompletionTest : public ::testing::Test {
protected:
    CompletionTest() { addNouns(m_program); }

    /// What `bash` proposes for the last of these words, one a line; the command `dorn` itself is a function that does
    /// @p dorn, which is to print @p values.
    std::string proposals(const std::vector<std::string>& words, const std::string& values = "",
                          const std::string& dorn = "printf '%s' \"$VALUES\"") const
    {
        std::string script = bashCompletion(m_program);
        script += "dorn() { " + dorn +
                  "; }\n"
                  "VALUES=$1; shift\n"
                  "COMP_WORDS=(dorn \"$@\"); COMP_CWORD=$#\n"
                  "_dorn\n"
                  "[ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\\n' \"${COMPREPLY[@]}\"\n";
        std::vector<std::string> arguments{"-c", script, "bash", values};
        arguments.insert(arguments.end(), words.begin(), words.end());
        testkit::Process bash("/bin/bash", arguments);
        EXPECT_EQ(bash.waitForEnd(), 0);
        EXPECT_EQ(bash.standardError(), "");
        return bash.standardOutput();
    }

    Program m_program;
};

TEST_F(CompletionTest, NounsAreProposed)
{
    EXPECT_EQ(proposals({""}),
              "service\nrad\ntag\nmsg\nlog\nalarm\nredundancy\ngateway\nboard\nraml\nimage\nrpram\nsrio\npost\n"
              "snapshot\nnew\ncompletion\n--help\n-h\n--version\n");
    EXPECT_EQ(proposals({"r"}), "rad\nredundancy\nraml\nrpram\n");
}

TEST_F(CompletionTest, VerbsAreProposedBehindTheirNoun)
{
    EXPECT_EQ(proposals({"tag", ""}), "list\nget\nset\nwatch\n--help\n-h\n");
    EXPECT_EQ(proposals({"tag", "w"}), "watch\n");
}

TEST_F(CompletionTest, VerbsOfAPartAreProposedBehindIt)
{
    EXPECT_EQ(proposals({"board", "s"}), "show\nsfp\n");
    EXPECT_EQ(proposals({"board", "sfp", ""}), "show\nplug\npull\n--help\n-h\n");
    EXPECT_EQ(proposals({"board", "link", "break", ""}, "cpri0\nobsai0\n"), "cpri0\nobsai0\n");
    EXPECT_EQ(proposals({"board", "link", "break", "cpri0", "--only", ""}, "cpri0\n"), "");
}

TEST_F(CompletionTest, OptionsAreProposedBehindTheirVerb)
{
    EXPECT_EQ(proposals({"rad", "watch", "--"}), "--help\n--count\n--timeout\n--hex\n--json\n");
    EXPECT_EQ(proposals({"log", "--f"}), "--follow\n--feature\n");
    EXPECT_EQ(proposals({"log", "-f", "--s"}), "--severity\n--service\n");
}

TEST_F(CompletionTest, NothingIsProposedWhereAnOptionsValueStands)
{
    EXPECT_EQ(proposals({"rad", "watch", "--count", ""}, "HWA/FIRM\n"), "");
}

TEST_F(CompletionTest, FlagIsNotTakenForAnOptionWithAValue)
{
    EXPECT_EQ(proposals({"rad", "get", "--hex", ""}, "HWA/FIRM\n"), "HWA/FIRM\n");
}

TEST_F(CompletionTest, ArgumentsAreThoseThatTheNodeHas)
{
    EXPECT_EQ(proposals({"rad", "get", "HWA/"}, "HWA/FIRM\nHWA/LED\nHWAState/LedState\n"), "HWA/FIRM\nHWA/LED\n");
}

TEST_F(CompletionTest, OnlyTheFirstArgumentOfSetIsProposed)
{
    EXPECT_EQ(proposals({"rad", "set", "HWA/FIRM", ""}, "HWA/FIRM\n"), "--help\n-h\n--hex\n--json\n");
    EXPECT_EQ(proposals({"rad", "watch", "HWA/FIRM", ""}, "HWA/FIRM\n"), "HWA/FIRM\n");
}

class FileCompletionTest : public CompletionTest {
protected:
    FileCompletionTest()
    {
        m_node.writeBoardFile("/plan.xml", "");
        m_node.writeBoardFile("/plan two.xml", "");
    }
    std::string path(const std::string& file) const { return m_node.boardPath("/" + file); }

    testkit::TestNode m_node;
};

TEST_F(FileCompletionTest, FilesAreProposedWhereAFileStands)
{
    EXPECT_EQ(proposals({"raml", "show", path("plan.")}, "Fan=1\n"), path("plan.xml") + "\n");
    EXPECT_EQ(proposals({"raml", "check", path("plan.xml"), path("plan ")}), path("plan two.xml") + "\n");
    EXPECT_EQ(proposals({"raml", "check", "--j"}), "--json\n");
}

TEST_F(FileCompletionTest, BehindAFileItsNamesAreProposed)
{
    EXPECT_EQ(proposals({"raml", "get", path("plan two.xml"), "F"}, "Fan=1\nFan=2\nLed=1\n"), "Fan=1\nFan=2\n");
    EXPECT_EQ(proposals({"raml", "get", path("plan.xml"), "Fan=1", ""}, "Fan=1\n"), "--help\n-h\n--limit\n--json\n");
}

/// The file goes to the command that lists its names as one word.
TEST_F(FileCompletionTest, NamesAreThoseOfTheFile)
{
    EXPECT_EQ(proposals({"raml", "show", path("plan two.xml"), ""}, "", "printf '%s\\n' \"$@\""),
              "raml\nshow\n--names\n" + quoted(path("plan two.xml")) + "\n");
}

TEST_F(CompletionTest, NamesAreQuotedAndNeverEvaluated)
{
    EXPECT_EQ(proposals({"tag", "get", ""}, "a b\n$(echo evil)\n*\n"), "a\\ b\n\\$\\(echo\\ evil\\)\n\\*\n");
}

TEST_F(CompletionTest, ImagesAndPayloadsAreFiles)
{
    const testkit::TestNode node;
    node.writeBoardFile("/fpga image.bin", "");
    node.writeBoardFile("/fpga.rbf", "");
    node.writeBoardFile("/other", "");
    const std::string begin = node.boardRoot() + "/fp";
    const auto proposed = [&](const std::vector<std::string>& words) {
        std::istringstream lines(proposals(words));
        std::multiset<std::string> names;
        for (std::string line; std::getline(lines, line);) {
            names.insert(line);
        }
        return names;
    };
    const std::multiset<std::string> both{node.boardRoot() + "/fpga image.bin", node.boardRoot() + "/fpga.rbf"};

    EXPECT_EQ(proposed({"image", "show", begin}), both);
    EXPECT_EQ(proposed({"image", "create", "payload", begin}), both);
    EXPECT_EQ(proposed({"image", "verify", "one", "two", "three", begin}), both);
    EXPECT_EQ(proposals({"image", "show", "one", begin}), "");
    EXPECT_EQ(proposals({"image", "verify", "--hwswid", begin}), "");
}

TEST_F(CompletionTest, NodeWithoutServicesProposesNothing)
{
    EXPECT_EQ(proposals({"service", "list", ""}), "");
}

TEST_F(CompletionTest, ZshUsesTheSameFunction)
{
    const std::string script = zshCompletion(m_program);

    EXPECT_NE(script.find("bashcompinit"), std::string::npos);
    EXPECT_TRUE(script.ends_with(bashCompletion(m_program)));
}

} // namespace
} // namespace dorn::tool
