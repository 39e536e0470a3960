// SPDX-License-Identifier: MIT
// Our own providers keep every rule.
#include "Sanitizers.hpp"
#include "SuiteRun.hpp"

#include <gmock/gmock.h>

namespace dorn::conformance {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class OwnProviderTest : public SuiteTest {};

#if defined(DORN_COMMAND)
constexpr bool hasCommand = true;
#else
constexpr bool hasCommand = false;
#define DORN_COMMAND ""
#endif

/// Rules that sanitizers get in the way of, and one that needs the operator's command.
std::set<std::string> skippedHere()
{
    std::set<std::string> skipped;
    if (!hasCommand) {
        skipped.insert("trouble.callbacks-are-called");
    }
    if (test::hasThreadSanitizer) {
        skipped.insert({"startup.shutdown-handler-is-called", "startup.requests-within-a-second-are-one"});
    }
    if (test::hasAddressSanitizer || test::hasThreadSanitizer) {
        skipped.insert({"sem.take-is-cancelled", "eu.receive-is-cancelled", "memory.last-reference-frees"});
    }
    return skipped;
}

TEST_F(OwnProviderTest, EveryRuleIsKept)
{
    m_node.writeBoardFile("/opt/conformance.xml", "<dorn><tag name=\"conformance.file\">1</tag></dorn>");
    m_node.writeBoardFile("/opt/image", std::string(1000, 'i'));
    std::vector<std::string> arguments = boardArguments();
    arguments.insert(arguments.end(), {"--destructive", "--tag-file", "/opt/conformance.xml", "--boot-image",
                                       "/opt/image", "--fpga-image", "/opt/image"});
    if (hasCommand) {
        arguments.insert(arguments.end(), {"--collect", "'" DORN_COMMAND "' snapshot --timeout 20 '" +
                                                            m_node.boardPath("/opt/s.tar.gz") + "' >/dev/null"});
    }

    const SuiteRun run = runSuite(DORN_CONFORMANCE, arguments);

    EXPECT_EQ(run.status, 0) << run.output << run.errors;
    EXPECT_THAT(run.rules("BROKEN"), IsEmpty()) << run.output;
    EXPECT_THAT(run.rules("skipped"), ElementsAreArray(skippedHere())) << run.output;
    EXPECT_EQ(run.rules("kept").size() + skippedHere().size(), listedRules().size());
}

TEST_F(OwnProviderTest, WithoutOptionsNothingIsChangedAndWhatIsNotTriedIsNamed)
{
    const SuiteRun run = runSuite(
        DORN_CONFORMANCE, {"flash.*", "reset.*", "rio.*", "tag.own-file-is-read", "trouble.callbacks-are-called"});

    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.rules("kept"), ElementsAreArray({"rio.own-id-is-read", "rio.unknown-handles-are-refused",
                                                     "rio.wrong-opens-are-refused"}));
    EXPECT_THAT(run.output, ::testing::HasSubstr("reset.reboot-does-not-return\n"
                                                 "         it changes the board: try it with --destructive\n"));
    EXPECT_THAT(run.output, ::testing::HasSubstr("rio.memory-is-read\n"
                                                 "         name 256 bytes of a device's memory with --rio "
                                                 "PORT:DEVICE:ADDRESS\n"));
    EXPECT_THAT(run.output, ::testing::EndsWith("12 rules: 3 kept, 0 broken, 9 skipped\n"));
}

TEST_F(OwnProviderTest, SecondRunOnANodeIsLikeTheFirst)
{
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(runSuite(DORN_CONFORMANCE, {"parameter.*", "tag.text-is-kept", "address.*"}).status, 0);
    }
}

} // namespace
} // namespace dorn::conformance
