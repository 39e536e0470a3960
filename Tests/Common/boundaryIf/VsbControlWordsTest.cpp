// SPDX-License-Identifier: MIT
#include "boundaryIf/baseband/cpri/VsbControlWords.hpp"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace vel::hwapi::common::bif::baseband::cpri;
using vel::hwapi::common::InvalidParameterException;
using Index = VsbControlWords::ControlByteIndex;

TEST(VsbControlWordsTest, ControlWordHasAByteForEachMultipleOfTheLowestRate)
{
    EXPECT_EQ(VsbControlWords::getControlWordSize(ECpriLinkRate_unknown), 0U);
    EXPECT_EQ(VsbControlWords::getControlWordSize(ECpriLinkRate_1x), 1U);
    EXPECT_EQ(VsbControlWords::getControlWordSize(ECpriLinkRate_2x), 2U);
    EXPECT_EQ(VsbControlWords::getControlWordSize(ECpriLinkRate_4x), 4U);
    EXPECT_EQ(VsbControlWords::getControlWordSize(ECpriLinkRate_8x), 8U);
    EXPECT_EQ(VsbControlWords::getControlWordSize(ECpriLinkRate_10x), 10U);
}

TEST(VsbControlWordsTest, SubchannelHasFourControlWordsInAHyperframe)
{
    EXPECT_EQ(VsbControlWords().getSize(ECpriLinkRate_1x), 0U);
    EXPECT_EQ(VsbControlWords(16, 1).getSize(ECpriLinkRate_1x), 4U);
    EXPECT_EQ(VsbControlWords(16, 3).getSize(ECpriLinkRate_4x), 48U);
    EXPECT_EQ(VsbControlWords(16, 48).getSize(ECpriLinkRate_10x), 1920U);
}

TEST(VsbControlWordsTest, BytesStandInTheOrderInWhichTheyPassTheLink)
{
    const VsbControlWords words(20, 2);
    std::vector<std::pair<unsigned, unsigned>> places;
    for (std::uint32_t position = 0; position < words.getSize(ECpriLinkRate_2x); ++position) {
        const Index index = words.getIndex(position, ECpriLinkRate_2x);
        places.emplace_back(index.x, index.y);
    }

    EXPECT_THAT(places, testing::ElementsAreArray(std::vector<std::pair<unsigned, unsigned>>{
                            {20, 0},
                            {20, 1},
                            {21, 0},
                            {21, 1}, // Xs = 0
                            {84, 0},
                            {84, 1},
                            {85, 0},
                            {85, 1}, // Xs = 1
                            {148, 0},
                            {148, 1},
                            {149, 0},
                            {149, 1}, // Xs = 2
                            {212, 0},
                            {212, 1},
                            {213, 0},
                            {213, 1}, // Xs = 3
                        }));
}

TEST(VsbControlWordsTest, LastVendorSpecificByteIsInTheLastBasicFrame)
{
    const VsbControlWords all(16, 48);

    EXPECT_EQ(all.getIndex(all.getSize(ECpriLinkRate_10x) - 1, ECpriLinkRate_10x), (Index{255, 9}));
}

TEST(VsbControlWordsTest, ControlWordsOverlapWhenTheyShareASubchannel)
{
    const VsbControlWords words(20, 4);

    EXPECT_TRUE(words.overlaps(words));
    EXPECT_TRUE(words.overlaps({23, 1}));
    EXPECT_TRUE(words.overlaps({16, 5}));
    EXPECT_TRUE(words.overlaps({16, 40}));
    EXPECT_TRUE(words.overlaps({21, 1}));
    EXPECT_FALSE(words.overlaps({16, 4}));
    EXPECT_FALSE(words.overlaps({24, 4}));
    EXPECT_FALSE(words.overlaps({20, 0}));
    EXPECT_FALSE(words.overlaps({22, 0}));
    EXPECT_FALSE(VsbControlWords(22, 0).overlaps(words));
    EXPECT_FALSE(VsbControlWords(0xFFFFFFFF, 0xFFFFFFFF).overlaps(words));
}

/// What is thrown when control words are checked against the pointer p, empty for nothing.
std::string complaintAbout(const VsbControlWords& words, std::uint32_t pointer)
{
    try {
        words.checkVendorSpecific(pointer);
        return {};
    } catch (const InvalidParameterException& exception) {
        return exception.getDescription();
    }
}

TEST(VsbControlWordsTest, VendorSpecificAreaEndsBeforeTheFastChannel)
{
    EXPECT_EQ(complaintAbout({16, 4}, 20), "");
    EXPECT_EQ(complaintAbout({16, 5}, 20), "control words not vendor specific");
    EXPECT_EQ(complaintAbout({19, 1}, 20), "");
    EXPECT_EQ(complaintAbout({20, 1}, 20), "control words not vendor specific");
    EXPECT_EQ(complaintAbout({16, 47}, 63), "");
    EXPECT_EQ(complaintAbout({16, 48}, 63), "control words not vendor specific");
}

TEST(VsbControlWordsTest, VendorSpecificAreaGoesToTheEndWithoutAFastChannel)
{
    EXPECT_EQ(complaintAbout({16, 48}, 0), "");
    EXPECT_EQ(complaintAbout({63, 1}, 0), "");
    EXPECT_EQ(complaintAbout({16, 49}, 0), "control words not vendor specific");
    EXPECT_EQ(complaintAbout({64, 1}, 0), "control words not vendor specific");
    EXPECT_EQ(complaintAbout({17, 0xFFFFFFFF}, 0), "control words not vendor specific");
}

TEST(VsbControlWordsTest, SubchannelsBelow16HaveOtherUses)
{
    for (std::uint32_t subchannel = 0; subchannel < 16; ++subchannel) {
        EXPECT_EQ(complaintAbout({subchannel, 1}, 0), "control words not vendor specific") << subchannel;
    }
    EXPECT_EQ(complaintAbout({16, 1}, 0), "");
}

TEST(VsbControlWordsTest, RegionNeedsControlWords)
{
    EXPECT_EQ(complaintAbout({}, 20), "no control words");
    EXPECT_EQ(complaintAbout({30, 0}, 0), "no control words");
}

TEST(VsbControlWordsTest, PointerIsZeroOr20To63)
{
    for (const std::uint32_t pointer : {1U, 19U, 64U, 194U}) {
        EXPECT_EQ(complaintAbout({16, 1}, pointer), "invalid pointer p") << pointer;
    }
    for (const std::uint32_t pointer : {0U, 20U, 63U}) {
        EXPECT_EQ(complaintAbout({16, 1}, pointer), "") << pointer;
    }
}

} // namespace
