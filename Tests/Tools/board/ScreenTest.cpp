// SPDX-License-Identifier: MIT
#include "board/Screen.hpp"

#include "port/Descriptor.hpp"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

/// A screen at the end of a pipe, which takes no more than it holds until somebody reads.
class ScreenTest : public ::testing::Test {
protected:
    ScreenTest()
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
        m_toRead.reset(ends[0]);
        m_toWrite.reset(ends[1]);
        fcntl(m_toWrite.get(), F_SETPIPE_SZ, 4096);
    }
    std::string written() const
    {
        std::string text;
        std::array<char, 4096> part{};
        for (ssize_t size = 0; (size = read(m_toRead.get(), part.data(), part.size())) > 0;) {
            text.append(part.data(), static_cast<std::size_t>(size));
        }
        return text;
    }
    static Frame frameOf(const std::string& text, FrameSize size = {3, 20})
    {
        Frame frame(size);
        frame.put(1, 2, text);
        return frame;
    }

    host::Descriptor m_toRead;
    host::Descriptor m_toWrite;
};

TEST_F(ScreenTest, FirstPictureIsDrawnOnAnEmptyPage)
{
    Screen screen(m_toWrite.get(), false);
    EXPECT_TRUE(screen.show(frameOf("abc")));
    EXPECT_EQ(written(), "\033[0m\033[2J\033[2;3Habc");
}

TEST_F(ScreenTest, ForgottenPictureIsDrawnFromTheBeginning)
{
    Screen screen(m_toWrite.get(), false);
    screen.show(frameOf("abc"));
    const std::string first = written();
    screen.forget();
    screen.show(frameOf("abc"));
    EXPECT_EQ(written(), first);
}

TEST_F(ScreenTest, OnlyWhatHasChangedIsWritten)
{
    Screen screen(m_toWrite.get(), false);
    screen.show(frameOf("abcdef"));
    written();
    screen.show(frameOf("abXYef"));
    EXPECT_EQ(written(), "\033[2;5HXY");
    screen.show(frameOf("abXYef"));
    EXPECT_EQ(written(), "");
}

TEST_F(ScreenTest, ColoursAreWrittenWhereTheyAreWanted)
{
    Frame frame({1, 10});
    frame.put(0, 0, "a");
    frame.put(0, 1, "bc", Colour::Red);
    frame.put(0, 3, "d");
    Screen coloured(m_toWrite.get(), true);
    coloured.show(frame);
    EXPECT_EQ(written(), "\033[0m\033[2J\033[1;1Ha\033[0m\033[31mbc\033[0md");
    Screen plain(m_toWrite.get(), false);
    plain.show(frame);
    EXPECT_EQ(written(), "\033[0m\033[2J\033[1;1Habcd");
}

TEST_F(ScreenTest, ColourAtTheEndIsTakenBack)
{
    Frame frame({1, 10});
    frame.put(0, 0, "a", Colour::Green);
    Screen screen(m_toWrite.get(), true);
    screen.show(frame);
    EXPECT_EQ(written(), "\033[0m\033[2J\033[1;1H\033[0m\033[32ma\033[0m");
}

TEST_F(ScreenTest, OtherSizeIsDrawnAnew)
{
    Screen screen(m_toWrite.get(), false);
    screen.show(frameOf("abc"));
    written();
    screen.show(frameOf("abc", {4, 30}));
    EXPECT_EQ(written(), "\033[0m\033[2J\033[2;3Habc");
}

TEST_F(ScreenTest, SlowTerminalIsNotWaitedForAndShownFewerPictures)
{
    Frame great({100, 100});
    for (std::size_t row = 0; row < 100; ++row) {
        great.put(row, 0, std::string(100, 'a'));
    }
    Screen screen(m_toWrite.get(), false);
    EXPECT_TRUE(screen.show(great));
    EXPECT_TRUE(screen.isBusy());

    great.put(50, 50, "dropped");
    EXPECT_FALSE(screen.show(great));
    great.put(50, 50, "ARRIVES");

    std::string all;
    while (screen.isBusy()) {
        all += written();
        screen.flush();
    }
    all += written();
    EXPECT_EQ(all.find("dropped"), std::string::npos);
    EXPECT_TRUE(screen.show(great));
    EXPECT_EQ(written(), "\033[51;51HARRIVES");
}

TEST_F(ScreenTest, TerminalThatIsGoneIsSeen)
{
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    Screen screen(m_toWrite.get(), false);
    m_toRead.reset();
    screen.show(frameOf("abc"));
    EXPECT_TRUE(screen.isBroken());
    std::signal(SIGPIPE, before);
}

} // namespace
} // namespace dorn::tool
