// SPDX-License-Identifier: MIT
#include "answers/LinkText.hpp"

#include "TestConsole.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using namespace examples;

const SLink up{{"cpri0"}, ELinkStandard_Cpri, 20, 0, 4, 0, 0, 614, 12};
const SLink down{{"cpri1"},
                 ELinkStandard_Cpri,
                 21,
                 ELinkPart_Receive | ELinkPart_Transmit,
                 0,
                 0,
                 ELinkCondition_Los | ELinkCondition_Lof,
                 0,
                 3};
const SLink reported{{"cpri2"}, ELinkStandard_Cpri, 22, ELinkPart_Transmit, 4, 0, ELinkCondition_RemoteLos, 1, 4};
const SLink obsai{{"obsai0"}, ELinkStandard_Obsai, 0, 0, 5, 4, 0, 31, 10};
const SLink half{{"obsai1"}, ELinkStandard_Obsai, 1, ELinkPart_Framing, 2, 2, 0, 0, 5};

TEST(LinkTextTest, LinksAreATable)
{
    TestConsole console;

    EXPECT_EQ(linkTable({up, down, reported, obsai, half}, console),
              "LINK    ID  RX            TX        DELAY  EVENTS  BROKEN             CONDITIONS\n"
              "cpri0   20  HFNSYNC       -         614    12      -                  -\n"
              "cpri1   21  XACQ1         -         0      3       receive, transmit  LOS, LOF\n"
              "cpri2   22  HFNSYNC       -         1      4       transmit           remote LOS\n"
              "obsai0  0   FRAME         FRAME     31     10      -                  -\n"
              "obsai1  1   WAIT_FOR_ACK  IDLE_ACK  0      5       framing            -\n");
}

TEST(LinkTextTest, LinkThatIsUpIsGreenAndAnyOtherRed)
{
    TestConsole console(true);

    const std::string text = linkTable({up, down, obsai, half}, console);

    EXPECT_NE(text.find(console.console().paint(Colour::Green, "HFNSYNC")), std::string::npos);
    EXPECT_NE(text.find(console.console().paint(Colour::Green, "FRAME")), std::string::npos);
    EXPECT_NE(text.find(console.console().paint(Colour::Red, "XACQ1")), std::string::npos);
    EXPECT_NE(text.find(console.console().paint(Colour::Red, "WAIT_FOR_ACK")), std::string::npos);
}

TEST(LinkTextTest, LinksAreJson)
{
    EXPECT_EQ(linksJson({down, half}).dump(),
              R"([{"name":"cpri1","standard":"CPRI","id":21,"rx":"XACQ1","tx":null,"delay":0,"events":3,)"
              R"("broken":["receive","transmit"],"conditions":["LOS","LOF"]},)"
              R"({"name":"obsai1","standard":"OBSAI","id":1,"rx":"WAIT_FOR_ACK","tx":"IDLE_ACK","delay":0,"events":5,)"
              R"("broken":["framing"],"conditions":[]}])");
}

TEST(LinkTextTest, WhatHasNoNameIsANumber)
{
    TestConsole console;
    SLink strange = half;
    strange.standard = 9;
    strange.rxState = 77;
    strange.txState = 88;

    EXPECT_EQ(linksJson({strange}).dump(),
              R"([{"name":"obsai1","standard":"9","id":1,"rx":"77","tx":"88","delay":0,"events":5,)"
              R"("broken":["framing"],"conditions":[]}])");
}

TEST(LinkTextTest, NamesAreLines)
{
    SLink endless = up;
    endless.name.fill('x');
    endless.name[3] = '\n';

    EXPECT_EQ(linkNames({up, obsai}), "cpri0\nobsai0\n");
    EXPECT_EQ(linkNames({endless}), "xxx\\nxxxxxxxx\n")
        << "a name that fills its place, and says nothing to the terminal";
}

} // namespace
} // namespace dorn::tool
