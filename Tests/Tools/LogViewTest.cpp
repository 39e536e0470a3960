// SPDX-License-Identifier: MIT
#include "answers/LogView.hpp"

#include "Outcome.hpp"
#include "TestConsole.hpp"

#include <gmock/gmock.h>

namespace dorn::tool {
namespace {

using ::testing::ThrowsMessage;

host::LogLine line()
{
    return {std::chrono::seconds(1'735'689'600),
            EAaSysLogSeverityLevel_Warning,
            "ClimateS",
            4711,
            "ClimateSMain",
            0x20047,
            "ClimateS",
            "Board 80 C"};
}

TEST(LogViewTest, WithoutAFilterEveryLineIsShown)
{
    EXPECT_TRUE(LogFilter().accepts(line()));
    EXPECT_TRUE(LogFilter().isOpen());
}

TEST(LogViewTest, FeatureIsKnownByNameOrNumber)
{
    EXPECT_TRUE((LogFilter{{"ClimateS"}, {}, {}}).accepts(line()));
    EXPECT_TRUE((LogFilter{{"LED", "0x20047"}, {}, {}}).accepts(line()));
    EXPECT_TRUE((LogFilter{{"131143"}, {}, {}}).accepts(line()));
    EXPECT_FALSE((LogFilter{{"LED", "0x20048"}, {}, {}}).accepts(line()));
}

TEST(LogViewTest, LineWithoutFeatureHasNoNumber)
{
    host::LogLine plain = line();
    plain.featureId = 0;
    plain.featureName.clear();

    EXPECT_FALSE((LogFilter{{"0"}, {}, {}}).accepts(plain));
}

TEST(LogViewTest, ServiceIsKnownByName)
{
    EXPECT_TRUE((LogFilter{{}, {"LedS", "ClimateS"}, {}}).accepts(line()));
    EXPECT_FALSE((LogFilter{{}, {"Climate"}, {}}).accepts(line()));
}

TEST(LogViewTest, SeverityIsTheLeast)
{
    EXPECT_TRUE((LogFilter{{}, {}, EAaSysLogSeverityLevel_Info}).accepts(line()));
    EXPECT_TRUE((LogFilter{{}, {}, EAaSysLogSeverityLevel_Warning}).accepts(line()));
    EXPECT_FALSE((LogFilter{{}, {}, EAaSysLogSeverityLevel_Error}).accepts(line()));
}

TEST(LogViewTest, LineMeetsAllThatIsAskedFor)
{
    EXPECT_FALSE((LogFilter{{"ClimateS"}, {"LedS"}, {}}).accepts(line()));
    EXPECT_FALSE((LogFilter{{"ClimateS"}, {}, {}}).isOpen());
}

TEST(LogViewTest, SeverityIsGivenByItsWord)
{
    EXPECT_EQ(parseSeverity("--severity", "debug"), EAaSysLogSeverityLevel_Debug);
    EXPECT_EQ(parseSeverity("--severity", "vip"), EAaSysLogSeverityLevel_Vip);
    for (const std::string word : {"none", "notvalid", "fatal", "3"}) {
        EXPECT_THAT(
            [&word] { parseSeverity("--severity", word); },
            ThrowsMessage<UsageError>("--severity: '" + word + "' is none of debug, info, warning, error, vip"));
    }
}

TEST(LogViewTest, LineIsShownInItsTextForm)
{
    TestConsole console;

    EXPECT_EQ(logLineText(line(), console),
              "2025-01-01T00:00:00.000000Z warning ClimateS[4711] ClimateSMain ClimateS Board 80 C");
}

TEST(LogViewTest, SeverityIsColoured)
{
    TestConsole console(true);

    EXPECT_EQ(logLineText(line(), console), "2025-01-01T00:00:00.000000Z \033[33mwarning\033[0m ClimateS[4711] "
                                            "ClimateSMain ClimateS Board 80 C");
}

TEST(LogViewTest, JsonTellsTheSame)
{
    EXPECT_EQ(jsonLine(logLineJson(line())),
              R"({"time":"2025-01-01T00:00:00.000000Z","severity":"warning","service":"ClimateS","pid":4711,)"
              R"("eu":"ClimateSMain","feature":"ClimateS","featureId":131143,"text":"Board 80 C"})");
}

} // namespace
} // namespace dorn::tool
