// SPDX-License-Identifier: MIT
#include "ArgParser.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vel::hwapi::common {
namespace {

class ArgParserTest : public testing::Test {
protected:
    /// Parses the words as the arguments of a program.
    std::string parse(std::vector<std::string> words)
    {
        words.insert(words.begin(), "program");
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        return m_parser.Parse(static_cast<int>(words.size()), argv.data());
    }

    ArgParser m_parser;
};

const std::string defaultHelp = "\t-h\n\t--help\n\t\t Print usage information\n";

TEST_F(ArgParserTest, NewParserKnowsTheTwoHelpOptions)
{
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg off");
    EXPECT_EQ(m_parser.ReadArgument("help"), "arg off");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp);
}

TEST_F(ArgParserTest, OptionThatWasNeverDeclaredReadsAsEmptyText)
{
    EXPECT_EQ(m_parser.ReadArgument("x"), "");
    EXPECT_EQ(m_parser.ReadArgument(""), "");
}

TEST_F(ArgParserTest, ShortOptionIsItsFirstLetter)
{
    m_parser.SetArgumentInfo("-verbose Print more\n");

    EXPECT_EQ(m_parser.ReadArgument("v"), "arg off");
    EXPECT_EQ(m_parser.ReadArgument("verbose"), "");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-verbose\n\t\t Print more\n");
}

TEST_F(ArgParserTest, LongOptionEndsAtTheEqualsSign)
{
    m_parser.SetArgumentInfo("--level=N=M Level of detail");

    EXPECT_EQ(m_parser.ReadArgument("level"), "arg off");
    EXPECT_EQ(m_parser.ReadArgument("level=N=M"), "");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t--level=N=M\n\t\t Level of detail\n");
}

TEST_F(ArgParserTest, LongOptionOfTwoCharactersIsTheShortestThatCanBeDeclared)
{
    m_parser.SetArgumentInfo("--ab\n--a\n");

    EXPECT_EQ(m_parser.ReadArgument("ab"), "arg off");
    EXPECT_EQ(m_parser.ReadArgument("a"), "");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t--ab\n");
}

TEST_F(ArgParserTest, OptionWithoutDescriptionIsOneLineOfHelp)
{
    m_parser.SetArgumentInfo("-x\n-y");

    EXPECT_EQ(m_parser.ReadArgument("x"), "arg off");
    EXPECT_EQ(m_parser.ReadArgument("y"), "arg off");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t-y\n");
}

TEST_F(ArgParserTest, DescriptionKeepsItsBlanksAndItsDashes)
{
    m_parser.SetArgumentInfo("-x  two blanks, -y and --zz \n");

    EXPECT_EQ(m_parser.ReadArgument("y"), "");
    EXPECT_EQ(m_parser.ReadArgument("zz"), "");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t\t  two blanks, -y and --zz \n");
}

TEST_F(ArgParserTest, WordsThatAreNoOptionsArePassedOverOneByOne)
{
    m_parser.SetArgumentInfo("Options: - -- --q -x Explained\n");

    EXPECT_EQ(m_parser.ReadArgument("x"), "arg off");
    EXPECT_EQ(m_parser.ReadArgument("q"), "");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t\t Explained\n");
}

TEST_F(ArgParserTest, WordsAreSeparatedByAnyWhiteSpace)
{
    m_parser.SetArgumentInfo("\t\v\n \f-x\tExplained\r\n\r\n\n-y");

    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t\t\tExplained\r\n\t-y\n");
}

TEST_F(ArgParserTest, EmptyTextDeclaresNothing)
{
    m_parser.SetArgumentInfo("");
    m_parser.SetArgumentInfo(" \n\n");

    EXPECT_EQ(m_parser.GetHelp(), defaultHelp);
}

TEST_F(ArgParserTest, DeclarationsAccumulate)
{
    m_parser.SetArgumentInfo("-x First\n");
    m_parser.SetArgumentInfo("-y Second\n");

    EXPECT_EQ(m_parser.ReadArgument("x"), "arg off");
    EXPECT_EQ(m_parser.ReadArgument("y"), "arg off");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg off");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t\t First\n\t-y\n\t\t Second\n");
}

TEST_F(ArgParserTest, DeclaringAnOptionAgainResetsItAndListsItTwice)
{
    m_parser.SetArgumentInfo("-x First\n");
    ASSERT_EQ(parse({"-x"}), "");
    ASSERT_EQ(m_parser.ReadArgument("x"), "arg on");

    m_parser.SetArgumentInfo("-x Second\n");

    EXPECT_EQ(m_parser.ReadArgument("x"), "arg off");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t\t First\n\t-x\n\t\t Second\n");
}

TEST_F(ArgParserTest, DescriptionOf255CharactersIsKeptAndTheReadingGoesOn)
{
    const std::string description = " " + std::string(254, 'd');
    m_parser.SetArgumentInfo("-x" + description + "\n-y Next\n");

    EXPECT_EQ(m_parser.ReadArgument("y"), "arg off");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t\t" + description + "\n\t-y\n\t\t Next\n");
}

