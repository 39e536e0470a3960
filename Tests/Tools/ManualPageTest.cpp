// SPDX-License-Identifier: MIT
#include "manual/ManualPage.hpp"

#include "Nouns.hpp"
#include "Program.hpp"
#include "manual/HelpPage.hpp"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <string>

namespace dorn::tool {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A command with a noun, a part, verbs, and all that has to be written in another way in a page.
class ManualPageTest : public ::testing::Test {
protected:
    ManualPageTest()
    {
        CLI::App& noun = m_program.addNoun("fan", "The fans of the board");
        CLI::App& verb = m_program.addVerb(noun, {"set", "Sets a fan's speed", "dorn fan set 1 --percent 40"}, nothing);
        verb.add_option("FAN", m_text, "Which one")->required();
        verb.add_option("--percent", m_text, ".5 and more; C:\\fan")->type_name("N");
        CLI::App& part = m_program.addPart(noun, "alarm", "Its alarms");
        m_program.addVerb(part, {"clear", "Clears them", "dorn fan alarm clear"}, nothing);
        m_program.addCommand({"tour", "Goes round the board", "dorn tour"}, nothing);
    }

    static Outcome nothing(Console&) { return Outcome::Fine; }

    std::string page(const std::string& name) const
    {
        for (const ManualPage& one : manualPages(m_program)) {
            if (one.name == name) {
                return one.text;
            }
        }
        ADD_FAILURE() << "there is no page " << name;
        return "";
    }

    Program m_program;
    std::string m_text;
};

TEST_F(ManualPageTest, PageOfANounHasItsVerbsAndThoseOfItsParts)
{
    EXPECT_EQ(page("dorn-fan"), ".TH DORN-FAN 1 \"\" \"dorn " DORN_EXPECTED_VERSION "\" \"Dorn\"\n"
                                ".SH NAME\n"
                                "dorn\\-fan \\- The fans of the board\n"
                                ".SH SYNOPSIS\n"
                                "\\fBdorn fan VERB [options]\\fR\n"
                                ".SH VERBS\n"
                                ".SS dorn fan set FAN [options]\n"
                                "Sets a fan's speed\n"
                                ".TP\n"
                                "\\fBFAN\\fR\n"
                                "Which one\n"
                                ".TP\n"
                                "\\fB\\-\\-percent\\fR N\n"
                                "\\&.5 and more; C:\\efan\n"
                                ".PP\n"
                                "Example:\n"
                                ".PP\n"
                                ".RS 4\n"
                                ".nf\n"
                                "dorn fan set 1 \\-\\-percent 40\n"
                                ".fi\n"
                                ".RE\n"
                                ".SS dorn fan alarm clear [options]\n"
                                "Clears them\n"
                                ".PP\n"
                                "Example:\n"
                                ".PP\n"
                                ".RS 4\n"
                                ".nf\n"
                                "dorn fan alarm clear\n"
                                ".fi\n"
                                ".RE\n"
                                ".SH SEE ALSO\n"
                                ".BR dorn (1)\n");
}

TEST_F(ManualPageTest, NounThatIsAVerbHasItsExample)
{
    EXPECT_THAT(page("dorn-tour"), HasSubstr(".SH DESCRIPTION\nGoes round the board\n.PP\nExample:\n"));
}

TEST_F(ManualPageTest, PageOfTheCommandListsItsNouns)
{
    const std::string text = page("dorn");

    EXPECT_THAT(text, StartsWith(".TH DORN 1 "));
    EXPECT_THAT(text, HasSubstr(".TP\n\\fBfan\\fR\nThe fans of the board\n"));
    EXPECT_THAT(text, HasSubstr(".SH NOTES\nExit status: 0 fine, 1 the answer is no, 2 wrong use.\n"));
    EXPECT_THAT(text, HasSubstr(".SH SEE ALSO\n.BR dorn\\-fan (1) ,\n.BR dorn\\-tour (1)\n"));
}

TEST(ManualTest, EveryNounOfTheCommandHasAPageWithAllItsHelp)
{
    Program program;
    addNouns(program);
    const auto all = [](const CLI::App*) { return true; };
    const auto nouns = program.commandLine().get_subcommands(all);
    const std::vector<ManualPage> pages = manualPages(program);

    ASSERT_EQ(pages.size(), nouns.size() + 1);
    for (std::size_t index = 0; index < nouns.size(); ++index) {
        EXPECT_EQ(pages[index + 1].name, "dorn-" + nouns[index]->get_name());
        for (const CLI::App* const verb : nouns[index]->get_subcommands(all)) {
            EXPECT_THAT(pages[index + 1].text, HasSubstr("dorn " + nouns[index]->get_name() + " " + verb->get_name()));
        }
    }
}

TEST(HelpPageTest, PageHasEachLineOfTheHelpInItsSection)
{
    const std::string help = "Usage: spin-test [options] [FAN...]\n\n"
                             "Spins fans.\n"
                             "'FAN' is one; all without.\n\n"
                             "  --list          print C:\\fans\n"
                             "  --speed PERCENT  .5 and more\n"
                             "  --a-long-name WITH-A-VALUE\n"
                             "                  stands alone\n\n"
                             "Example: spin-test --list\n\n"
                             "Exit status: 0 fine, 2 wrong use.\n";

    const ManualPage page = helpPage("spin-test", help, "fans 1.2");

    EXPECT_EQ(page.name, "spin-test");
    EXPECT_EQ(page.text, ".TH SPIN-TEST 1 \"\" \"fans 1.2\" \"Dorn\"\n"
                         ".SH NAME\n"
                         "spin\\-test \\- Spins fans\n"
                         ".SH SYNOPSIS\n"
                         "\\fBspin\\-test [options] [FAN...]\\fR\n"
                         ".SH DESCRIPTION\n"
                         "Spins fans.\n"
                         "\\&'FAN' is one; all without.\n"
                         ".SH OPTIONS\n"
                         ".TP\n"
                         "\\fB\\-\\-list\\fR\n"
                         "print C:\\efans\n"
                         ".TP\n"
                         "\\fB\\-\\-speed PERCENT\\fR\n"
                         "\\&.5 and more\n"
                         ".TP\n"
                         "\\fB\\-\\-a\\-long\\-name WITH\\-A\\-VALUE\\fR\n"
                         "stands alone\n"
                         ".SH EXAMPLE\n"
                         ".nf\n"
                         "spin\\-test \\-\\-list\n"
                         ".fi\n"
                         ".SH EXIT STATUS\n"
                         "0 fine, 2 wrong use.\n"
                         ".SH SEE ALSO\n"
                         ".BR dorn (1)\n");
}

} // namespace
} // namespace dorn::tool
