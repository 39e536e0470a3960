// SPDX-License-Identifier: MIT
#include "TestConsole.hpp"

#include <cerrno>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

/// A destination that takes nothing.
class BrokenBuffer : public std::streambuf {
public:
    explicit BrokenBuffer(int error) : m_error(error) {}

protected:
    int_type overflow(int_type) override
    {
        errno = m_error;
        return traits_type::eof();
    }

private:
    int m_error;
};

TEST(ConsoleTest, ColourIsUsedOnATerminal)
{
    EXPECT_TRUE(isColourWanted(true, nullptr, "xterm"));
    EXPECT_TRUE(isColourWanted(true, "", "xterm"));
}

TEST(ConsoleTest, ColourIsNotUsedElsewhere)
{
    EXPECT_FALSE(isColourWanted(false, nullptr, "xterm"));
    EXPECT_FALSE(isColourWanted(true, nullptr, "dumb"));
    EXPECT_FALSE(isColourWanted(true, nullptr, nullptr));
}

TEST(ConsoleTest, NoColorIsHonoured)
{
    EXPECT_FALSE(isColourWanted(true, "1", "xterm"));
}

TEST(ConsoleTest, PaintedTextIsEnclosedInSequences)
{
    TestConsole console(true);

    EXPECT_EQ(console.console().paint(Colour::Red, "dead"), "\033[31mdead\033[0m");
    EXPECT_EQ(console.console().paint(Colour::None, "dead"), "dead");
    EXPECT_EQ(console.console().paint(Colour::Red, ""), "");
}

TEST(ConsoleTest, WithoutColourPaintingChangesNothing)
{
    TestConsole console;

    EXPECT_EQ(console.console().paint(Colour::Red, "dead"), "dead");
}

TEST(ConsoleTest, AnswerAndRemarksAreApart)
{
    TestConsole console;

    console.console().print("answer\n");
    console.console().remark("reason");

    EXPECT_EQ(console.answer(), "answer\n");
    EXPECT_EQ(console.remarks(), "dorn: reason\n");
}

TEST(ConsoleTest, ProgressIsShownOnATerminalInPlaceOfTheLast)
{
    TestConsole console(false, true);

    console.console().showProgress("half");
    console.console().showProgress("");

    EXPECT_EQ(console.remarks(), "\r\033[Khalf\r\033[K");
    EXPECT_EQ(console.answer(), "");
}

TEST(ConsoleTest, ProgressIsForNobodyElse)
{
    TestConsole console;

    console.console().showProgress("half");

    EXPECT_EQ(console.remarks(), "");
}

TEST(ConsoleTest, AnswerThatCannotBeWrittenIsAFailure)
{
    BrokenBuffer full(ENOSPC);
    std::ostream answer(&full);
    std::ostringstream remarks;
    Console console(answer, remarks, false);

    console.print("answer\n");

    EXPECT_TRUE(console.isClosed());
    EXPECT_FALSE(console.finish());
    EXPECT_EQ(remarks.str(), "dorn: the answer cannot be written: No space left on device\n");
}

TEST(ConsoleTest, ReaderWhoHasSeenEnoughIsNoFailure)
{
    BrokenBuffer closed(EPIPE);
    std::ostream answer(&closed);
    std::ostringstream remarks;
    Console console(answer, remarks, false);

    console.printLine("answer");

    EXPECT_TRUE(console.isClosed());
    EXPECT_TRUE(console.finish());
    EXPECT_EQ(remarks.str(), "");
}

} // namespace
} // namespace dorn::tool
