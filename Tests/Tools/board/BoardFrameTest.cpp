// SPDX-License-Identifier: MIT
#include "board/BoardFrame.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using namespace examples;
using namespace std::chrono_literals;

BoardContent contentOf(std::size_t services)
{
    BoardContent content;
    content.board = "demonstration";
    content.node = "node 0x0F01";
    content.age = "2m";
    content.condition = "15 of 15 run";
    content.isWell = true;
    for (std::size_t place = 0; place < services; ++place) {
        content.services.push_back({"Service" + std::to_string(place), std::to_string(1000 + place), "waiting",
                                    Colour::Green, "2m", std::to_string(place)});
    }
    SLink up{{"cpri0"}, ELinkStandard_Cpri, 1, 0, 4, 0, 0, 0, 0};
    SLink down{{"cpri1"}, ELinkStandard_Cpri, 2, 0, 0, 0, ELinkCondition_Los | ELinkCondition_Lof, 0, 0};
    content.picture.links = {Answering::Yes, {up, down}};
    content.picture.cages = {Answering::Yes, {{1, 0, ESfpModule_Ready, 1, 0}, {2, 0xFF, ESfpModule_Empty, 0, 0}}};
    SClockShowResp clock{};
    clock.pllState = 6;
    clock.timerState = 2;
    clock.hasReference = 1;
    clock.timeError = -3.14;
    clock.frequencyError = 0.002;
    content.picture.clock = {Answering::Yes, clock};
    SAlarm alarm{};
    alarm.number = 4;
    alarm.faultId = 1;
    alarm.count = 3;
    content.picture.alarms = {Answering::Yes, {alarm}};
    content.picture.isActiveUnit = false;
    for (int place = 0; place < 60; ++place) {
        const std::string number = std::to_string(place);
        content.events.push_back({1'735'689'600s, "LedS", "event " + number, News::Good});
        content.events.push_back({1'735'689'600s, "LedS", "says: word " + number, News::Said});
        content.picture.messages.push_back("00:00:00.000 message " + number);
        content.picture.log.push_back(
            {1'735'689'600s, EAaSysLogSeverityLevel_Warning, "LedS", 7, "LedSMain", 0, "LED", "line " + number});
    }
    return content;
}

std::string textOf(const Frame& frame)
{
    std::string text;
    for (std::size_t row = 0; row < frame.size().rows; ++row) {
        text += frame.rowText(row) + "\n";
    }
    return text;
}

bool has(const Frame& frame, const std::string& text)
{
    return textOf(frame).find(text) != std::string::npos;
}

TEST(BoardFrameTest, EverythingHasItsPlaceAtEightyByTwentyFour)
{
    const Frame frame = boardFrame(contentOf(15), {24, 80});

    for (const char* const text :
         {"Dorn board demonstration  15 of 15 run  up 2m  node 0x0F01  unit standby", "Service0", "Service14", "1014",
          "cpri0   HFNSYNC", "cpri1   XACQ1  LOS, LOF", "1       ready", "2       empty", "track-max, in-sync",
          "reference there", "-3.1 ns  +0.002 ppb", "ALARMS 1", "4 board-overheated x3", "event 59", "message 59",
          "line 59", "q quit"}) {
        EXPECT_TRUE(has(frame, text)) << text << " is not in\n" << textOf(frame);
    }
}

TEST(BoardFrameTest, GreatTerminalShowsMoreLines)
{
    const auto linesWith = [](const Frame& frame, const std::string& begin) {
        std::size_t count = 0;
        for (int place = 0; place < 60; ++place) {
            count += has(frame, begin + " " + std::to_string(place)) ? 1U : 0U;
        }
        return count;
    };
    const Frame small = boardFrame(contentOf(15), {24, 80});
    const Frame great = boardFrame(contentOf(15), {60, 200});

    EXPECT_GE(linesWith(small, "line"), 2U);
    EXPECT_GT(linesWith(great, "line"), linesWith(small, "line") + 10);
    EXPECT_GT(linesWith(great, "message"), linesWith(small, "message") + 10);
    EXPECT_GT(linesWith(great, "event") + linesWith(great, "word"), linesWith(small, "event") + 5);
}

TEST(BoardFrameTest, WideTerminalShowsEventsBesideTheHardware)
{
    BoardContent content = contentOf(15);
    content.picture.alarms.value.clear();
    const Frame frame = boardFrame(content, {60, 200});

    EXPECT_EQ(frame.rowText(1).find("EVENTS"), 84U) << textOf(frame);
    EXPECT_EQ(frame.rowText(19).find("00:00:00 LedS: says: word 59"), 84U) << textOf(frame);
    EXPECT_EQ(frame.rowText(20).find("msgs"), 0U) << textOf(frame);
    EXPECT_FALSE(has(boardFrame(content, {60, 131}), "EVENTS"));
}

TEST(BoardFrameTest, LongHardwareDoesNotRunIntoTheEvents)
{
    BoardContent content = contentOf(1);
    SAlarm alarm{};
    alarm.number = 4'000'000'000;
    alarm.faultId = 4'000'000'000;
    alarm.count = 4'000'000'000;
    content.picture.alarms = {Answering::Yes, {alarm}};

    const Frame frame = boardFrame(content, {60, 200});

    EXPECT_EQ(frame.at(2, 82).character, U' ') << textOf(frame);
    EXPECT_EQ(frame.at(2, 83).character, U' ') << textOf(frame);
}

TEST(BoardFrameTest, EndIsShownWithWhatAKeyDoesThen)
{
    BoardContent content = contentOf(2);
    content.isEnding = true;
    const Frame frame = boardFrame(content, {24, 80});
    EXPECT_TRUE(has(frame, "q once more kills what still runs"));
    EXPECT_FALSE(has(frame, "s SFP"));
}

TEST(BoardFrameTest, FeatureWithTheNameOfItsServiceIsToldOnce)
{
    BoardContent content = contentOf(2);
    content.picture.log.back().featureName = "LedS";
    const Frame frame = boardFrame(content, {24, 80});
    EXPECT_TRUE(has(frame, "00:00:00 LedS LED  line 58")) << textOf(frame);
    EXPECT_TRUE(has(frame, "00:00:00 LedS  line 59")) << textOf(frame);
}

TEST(BoardFrameTest, WhereThereIsLittleRoomMinorNewsAreLeftOut)
{
    EXPECT_FALSE(has(boardFrame(contentOf(15), {24, 80}), "says: word"));
    EXPECT_TRUE(has(boardFrame(contentOf(15), {60, 80}), "says: word 59"));
}

TEST(BoardFrameTest, ServicesForWhichThereIsNoRoomAreCounted)
{
    EXPECT_TRUE(has(boardFrame(contentOf(40), {24, 80}), "and 26 more, for which there is no room"))
        << textOf(boardFrame(contentOf(40), {24, 80}));
}

TEST(BoardFrameTest, NoSizeIsTooSmall)
{
    for (std::size_t rows = 0; rows < 30; ++rows) {
        for (const std::size_t columns : {0U, 1U, 10U, 49U, 81U}) {
            EXPECT_EQ(boardFrame(contentOf(15), {rows, columns}).size(), (FrameSize{rows, columns}));
        }
    }
}

TEST(BoardFrameTest, ServiceThatDoesNotAnswerShowsAsSuch)
{
    BoardContent content = contentOf(1);
    content.picture.links.state = Answering::No;
    content.picture.cages.state = Answering::Gone;
    content.picture.clock.state = Answering::Gone;

    const Frame frame = boardFrame(content, {24, 80});

    EXPECT_TRUE(has(frame, "LINKS  no answer"));
    EXPECT_TRUE(has(frame, "SFP CAGES  no service"));
    EXPECT_TRUE(has(frame, "CLOCK  no service"));
    EXPECT_FALSE(has(frame, "track-max")) << "what nobody says any more";
}

TEST(BoardFrameTest, StateIsInItsColour)
{
    BoardContent content = contentOf(1);
    content.services.front().state = "stopped";
    content.services.front().colour = Colour::Red;

    const Frame frame = boardFrame(content, {24, 80});

    const std::size_t column = frame.rowText(2).find("stopped");
    ASSERT_NE(column, std::string::npos);
    EXPECT_EQ(frame.at(2, column).colour, Colour::Red);
    EXPECT_EQ(frame.at(2, 0).colour, Colour::None);
}

TEST(BoardFrameTest, MenuOffersAllItsItems)
{
    std::vector<Menu::Item> items;
    for (int place = 0; place < 27; ++place) {
        items.push_back({"ddal_function_number_" + std::to_string(place), [] {}});
    }
    const Menu menu("Which function?", std::move(items));
    BoardContent content = contentOf(15);
    content.menu = &menu;

    const Frame frame = boardFrame(content, {24, 80});

    EXPECT_TRUE(has(frame, "Which function?"));
    EXPECT_TRUE(has(frame, "a  ddal_function_number_0"));
    EXPECT_TRUE(has(frame, "A  ddal_function_number_26")) << textOf(frame);
    EXPECT_TRUE(has(frame, "Esc leaves it"));
}

TEST(BoardFrameTest, HelpFitsIntoTheSmallestUsualTerminal)
{
    BoardContent content = contentOf(15);
    content.isHelpWanted = true;

    const Frame frame = boardFrame(content, {24, 80});

    EXPECT_TRUE(has(frame, "q  end all services, and quit"));
    EXPECT_TRUE(has(frame, "any key goes back"));
    EXPECT_FALSE(has(frame, ">\n")) << "a line of it is cut";
}

} // namespace
} // namespace dorn::tool
