// SPDX-License-Identifier: MIT
// Providers that are wrong are found, and the rule is named that they break.
#include "Sanitizers.hpp"
#include "SuiteRun.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <string_view>

namespace dorn::conformance {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

/// An environment variable of this process and its children.
class Variable {
public:
    Variable(const char* name, const std::string& value) : m_name(name) { setenv(name, value.c_str(), 1); }
    ~Variable() { unsetenv(m_name); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* m_name;
};

/// The functions of the seams, as the TestKit's table has them.
std::vector<std::string> seamFunctions()
{
    std::ifstream table(DORN_SEAM_TABLE);
    std::vector<std::string> functions;
    for (std::string line; std::getline(table, line);) {
        std::istringstream words(line);
        std::string header;
        std::string function;
        if (words >> header >> function && header.starts_with('"')) {
            functions.push_back(function);
        }
    }
    return functions;
}

/// Functions whose usual failure is a result that a right provider may give, too; Defects.cpp has worse for them.
constexpr std::array<std::string_view, 5> failuresThatMayBe{
    "AaCpuBitSwapByteOrder32", "AaSysComGetOwnNid", "AaSysComNmapGetBoard", "AaSysComNmapGetCpu", "ddal_unit_get_board",
};

/// Functions that do nothing when they fail, which the rules that a sanitizer gets in the way of would notice.
constexpr std::array<std::string_view, 3> noticedWithoutSanitizer{"AaMemUnRef", "AaMemUnRefDbg",
                                                                  "AaStartupSetShutdownHandler"};

class FailingFunctionTest : public SuiteTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(FailingFunctionTest, IsFoundByARuleOfItsOwn)
{
    if ((test::hasAddressSanitizer || test::hasThreadSanitizer) &&
        std::ranges::find(noticedWithoutSanitizer, GetParam()) != noticedWithoutSanitizer.end()) {
        GTEST_SKIP() << "the rule that would notice it is skipped";
    }
    const Variable failing("DORN_FAILING", GetParam());
    std::vector<std::string> arguments = boardArguments();
    arguments.insert(arguments.end(), {"--bound", "1", "--destructive", "--function", GetParam()});

    const SuiteRun run = runSuite(DORN_CONFORMANCE_FAILING, arguments);

