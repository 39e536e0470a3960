// SPDX-License-Identifier: MIT
#include "board/Keyboard.hpp"

#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using Keys = std::vector<Key>;

TEST(KeyboardTest, LettersAreKeys)
{
    EXPECT_EQ(Keyboard().keysOf("sq"), (Keys{'s', 'q'}));
    EXPECT_EQ(Keyboard().keysOf(""), Keys());
    EXPECT_EQ(Keyboard().keysOf("\003"), Keys{interruptKey});
    EXPECT_EQ(Keyboard().keysOf("\014"), Keys{redrawKey});
}

TEST(KeyboardTest, EscapeAloneIsAKey)
{
    EXPECT_EQ(Keyboard().keysOf("\033"), Keys{escapeKey});
}

TEST(KeyboardTest, SequencesOfOtherKeysAreNone)
{
    EXPECT_EQ(Keyboard().keysOf("\033[A"), Keys());
    EXPECT_EQ(Keyboard().keysOf("\033OP"), Keys());
    EXPECT_EQ(Keyboard().keysOf("\033[15~q"), Keys{'q'});
    EXPECT_EQ(Keyboard().keysOf("\033[1;5Cq"), Keys{'q'});
}

TEST(KeyboardTest, SequenceThatIsCutGoesOnInTheNextBytes)
{
    Keyboard keyboard;
    EXPECT_EQ(keyboard.keysOf("\033[1"), Keys());
    EXPECT_EQ(keyboard.keysOf(";5"), Keys());
    EXPECT_EQ(keyboard.keysOf("Ck"), Keys{'k'});
}

TEST(KeyboardTest, LetterWithAltIsNone)
{
    EXPECT_EQ(Keyboard().keysOf("\033qh"), Keys{'h'});
}

} // namespace
} // namespace dorn::tool
