// SPDX-License-Identifier: MIT
// The system log. Where lines go is the platform's; what the suite can see of them is ring buffers.
#include "AaSysLog.h"
#include "Check.hpp"
#include "Folder.hpp"
#include "Rules.hpp"

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace dorn::conformance {
namespace {

constexpr uint32_t feature = 61U << 16 | 8;
constexpr uint32_t otherFeature = 61U << 16 | 9;

void printE(EAaSysLogSeverityLevel severity, const std::string& text)
{
    AaSysLogPrintE(severity, feature, "%s", text.c_str());
}

void keepRing(EAaSysLogSeverityLevel least, uint32_t size = 4096, TAaSysLogErrorPrintCallback callback = nullptr)
{
    expectEqual(AaSysLogRegisterRingBuffer(feature, size, least, callback), 0, "AaSysLogRegisterRingBuffer()");
}

std::string dumped(const Folder& folder)
{
    const std::string path = folder.path("ring");
    expectEqual(AaSysLogDumpRingBufferToFile(feature, path.c_str()), 0, "AaSysLogDumpRingBufferToFile()");
    return readFile(path);
}

void expectInOrder(const std::string& dump, const std::vector<std::string>& texts)
{
    std::size_t from = 0;
    for (const std::string& text : texts) {
        const std::size_t found = dump.find(text, from);
        expect(found != std::string::npos, "the dump does not have the line '" + text + "' in its place");
        from = found + text.size();
    }
}

void printsReturn()
{
    const std::string longText(10'000, 'x');
    for (int severity = 0; severity <= 7; ++severity) {
        const auto level = static_cast<EAaSysLogSeverityLevel>(severity);
        (AaSysLogPrint)(level, "conformance: severity %d %s", severity, "text");
        (AaSysLogPrintE)(level, feature, "conformance: severity %d %s\n", severity, "text");
    }
    (AaSysLogPrint)(EAaSysLogSeverityLevel_Warning, "conformance: %s", longText.c_str());
    (AaSysLogPrintE)(EAaSysLogSeverityLevel_Warning, feature, "conformance: %s", longText.c_str());
    (AaSysLogPrint)(EAaSysLogSeverityLevel_Warning, "%s", "");
}

void printsOfManyThreadsReturn()
{
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number] {
            for (int line = 0; line < 50; ++line) {
                (AaSysLogPrint)(EAaSysLogSeverityLevel_Warning, "conformance: thread %d line %d", number, line);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

void offLineIsNotEvaluated()
{
    int evaluations = 0;
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "conformance: %d", ++evaluations);
    expectEqual(evaluations, 1, "evaluations of the arguments of a line at warning severity");
    const bool isOn = AaSysLogIsOn(EAaSysLogSeverityLevel_Debug, feature) != 0;
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, feature, "conformance: %d", ++evaluations);
    expectEqual(evaluations, isOn ? 2 : 1, "evaluations of the arguments of two lines, the second at debug severity");
}

void ringKeepsLines()
{
    const Folder folder;
    keepRing(EAaSysLogSeverityLevel_Debug);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "conformance %s %d 0x%x", "first", 7, 255U);
    printE(EAaSysLogSeverityLevel_Debug, "conformance second");
    printE(EAaSysLogSeverityLevel_Vip, "conformance third");
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, otherFeature, "conformance of another feature");
    const std::string dump = dumped(folder);
    expectInOrder(dump, {"conformance first 7 0xff", "conformance second", "conformance third"});
    expect(dump.find("another feature") == std::string::npos, "the dump has a line of another feature");
}

void ringHasALeastSeverity()
{
    const Folder folder;
    keepRing(EAaSysLogSeverityLevel_Warning);
    printE(EAaSysLogSeverityLevel_Info, "conformance info");
    printE(EAaSysLogSeverityLevel_Warning, "conformance warning");
    printE(EAaSysLogSeverityLevel_Error, "conformance error");
    const std::string dump = dumped(folder);
    expectInOrder(dump, {"conformance warning", "conformance error"});
    expect(dump.find("conformance info") == std::string::npos, "the dump has a line below the least severity");
}

void ringForgetsTheOldest()
{
    const Folder folder;
    keepRing(EAaSysLogSeverityLevel_Debug, 2048);
    for (int number = 1000; number < 1200; ++number) {
        printE(EAaSysLogSeverityLevel_Warning, "conformance line " + std::to_string(number));
    }
    const std::string dump = dumped(folder);
    expect(dump.find("line 1000") == std::string::npos, "a buffer of 2048 bytes has kept the first of 200 lines");
    expectInOrder(dump, {"conformance line 1198", "conformance line 1199"});
}

std::atomic<int> tooLongLines{0};

int countTooLong()
{
    return tooLongLines.fetch_add(1);
}

void tooLongLineIsTold()
{
    keepRing(EAaSysLogSeverityLevel_Debug, 512, countTooLong);
    printE(EAaSysLogSeverityLevel_Warning, "conformance short");
    expectEqual(tooLongLines.load(), 0, "calls of the callback for a line that fits");
    printE(EAaSysLogSeverityLevel_Warning, std::string(2000, 'x'));
    expectEqual(tooLongLines.load(), 1, "calls of the callback for a line that is longer than the buffer");
}

void wrongRingsAreRefused()
{
    const Folder folder;
    expectEqual(AaSysLogRegisterRingBuffer(feature, 0, EAaSysLogSeverityLevel_Debug, nullptr), 2,
                "AaSysLogRegisterRingBuffer() of 0 bytes");
    keepRing(EAaSysLogSeverityLevel_Debug);
    expectEqual(AaSysLogRegisterRingBuffer(feature, 4096, EAaSysLogSeverityLevel_Debug, nullptr), 1,
                "AaSysLogRegisterRingBuffer() of a feature that has one");
    expectEqual(AaSysLogDumpRingBufferToFile(otherFeature, folder.path("ring").c_str()), 1,
                "AaSysLogDumpRingBufferToFile() of a feature without ring buffer");
    expectEqual(AaSysLogDumpRingBufferToFile(feature, folder.path("missing/ring").c_str()), 2,
                "AaSysLogDumpRingBufferToFile() into a directory that is not there");
}

void dumpOverwrites()
{
    const Folder folder;
    keepRing(EAaSysLogSeverityLevel_Debug);
    printE(EAaSysLogSeverityLevel_Warning, "conformance line");
    writeFile(folder.path("ring"), std::string(10'000, '#'));
    expect(dumped(folder).find('#') == std::string::npos, "the dump did not overwrite the file that was there");
}

constexpr std::array rules{
    Rule{"log.prints-return", "AaSysLog.h", "AaSysLogPrint AaSysLogPrintE",
         "Lines of every severity, known or not, of any length, with or without line feed, are taken", printsReturn},
    Rule{"log.prints-of-many-threads-return", "AaSysLog.h", "AaSysLogPrint", "Several threads may print at once",
         printsOfManyThreadsReturn},
    Rule{"log.off-line-is-not-evaluated", "AaSysLog.h", "AaSysLogPrintE AaSysLogCallLevel",
         "The arguments of a line that is off are not evaluated; those at warning severity are never off",
         offLineIsNotEvaluated},
    Rule{"log.ring-keeps-lines", "AaSysLog.h",
         "AaSysLogRegisterRingBuffer AaSysLogDumpRingBufferToFile AaSysLogPrintE AaSysLogCallLevel",
         "A ring buffer keeps the lines of its feature, formatted, in their order, whether or not they are printed",
         ringKeepsLines},
    Rule{"log.ring-has-a-least-severity", "AaSysLog.h", "AaSysLogRegisterRingBuffer",
         "A ring buffer keeps lines of its least severity and above", ringHasALeastSeverity},
    Rule{"log.ring-forgets-the-oldest", "AaSysLog.h", "AaSysLogRegisterRingBuffer",
         "The oldest lines make room for new ones", ringForgetsTheOldest},
    Rule{"log.too-long-line-is-told", "AaSysLog.h", "AaSysLogRegisterRingBuffer",
         "The callback is called when a line is longer than the whole buffer, and otherwise not", tooLongLineIsTold},
    Rule{"log.wrong-rings-are-refused", "AaSysLog.h", "AaSysLogRegisterRingBuffer AaSysLogDumpRingBufferToFile",
         "A second ring buffer of a feature returns 1, one of 0 bytes 2; a dump without ring buffer returns 1, to a "
         "file that cannot be written 2",
         wrongRingsAreRefused},
    Rule{"log.dump-overwrites", "AaSysLog.h", "AaSysLogDumpRingBufferToFile",
         "A dump overwrites the file that is there", dumpOverwrites},
};

} // namespace

Rules logRules()
{
    return rules;
}

} // namespace dorn::conformance