    EXPECT_EQ(run.status, 1) << run.output << run.errors;
    EXPECT_THAT(run.output, HasSubstr(GetParam()));
}

std::vector<std::string> functionsThatAreMissed()
{
    std::vector<std::string> functions = seamFunctions();
    std::erase_if(functions, [](const std::string& function) {
        return std::ranges::find(failuresThatMayBe, function) != failuresThatMayBe.end();
    });
    return functions;
}

INSTANTIATE_TEST_SUITE_P(All, FailingFunctionTest, ::testing::ValuesIn(functionsThatAreMissed()),
                         [](const auto& test) { return test.param; });

/// A defect of Defects.cpp and the rule that it breaks.
struct Defect {
    const char* name;
    const char* rule;
};

constexpr std::array defects{
    Defect{"memory is not aligned", "memory.malloc.is-usable"},
    Defect{"memory leaks", "memory.last-reference-frees"},
    Defect{"byte order is always swapped", "cpu.little-endian-word-is-converted"},
    Defect{"time-outs are milliseconds", "sem.take.times-out"},
    Defect{"poll waits", "sem.take.no-wait-does-not-wait"},
    Defect{"give counts twice", "sem.each-give-wakes-one"},
    Defect{"destroy leaves the handle", "sem.destroy-sets-the-handle-to-null"},
    Defect{"mutex does not exclude", "mutex.excludes-others"},
    Defect{"anybody gives a mutex", "mutex.only-the-holder-gives"},
    Defect{"all threads are one EU", "eu.foreign-thread-is-an-eu"},
    Defect{"handler stays", "startup.null-handler-restores"},
    Defect{"creation never waits", "eu.call-waits-for-the-end"},
    Defect{"priorities are checked", "eu.every-policy-and-priority-runs"},
    Defect{"arguments are not copied", "eu.arguments-are-copied"},
    Defect{"id is stored late", "eu.id-is-stored-first"},
    Defect{"nobody is woken", "receive.wake-up-ends-a-wait"},
    Defect{"held cpids are granted", "address.held-cpid-is-not-granted"},
    Defect{"held cpids are granted", "address.cpid-of-another-process-is-not-granted"},
    Defect{"node changes", "address.own-node-is-stable"},
    Defect{"address is turned round", "address.sicad-is-node-and-cpid"},
    Defect{"every node has a board", "address.node-map-is-stable"},
    Defect{"CPU goes by the cpid", "address.node-map-is-stable"},
    Defect{"ids have 16 bits", "message.is-what-was-asked-for"},
    Defect{"sizes are rounded up", "message.arrives-whole"},
    Defect{"sends fail silently", "message.send-to-nobody-fails"},
    Defect{"a message is lost", "message.order-within-a-process"},
    Defect{"a message is lost", "message.order-between-processes"},
    Defect{"receive is early", "receive.times-out"},
    Defect{"empty filter takes all", "receive.empty-filter-accepts-nothing"},
    Defect{"others are dropped", "receive.selective-leaves-the-others-in-order"},
    Defect{"identity is another", "timer.timeout-arrives"},
    Defect{"timers are milliseconds", "timer.timeout-arrives"},
    Defect{"timers cannot be cancelled", "timer.cancelled-timeout-stays-away"},
    Defect{"exclusive mode overwrites", "file.exclusive-mode-wants-nothing-there"},
    Defect{"line fills the buffer", "file.lines-are-read"},
    Defect{"size moves the position", "file.size-leaves-the-position"},
    Defect{"origin is ignored", "file.position-is-set"},
    Defect{"paths lead out of the root", "file.board-path-is-where-files-lie"},
    Defect{"initialised twice", "parameter.registration-declares"},
    Defect{"differences are accepted", "parameter.difference-is-refused"},
    Defect{"values have 16 bits", "parameter.set-is-read"},
    Defect{"unknown parameters are -1", "parameter.outside-is-refused"},
    Defect{"texts keep their terminator", "tag.text-is-kept"},
    Defect{"missing tags are bad arguments", "tag.unknown-is-not-found"},
    Defect{"failed reads store 0", "tag.number-has-four-bytes"},
    Defect{"present value is told", "observer.present-value-is-not-told"},
    Defect{"observers stay", "observer.unregistered-is-not-told"},
    Defect{"rings keep all severities", "log.ring-has-a-least-severity"},
    Defect{"rings are large", "log.ring-forgets-the-oldest"},
    Defect{"failed dumps are fine", "log.wrong-rings-are-refused"},
    Defect{"driver lengths count the zero", "driver.result-texts-are-cut"},
    Defect{"every unit is ours", "identity.missing-unit-is-not-found"},
    Defect{"texts overrun", "identity.serial-number"},
    Defect{"handles stay open", "rio.closed-handle-is-not-open"},
    Defect{"board code changes", "identity.board-code"},
};

class DefectTest : public SuiteTest, public ::testing::WithParamInterface<Defect> {};

TEST_P(DefectTest, IsFoundAndNamed)
{
    if ((test::hasAddressSanitizer || test::hasThreadSanitizer) &&
        GetParam().name == std::string_view("memory leaks")) {
        GTEST_SKIP() << "the rule that would notice it is skipped";
    }
    const Variable defect("DORN_DEFECT", GetParam().name);
    std::vector<std::string> arguments = boardArguments();
    arguments.insert(arguments.end(), {"--bound", "2", GetParam().rule});

    const SuiteRun run = runSuite(DORN_CONFORMANCE_DEFECTIVE, arguments);

    EXPECT_EQ(run.status, 1) << run.output << run.errors;
    EXPECT_THAT(run.rules("BROKEN"), Contains(GetParam().rule)) << run.output;
}

std::string nameOf(const ::testing::TestParamInfo<Defect>& test)
{
    std::string name = std::to_string(test.index) + "_";
    for (const char* character = test.param.name; *character; ++character) {
        name += std::isalnum(static_cast<unsigned char>(*character)) != 0 ? *character : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, DefectTest, ::testing::ValuesIn(defects), nameOf);

class BrokenProviderTest : public SuiteTest {};

TEST_F(BrokenProviderTest, WithoutDefectTheSamePlatformIsRight)
{
    std::vector<std::string> arguments = boardArguments();
    std::set<std::string> rules;
    for (const Defect& defect : defects) {
        rules.insert(defect.rule);
    }
    arguments.insert(arguments.end(), rules.begin(), rules.end());

    EXPECT_THAT(runSuite(DORN_CONFORMANCE_DEFECTIVE, arguments).rules("BROKEN"), ::testing::IsEmpty());
}

TEST_F(BrokenProviderTest, WithoutFailingFunctionTheSamePlatformIsRight)
{
    const SuiteRun run = runSuite(DORN_CONFORMANCE_FAILING, boardArguments());

    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.rules("BROKEN"), ::testing::IsEmpty()) << run.output;
}

TEST_F(BrokenProviderTest, ReportTellsRuleFindingAndHeader)
{
    const Variable defect("DORN_DEFECT", "address is turned round");

    const SuiteRun run = runSuite(DORN_CONFORMANCE_DEFECTIVE, {"address.sicad-is-node-and-cpid"});

    EXPECT_EQ(run.output, "BROKEN   address.sicad-is-node-and-cpid\n"
                          "         the rule:  An address is node id << 16 | cpid; 16 bits of the node id are used\n"
                          "         what came: AaSysComSicadGet(0x0201, 0x0F02): 33623810 instead of 251789825\n"
                          "         read:      AaSysCom.h, about AaSysComSicadGet\n"
                          "1 rules: 0 kept, 1 broken, 0 skipped\n");
}

TEST_F(BrokenProviderTest, RuleThatHangsIsBrokenAndTheNextIsTried)
{
    const Variable failing("DORN_FAILING", "AaSysComEuWakeUp");

    const SuiteRun run = runSuite(DORN_CONFORMANCE_FAILING, {"--bound", "1", "receive.wake-up-ends-a-wait",
                                                             "receive.times-out", "timer.timeout-arrives"});

    EXPECT_THAT(run.rules("BROKEN"), Contains("receive.wake-up-ends-a-wait"));
    EXPECT_THAT(run.rules("kept"), Contains("timer.timeout-arrives")) << run.output;
}

} // namespace
} // namespace dorn::conformance