TEST_F(ArgParserTest, DescriptionOf256CharactersIsCutTo255AndEndsTheReading)
{
    const std::string description = " " + std::string(254, 'd');
    m_parser.SetArgumentInfo("-x" + description + "d\n-y Next\n");

    EXPECT_EQ(m_parser.ReadArgument("x"), "arg off");
    EXPECT_EQ(m_parser.ReadArgument("y"), "");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t\t" + description + "\n");
}

TEST_F(ArgParserTest, DescriptionOf255CharactersAtTheEndOfTheTextIsKept)
{
    const std::string description = " " + std::string(254, 'd');
    m_parser.SetArgumentInfo("-x" + description);

    EXPECT_EQ(m_parser.ReadArgument("x"), "arg off");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t\t" + description + "\n");
}

TEST_F(ArgParserTest, DescriptionOf256CharactersAtTheEndOfTheTextIsCutTo255)
{
    const std::string description = " " + std::string(254, 'd');
    m_parser.SetArgumentInfo("-x" + description + "d");

    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t-x\n\t\t" + description + "\n");
}

TEST_F(ArgParserTest, LongFormOfOneLetterIsDeclaredWithItsValue)
{
    m_parser.SetArgumentInfo("--a=N Amount\n");

    EXPECT_EQ(m_parser.ReadArgument("a"), "arg off");
    EXPECT_EQ(m_parser.GetHelp(), defaultHelp + "\t--a=N\n\t\t Amount\n");
    EXPECT_EQ(parse({"--a=7"}), "");
    EXPECT_EQ(m_parser.ReadArgument("a"), "7");
}

TEST_F(ArgParserTest, LongFormWithoutANameDeclaresTheEmptyName)
{
    m_parser.SetArgumentInfo("--=x Nameless\n");

    EXPECT_EQ(m_parser.ReadArgument(""), "arg off");
    EXPECT_EQ(parse({"--=yz"}), "");
    EXPECT_EQ(m_parser.ReadArgument(""), "yz");
}

TEST_F(ArgParserTest, LaterDeclarationIsReadAlthoughAnEarlierTextWasCut)
{
    m_parser.SetArgumentInfo("-x " + std::string(300, 'd') + "\n-y Lost\n");
    m_parser.SetArgumentInfo("-z Found\n");

    EXPECT_EQ(m_parser.ReadArgument("y"), "");
    EXPECT_EQ(m_parser.ReadArgument("z"), "arg off");
}

TEST_F(ArgParserTest, ShortOptionIsMarked)
{
    EXPECT_EQ(parse({"-h"}), "");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg on");
    EXPECT_EQ(m_parser.ReadArgument("help"), "arg off");
}

TEST_F(ArgParserTest, LettersBehindOneDashAreOptionsOfTheirOwn)
{
    m_parser.SetArgumentInfo("-v Print more\n");

    EXPECT_EQ(parse({"-hv"}), "");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg on");
    EXPECT_EQ(m_parser.ReadArgument("v"), "arg on");
}

TEST_F(ArgParserTest, UnknownLetterIsReportedAndTheOthersAreMarked)
{
    EXPECT_EQ(parse({"-hx"}), " -x");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg on");
    EXPECT_EQ(m_parser.ReadArgument("x"), "");
}

TEST_F(ArgParserTest, EveryUnknownLetterIsReported)
{
    EXPECT_EQ(parse({"-x=-"}), " -x -= --");
}

TEST_F(ArgParserTest, LongOptionIsMarked)
{
    EXPECT_EQ(parse({"--help"}), "");
    EXPECT_EQ(m_parser.ReadArgument("help"), "arg on");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg off");
}

TEST_F(ArgParserTest, LongOptionWithValueKeepsTheValue)
{
    EXPECT_EQ(parse({"--help=yes"}), "");
    EXPECT_EQ(m_parser.ReadArgument("help"), "yes");
}

TEST_F(ArgParserTest, ValueMayContainEqualsSigns)
{
    EXPECT_EQ(parse({"--help=a=b"}), "");
    EXPECT_EQ(m_parser.ReadArgument("help"), "a=b");
}

TEST_F(ArgParserTest, ValueMayBeEmpty)
{
    EXPECT_EQ(parse({"--help="}), "");
    EXPECT_EQ(m_parser.ReadArgument("help"), "");
}

TEST_F(ArgParserTest, OptionDeclaredWithValueMayBeGivenWithout)
{
    m_parser.SetArgumentInfo("--level=N Level of detail\n");

    EXPECT_EQ(parse({"--level"}), "");
    EXPECT_EQ(m_parser.ReadArgument("level"), "arg on");
}

