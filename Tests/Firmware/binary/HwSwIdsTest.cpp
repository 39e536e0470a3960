// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaGpuXml.hpp"
#include "SyslogCapture.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace dorn::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class HwSwIdsTest : public ::testing::Test {
protected:
    /// @param content of the element "trailer"
    std::uint32_t scan(const std::string& content, std::uint32_t own, std::int32_t minor) const
    {
        const std::unique_ptr<AaGpuXmlNode> root(
            AaGpuXmlParser(0).AaGpuXmlParse("<trailer>" + content + "</trailer>", ""));
        return scan_hwswid(FindXmlTag(root.get(), "trailer"), own, minor);
    }

    static constexpr const char* one = "<HwSwIdList><HwSwId>3A01</HwSwId></HwSwIdList>";
    static constexpr const char* found = "info scan_hwswid(): Found HwSwId: 0x3a01";
    static constexpr const char* notAllowed = "info scan_hwswid(): HwSwId minor difference is not allowed";

    SyslogCapture m_syslog;
};

TEST_F(HwSwIdsTest, ListThatIsMissing)
{
    EXPECT_EQ(scan("<HwSwId>3A01</HwSwId>", 0x3A01, 1), 70411U);
    EXPECT_EQ(scan_hwswid(nullptr, 0x3A01, 1), 70411U);
    EXPECT_THAT(m_syslog.texts(), IsEmpty());
}

TEST_F(HwSwIdsTest, EqualIdIsFound)
{
    EXPECT_EQ(scan(one, 0x3A01, 0), 0U);
    EXPECT_THAT(m_syslog.texts(), ElementsAre(found, "info scan_hwswid(): Matching HwSwId found: 0x3a01"));
}

TEST_F(HwSwIdsTest, IdsAreLoggedAsFarAsTheOneThatFits)
{
    EXPECT_EQ(scan("<HwSwIdList><HwSwId>1</HwSwId><HwSwId>3A01</HwSwId><HwSwId>2</HwSwId></HwSwIdList>", 0x3A01, 1),
              0U);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info scan_hwswid(): Found HwSwId: 0x1", found,
                                              "info scan_hwswid(): Matching HwSwId found: 0x3a01"));
}

TEST_F(HwSwIdsTest, EqualIdIsPreferredToOneBeforeIt)
{
    EXPECT_EQ(scan("<HwSwIdList><HwSwId>3A02</HwSwId><HwSwId>3A01</HwSwId></HwSwIdList>", 0x3A01, 1), 0U);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info scan_hwswid(): Found HwSwId: 0x3a02", found,
                                              "info scan_hwswid(): Matching HwSwId found: 0x3a01"));
}

TEST_F(HwSwIdsTest, IdsAreHexadecimalWithAndWithoutPrefix)
{
    EXPECT_EQ(scan("<HwSwIdList><HwSwId>0x3A01</HwSwId></HwSwIdList>", 0x3A01, 0), 0U);
    EXPECT_EQ(scan("<HwSwIdList><HwSwId>0X3a01</HwSwId></HwSwIdList>", 0x3A01, 0), 0U);
    EXPECT_EQ(scan("<HwSwIdList><HwSwId> 3a01 </HwSwId></HwSwIdList>", 0x3A01, 0), 0U);
    EXPECT_EQ(scan("<HwSwIdList><HwSwId>14849</HwSwId></HwSwIdList>", 0x3A01, 1), 70411U);
    EXPECT_EQ(scan("<HwSwIdList><HwSwId>1FFFFFFFF</HwSwId></HwSwIdList>", 0xFFFFFFFF, 0), 0U);
}

TEST_F(HwSwIdsTest, ChildrenWithOtherNamesAreSkipped)
{
    EXPECT_EQ(scan("<HwSwIdList><hwswid>3A01</hwswid><Id>3A01</Id><HwSwId>3A01</HwSwId></HwSwIdList>", 0x3A01, 0), 0U);
    EXPECT_THAT(m_syslog.texts(), ElementsAre(found, "info scan_hwswid(): Matching HwSwId found: 0x3a01"));
}