TEST_F(ArgParserTest, UnknownLongOptionIsReportedWithoutItsValue)
{
    EXPECT_EQ(parse({"--level=3", "--depth"}), " --level --depth");
}

TEST_F(ArgParserTest, LongOptionIsNotAbbreviated)
{
    EXPECT_EQ(parse({"--hel"}), " --hel");
    EXPECT_EQ(m_parser.ReadArgument("help"), "arg off");
}

TEST_F(ArgParserTest, LongOptionOfTwoCharactersIsAccepted)
{
    m_parser.SetArgumentInfo("--ab\n");

    EXPECT_EQ(parse({"--ab"}), "");
    EXPECT_EQ(m_parser.ReadArgument("ab"), "arg on");
}

TEST_F(ArgParserTest, LongOptionOfOneCharacterIsNeverAnOption)
{
    m_parser.SetArgumentInfo("-a\n");

    EXPECT_EQ(parse({"--a"}), " --a");
    EXPECT_EQ(m_parser.ReadArgument("a"), "arg off");
}

TEST_F(ArgParserTest, LongFormSetsAShortOptionToItsValue)
{
    EXPECT_EQ(parse({"--h=3"}), "");
    EXPECT_EQ(m_parser.ReadArgument("h"), "3");
}

TEST_F(ArgParserTest, UnknownLongFormOfOneLetterIsReportedByItsName)
{
    EXPECT_EQ(parse({"--a=N"}), " --a");
}

TEST_F(ArgParserTest, LongFormWithoutANameIsReportedAsItsDashes)
{
    EXPECT_EQ(parse({"--=x"}), " --");
}

TEST_F(ArgParserTest, ThreeCharactersAreNoLongFormEvenWithAnEqualsSign)
{
    EXPECT_EQ(parse({"--="}), " --=");
}

TEST_F(ArgParserTest, ArgumentWithoutDashIsReportedWhole)
{
    EXPECT_EQ(parse({"foo"}), " foo");
}

TEST_F(ArgParserTest, LoneDashesAreReported)
{
    EXPECT_EQ(parse({"-", "--"}), " - --");
}

TEST_F(ArgParserTest, EmptyArgumentIsReportedAsABlank)
{
    EXPECT_EQ(parse({""}), " ");
}

TEST_F(ArgParserTest, FaultsAreReportedInTheOrderOfTheArguments)
{
    EXPECT_EQ(parse({"foo", "-h", "-z", "--zz=1", "bar"}), " foo -z --zz bar");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg on");
}

TEST_F(ArgParserTest, ProgramNameIsNotAnArgument)
{
    std::string program = "-h";
    char* argv[] = {program.data(), nullptr};

    EXPECT_EQ(m_parser.Parse(1, argv), "");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg off");
}

TEST_F(ArgParserTest, NoArgumentsAtAllAreUnderstood)
{
    char* argv[] = {nullptr};

    EXPECT_EQ(m_parser.Parse(0, argv), "");
    EXPECT_EQ(m_parser.Parse(3, nullptr), "");
    EXPECT_EQ(m_parser.Parse(0, nullptr), "");
}

TEST_F(ArgParserTest, NegativeNumberOfArgumentsIsNone)
{
    std::string words[] = {"program", "-h", "foo"};
    char* argv[] = {words[0].data(), words[1].data(), words[2].data()};

    EXPECT_EQ(m_parser.Parse(-1, argv), "");
    EXPECT_EQ(m_parser.Parse(-3, argv), "");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg off");
}

TEST_F(ArgParserTest, NullEntriesArePassedOver)
{
    std::string unknown = "-x";
    std::string help = "-h";
    char* argv[] = {nullptr, unknown.data(), nullptr, help.data()};

    EXPECT_EQ(m_parser.Parse(4, argv), " -x");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg on");
}

TEST_F(ArgParserTest, MarksSurviveASecondParse)
{
    ASSERT_EQ(parse({"-h"}), "");

    EXPECT_EQ(parse({"--help=3"}), "");
    EXPECT_EQ(m_parser.ReadArgument("h"), "arg on");
    EXPECT_EQ(m_parser.ReadArgument("help"), "3");
}

TEST_F(ArgParserTest, ErrorsOfTheFirstParseAreNotReportedAgain)
{
    ASSERT_EQ(parse({"foo"}), " foo");

    EXPECT_EQ(parse({"-h"}), "");
}

TEST_F(ArgParserTest, ParserIsUsedThroughItsInterface)
{
    ArgParserBase& parser = m_parser;
    parser.SetArgumentInfo("-x\n");
    std::string words[] = {"program", "-x"};
    char* argv[] = {words[0].data(), words[1].data()};

    EXPECT_EQ(parser.Parse(2, argv), "");
    EXPECT_EQ(parser.ReadArgument("x"), "arg on");
    EXPECT_EQ(parser.GetHelp(), defaultHelp + "\t-x\n");
}

} // namespace
} // namespace vel::hwapi::common