TEST_F(HwSwIdsTest, ChildrenWithOtherNamesAreSkippedByBothPasses)
{
    EXPECT_EQ(scan("<HwSwIdList><hwswid>3A07</hwswid><HwSwId>3A01</HwSwId></HwSwIdList>", 0x3A02, 1), 0U);
    EXPECT_THAT(
        m_syslog.texts(),
        ElementsAre(found, found, "info scan_hwswid(): Found matching HwSwId with minor version difference: 0x3a01"));
    EXPECT_EQ(scan("<HwSwIdList><hwswid>3A01</hwswid><Id>3A01</Id></HwSwIdList>", 0x3A02, 1), 70411U);
    EXPECT_THAT(m_syslog.texts(), SizeIs(3));
}

TEST_F(HwSwIdsTest, MinorDifferenceIsAcceptedWhenAllowed)
{
    EXPECT_EQ(scan(one, 0x3A02, 1), 0U);
    EXPECT_THAT(
        m_syslog.texts(),
        ElementsAre(found, found, "info scan_hwswid(): Found matching HwSwId with minor version difference: 0x3a01"));
}

TEST_F(HwSwIdsTest, MinorDifferenceIsRefusedWhenNotAllowed)
{
    EXPECT_EQ(scan(one, 0x3A02, 0), 70411U);
    EXPECT_THAT(m_syslog.texts(), ElementsAre(found, notAllowed));
}

TEST_F(HwSwIdsTest, OtherBoardIsRefusedEitherWay)
{
    EXPECT_EQ(scan(one, 0x3B01, 0), 70411U);
    EXPECT_THAT(m_syslog.texts(), ElementsAre(found, notAllowed));
    EXPECT_EQ(scan(one, 0x3B01, 1), 70411U);
    EXPECT_THAT(m_syslog.texts(), ElementsAre(found, notAllowed, found, found));
}

TEST_F(HwSwIdsTest, MinorVersionIsTheLowestByte)
{
    EXPECT_EQ(scan(one, 0x3AFF, 1), 0U);
    EXPECT_EQ(scan(one, 0x3A00, 1), 0U);
    EXPECT_EQ(scan(one, 0x3B01, 1), 70411U);
    EXPECT_EQ(scan(one, 0x80003A01, 1), 70411U);
}

TEST_F(HwSwIdsTest, AnyMinorThatIsNotZeroAllows)
{
    EXPECT_EQ(scan(one, 0x3A02, -1), 0U);
    EXPECT_EQ(scan(one, 0x3A02, 256), 0U);
}

TEST_F(HwSwIdsTest, FirstMinorDifferenceIsTaken)
{
    EXPECT_EQ(scan("<HwSwIdList><HwSwId>1</HwSwId><HwSwId>3A07</HwSwId><HwSwId>3A08</HwSwId></HwSwIdList>", 0x3A01, 1),
              0U);
    EXPECT_THAT(m_syslog.texts(),
                ElementsAre("info scan_hwswid(): Found HwSwId: 0x1", "info scan_hwswid(): Found HwSwId: 0x3a07",
                            "info scan_hwswid(): Found HwSwId: 0x3a08", "info scan_hwswid(): Found HwSwId: 0x1",
                            "info scan_hwswid(): Found HwSwId: 0x3a07",
                            "info scan_hwswid(): Found matching HwSwId with minor version difference: 0x3a07"));
}

TEST_F(HwSwIdsTest, EmptyListFitsNobody)
{
    EXPECT_EQ(scan("<HwSwIdList/>", 0, 1), 70411U);
    EXPECT_THAT(m_syslog.texts(), IsEmpty());
    EXPECT_EQ(scan("<HwSwIdList></HwSwIdList>", 0, 0), 70411U);
    EXPECT_THAT(m_syslog.texts(), ElementsAre(notAllowed));
}

TEST_F(HwSwIdsTest, IdWithoutDigitsIsZero)
{
    EXPECT_EQ(scan("<HwSwIdList><HwSwId>none</HwSwId></HwSwIdList>", 0, 0), 0U);
}

TEST_F(HwSwIdsTest, OnlyTheFirstListCounts)
{
    EXPECT_EQ(scan("<HwSwIdList/><HwSwIdList><HwSwId>3A01</HwSwId></HwSwIdList>", 0x3A01, 1), 70411U);
}

} // namespace
} // namespace dorn::test
