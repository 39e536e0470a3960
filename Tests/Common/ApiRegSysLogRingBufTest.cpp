// SPDX-License-Identifier: MIT
#include "ApiRegSysLogRingBuf.h"

#include "Bound.hpp"
#include "FailNth.hpp"
#include "LogCapture.hpp"
#include "Sanitizers.hpp"
#include "TestNode.hpp"

#include "AaConfigRad.h"
#include "AaFile.h"
#include "AaMem.h"
#include "AaTrbl.h"
#include "node/PerNode.hpp"
#include "rad/ERadHwapi.h"
#include "trbl/TroubleCollection.hpp"

#include <gmock/gmock.h>
#include <string>

// The context of a registration lives as long as the process.
DORN_LASTING_MEMORY_OF("HwApiRegisterSysLogRingBuffer");

extern "C" TBoolean registerRingBufferInC(std::uint32_t featureId, const char* fileName);

namespace dorn::test {
namespace {

using host::PerNode;
using host::TroubleAnswer;
using host::TroubleCollection;
using host::TroubleFile;
using host::TroubleFiles;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testkit::CountCalls;
using testkit::FailNth;

constexpr std::uint32_t feature = 0x20046; // 131142
constexpr EAaSysLogSeverityLevel info = EAaSysLogSeverityLevel_Info;

TBoolean add(std::uint32_t featureId, const char* fileName, std::uint32_t size = 4096)
{
    return HwApiRegisterSysLogRingBuffer(featureId, size, info, nullptr, fileName);
}

std::vector<std::string> registeredPaths()
{
    std::vector<std::string> paths;
    for (const TroubleFile& file : PerNode<TroubleFiles>::get().list()) {
        paths.push_back(file.path);
    }
    return paths;
}

class RingBufferRegistrationTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(AaFileCreateDir("/ram"), 0); }

    /// Makes the R&D parameter of the feature.
    static void makeParameter(std::uint32_t value)
    {
        const auto declare = [] {
            AaConfigRadSetMaxTagCount(feature >> 16U, feature + 1);
            AaConfigRadSetDefault(feature, "DSPXML", 0);
        };
        ASSERT_EQ(AaConfigRadRegisterDomain(feature >> 16U, "HWA", declare), 0);
        ASSERT_EQ(AaConfigRadSetValue(feature, value), 0);
    }

    testkit::TestNode m_node{{.logLevel = "debug"}};
    testkit::LogCapture m_log;
};

TEST_F(RingBufferRegistrationTest, BufferAndFileAreRegistered)
{
    EXPECT_EQ(add(feature, "dsp.log"), 1U);

    EXPECT_THAT(registeredPaths(), ElementsAre("/ram/dsp.log"));
    const TroubleFile file = PerNode<TroubleFiles>::get().list().front();
    EXPECT_EQ(file.name, "dsp.log");
    EXPECT_EQ(file.priority, 1U);
    EXPECT_TRUE(file.hasSteps);
    EXPECT_THAT(m_log.texts(), ElementsAre("Info 0x20046 hwApiRegisterSysLogRingBuffer() call "
                                           "AaTrblFileRegister(/ram/dsp.log)"));
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(feature, "/ram/dump"), 0);
}

TEST_F(RingBufferRegistrationTest, LinesFromTheSeverityOnAreKeptAlthoughTheyAreNotPrinted)
{
    const testkit::TestNode quiet;
    ASSERT_EQ(AaFileCreateDir("/ram"), 0);
    ASSERT_EQ(add(feature, "dsp.log"), 1U);
    const testkit::LogCapture printed;

    AaSysLogPrintE(info, feature, "kept");
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, feature, "too low");

    std::uint32_t context = feature;
    EXPECT_EQ(hwApiAaStoreFileDefaultCb("/ram/dsp.log", &context), 0);
    EXPECT_THAT(quiet.readBoardFile("/ram/dsp.log"), HasSubstr("kept\n"));
    EXPECT_THAT(quiet.readBoardFile("/ram/dsp.log"), Not(HasSubstr("too low")));
    EXPECT_THAT(printed.texts(), IsEmpty());
}

int tooLongCount = 0;

TEST_F(RingBufferRegistrationTest, SizeAndCallbackAreHandedOn)
{
    ASSERT_EQ(HwApiRegisterSysLogRingBuffer(
                  feature, 200, info, [] { return ++tooLongCount; }, "dsp.log"),
              1U);
    tooLongCount = 0;

    AaSysLogPrintE(info, feature, "%s", std::string(50, 'a').c_str());
    EXPECT_EQ(tooLongCount, 0);
    AaSysLogPrintE(info, feature, "%s", std::string(200, 'a').c_str());
    EXPECT_EQ(tooLongCount, 1);
}

TEST_F(RingBufferRegistrationTest, NameOf60CharactersIsCutTo40)
{
    EXPECT_EQ(add(feature, "0123456789012345678901234567890123456789and twenty more here"), 1U);

    const TroubleFile file = PerNode<TroubleFiles>::get().list().front();
    EXPECT_EQ(file.path, "/ram/0123456789012345678901234567890123456789");
    EXPECT_EQ(file.name, "0123456789012345678901234567890123456789");
}

TEST_F(RingBufferRegistrationTest, NameOf40CharactersStaysWhole)
{
    EXPECT_EQ(add(feature, "0123456789012345678901234567890123456789"), 1U);

    EXPECT_THAT(registeredPaths(), ElementsAre("/ram/0123456789012345678901234567890123456789"));
}

TEST_F(RingBufferRegistrationTest, NameOf41CharactersLosesTheLast)
{
    EXPECT_EQ(add(feature, "0123456789012345678901234567890123456789x"), 1U);

    EXPECT_THAT(registeredPaths(), ElementsAre("/ram/0123456789012345678901234567890123456789"));
}

TEST_F(RingBufferRegistrationTest, EmptyNameIsLeftToThePlatformToRefuse)
{
    EXPECT_EQ(add(feature, ""), 0U);

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Info 0x20046 hwApiRegisterSysLogRingBuffer() call AaTrblFileRegister(/ram/)",
                            "Warning 0x20046 hwApiRegisterSysLogRingBuffer() AaTrblFileRegister failed to register "
                            "buffer, ret=1"));
    EXPECT_THAT(registeredPaths(), IsEmpty());
}

TEST_F(RingBufferRegistrationTest, NullNameFailsAlsoForAFeatureThatPrints)
{
    makeParameter(1);

    EXPECT_EQ(add(feature, nullptr), 0U);

    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x20046 hwApiRegisterSysLogRingBuffer() failed, NULL pointers, "
                                           "fileName: NULL"));
}

TEST_F(RingBufferRegistrationTest, NullNameFails)
{
    EXPECT_EQ(add(feature, nullptr), 0U);

    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x20046 hwApiRegisterSysLogRingBuffer() failed, NULL pointers, "
                                           "fileName: NULL"));
    EXPECT_THAT(registeredPaths(), IsEmpty());
}

TEST_F(RingBufferRegistrationTest, FeatureThatPrintsGetsNoBuffer)
{
    makeParameter(1);

    EXPECT_EQ(add(feature, "dsp.log"), 1U);

    EXPECT_THAT(m_log.texts(), IsEmpty());
    EXPECT_THAT(registeredPaths(), IsEmpty());
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(feature, "/ram/dump"), 1); // there is none
}

TEST_F(RingBufferRegistrationTest, FeatureWhoseParameterIs0GetsABuffer)
{
    makeParameter(0);

    EXPECT_EQ(add(feature, "dsp.log"), 1U);

    EXPECT_THAT(registeredPaths(), ElementsAre("/ram/dsp.log"));
}

TEST_F(RingBufferRegistrationTest, SecondRegistrationOfAFeatureFails)
{
    ASSERT_EQ(add(feature, "dsp.log"), 1U);
    m_log.clear();

    EXPECT_EQ(add(feature, "other.log"), 0U);

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Warning 0x20046 hwApiRegisterSysLogRingBuffer() AaSysLogRegisterRingBuffer failed, 131142 "
                            "buffer already registered"));
    EXPECT_THAT(registeredPaths(), ElementsAre("/ram/dsp.log"));
}

TEST_F(RingBufferRegistrationTest, BufferThatThePlatformRefusesIsAFailure)
{
    EXPECT_EQ(add(feature, "dsp.log", 0), 0U);
    {
        const FailNth<AaSysLogRegisterRingBuffer> buffer(1, -5);
        EXPECT_EQ(add(feature, "dsp.log"), 0U);
    }

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Warning 0x20046 hwApiRegisterSysLogRingBuffer() AaSysLogRegisterRingBuffer failed to "
                            "register 131142 buffer, ret=2",
                            "Warning 0x20046 hwApiRegisterSysLogRingBuffer() AaSysLogRegisterRingBuffer failed to "
                            "register 131142 buffer, ret=-5"));
    EXPECT_THAT(registeredPaths(), IsEmpty());
}

TEST_F(RingBufferRegistrationTest, FileThatThePlatformDoesNotRegisterIsAFailure)
{
    const FailNth<AaTrblFileRegister> file(1, 7);

    EXPECT_EQ(add(feature, "dsp.log"), 0U);

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Info 0x20046 hwApiRegisterSysLogRingBuffer() call AaTrblFileRegister(/ram/dsp.log)",
                            "Warning 0x20046 hwApiRegisterSysLogRingBuffer() AaTrblFileRegister failed to register "
                            "buffer, ret=7"));
}

TEST_F(RingBufferRegistrationTest, BufferStaysWhenItsFileIsNotRegistered)
{
    {
        const FailNth<AaTrblFileRegister> file(1);
        ASSERT_EQ(add(feature, "dsp.log"), 0U);
    }
    m_log.clear();

    EXPECT_EQ(add(feature, "dsp.log"), 0U);

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Warning 0x20046 hwApiRegisterSysLogRingBuffer() AaSysLogRegisterRingBuffer failed, 131142 "
                            "buffer already registered"));
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(feature, "/ram/dump"), 0);
}

TEST_F(RingBufferRegistrationTest, FileIsRegisteredAlsoWithoutMemoryForItsContext)
{
    {
        const FailNth<AaMemMallocDbg> memory(1);
        EXPECT_EQ(add(feature, "dsp.log"), 1U);
    }

    EXPECT_THAT(m_log.texts(),
                ElementsAre("Error 0x20046 hwApiRegisterSysLogRingBuffer() failed to malloc memory",
                            "Info 0x20046 hwApiRegisterSysLogRingBuffer() call AaTrblFileRegister(/ram/dsp.log)"));
    EXPECT_THAT(registeredPaths(), ElementsAre("/ram/dsp.log"));
}

TEST_F(RingBufferRegistrationTest, FeatureBehindAPointerIsRegistered)
{
    EXPECT_EQ(hwApiRegisterSysLogRingBuffer(&feature, 4096, info, nullptr, "dsp.log"), 1U);

    EXPECT_THAT(registeredPaths(), ElementsAre("/ram/dsp.log"));
}

TEST_F(RingBufferRegistrationTest, NullPointersOfTheOtherFormAreNamed)
{
    EXPECT_EQ(hwApiRegisterSysLogRingBuffer(nullptr, 4096, info, nullptr, "dsp.log"), 0U);
    EXPECT_EQ(hwApiRegisterSysLogRingBuffer(&feature, 4096, info, nullptr, nullptr), 0U);
    EXPECT_EQ(hwApiRegisterSysLogRingBuffer(nullptr, 4096, info, nullptr, nullptr), 0U);

    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x2000f hwApiRegisterSysLogRingBuffer() failed, NULL pointers, "
                                           "featureId: NULL, fileName: OK",
                                           "Warning 0x2000f hwApiRegisterSysLogRingBuffer() failed, NULL pointers, "
                                           "featureId: OK, fileName: NULL",
                                           "Warning 0x2000f hwApiRegisterSysLogRingBuffer() failed, NULL pointers, "
                                           "featureId: NULL, fileName: NULL"));
    EXPECT_THAT(registeredPaths(), IsEmpty());
}

TEST_F(RingBufferRegistrationTest, FunctionsAreCalledFromC)
{
    EXPECT_EQ(registerRingBufferInC(feature, "dsp.log"), 1U);

    EXPECT_THAT(registeredPaths(), ElementsAre("/ram/dsp.log"));
}

class RingBufferFileTest : public RingBufferRegistrationTest {
protected:
    static TroubleCollection collect()
    {
        return {PerNode<TroubleFiles>::get(), host::Clock::get().monotonic() + testkit::generousBound};
    }

    std::uint32_t m_context = feature;
};

TEST_F(RingBufferFileTest, PreparationDoesNothing)
{
    const CountCalls<AaFileOpen> opened;

    EXPECT_EQ(hwApiAaPrepareFileDefaultCb("/ram/dsp.log", &m_context), 0);
    EXPECT_EQ(hwApiAaPrepareFileDefaultCb(nullptr, nullptr), 0);

    EXPECT_EQ(opened.count(), 0U);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(RingBufferFileTest, BufferIsStoredAndItsFileDeleted)
{
    ASSERT_EQ(add(feature, "dsp.log"), 1U);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "first");
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "second");
    m_log.clear();

    EXPECT_EQ(hwApiAaStoreFileDefaultCb("/ram/dsp.log", &m_context), 0);
    const std::string lines = m_node.readBoardFile("/ram/dsp.log");
    EXPECT_LT(lines.find("first\n"), lines.find("second\n"));
    EXPECT_NE(lines.find("second\n"), std::string::npos);

    EXPECT_EQ(hwApiAaDeleteFileDefaultCb("/ram/dsp.log", &m_context), 0);
    EXPECT_THROW(static_cast<void>(m_node.readBoardFile("/ram/dsp.log")), std::system_error);
    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(RingBufferFileTest, BufferThatCannotBeDumpedIsAFailure)
{
    EXPECT_EQ(hwApiAaStoreFileDefaultCb("/ram/dsp.log", &m_context), 2);
    {
        const FailNth<AaSysLogDumpRingBufferToFile> dump(1, -3);
        EXPECT_EQ(hwApiAaStoreFileDefaultCb("/ram/dsp.log", &m_context), 2);
    }

    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x2000f hwApiAaStoreFileDefaultCb AaSysLogDumpRingBufferToFile "
                                           "failed, return value 1",
                                           "Warning 0x2000f hwApiAaStoreFileDefaultCb AaSysLogDumpRingBufferToFile "
                                           "failed, return value -3"));
}

TEST_F(RingBufferFileTest, StoringWithoutNameOrContextIsNamed)
{
    EXPECT_EQ(hwApiAaStoreFileDefaultCb(nullptr, &m_context), 1);
    EXPECT_EQ(hwApiAaStoreFileDefaultCb("/ram/dsp.log", nullptr), 1);
    EXPECT_EQ(hwApiAaStoreFileDefaultCb(nullptr, nullptr), 1);

    EXPECT_THAT(
        m_log.texts(),
        ElementsAre("Warning 0x2000f hwApiAaStoreFileDefaultCb failed, NULL pointers, fileName: NULL, opaque: OK",
                    "Warning 0x2000f hwApiAaStoreFileDefaultCb failed, NULL pointers, fileName: OK, opaque: NULL",
                    "Warning 0x2000f hwApiAaStoreFileDefaultCb failed, NULL pointers, fileName: NULL, opaque: NULL"));
}

TEST_F(RingBufferFileTest, FileThatCannotBeRemovedIsAFailure)
{
    EXPECT_EQ(hwApiAaDeleteFileDefaultCb("/ram/dsp.log", &m_context), 2);

    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x2000f hwApiAaDeleteFileDefaultCb AaFileRemove failed "
                                           "fileName=/ram/dsp.log"));
}

TEST_F(RingBufferFileTest, RemovalWithoutNameOrContextIsNamedAndRemovesNothing)
{
    m_node.writeBoardFile("/ram/dsp.log", "x");

    EXPECT_EQ(hwApiAaDeleteFileDefaultCb(nullptr, &m_context), 1);
    EXPECT_EQ(hwApiAaDeleteFileDefaultCb("/ram/dsp.log", nullptr), 1);
    EXPECT_EQ(hwApiAaDeleteFileDefaultCb(nullptr, nullptr), 1);

    EXPECT_EQ(m_node.readBoardFile("/ram/dsp.log"), "x");
    EXPECT_THAT(
        m_log.texts(),
        ElementsAre("Warning 0x2000f hwApiAaDeleteFileDefaultCb failed, NULL pointers, fileName: NULL, opaque: OK",
                    "Warning 0x2000f hwApiAaDeleteFileDefaultCb failed, NULL pointers, fileName: OK, opaque: NULL",
                    "Warning 0x2000f hwApiAaDeleteFileDefaultCb failed, NULL pointers, fileName: NULL, opaque: NULL"));
}

TEST_F(RingBufferFileTest, CollectedFileHoldsTheBufferAndIsGoneAfterwards)
{
    ASSERT_EQ(add(feature, "dsp.log"), 1U);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "a line");

    {
        const TroubleCollection collection = collect();
        ASSERT_EQ(collection.files().size(), 1U);
        EXPECT_EQ(collection.files()[0].answer, TroubleAnswer::Done);
        EXPECT_THAT(m_node.readBoardFile("/ram/dsp.log"), HasSubstr("a line\n"));
    }
    EXPECT_THROW(static_cast<void>(m_node.readBoardFile("/ram/dsp.log")), std::system_error);
}

TEST_F(RingBufferFileTest, FileWithoutContextIsNotTaken)
{
    {
        const FailNth<AaMemMallocDbg> memory(1);
        ASSERT_EQ(add(feature, "dsp.log"), 1U);
    }
    m_log.clear();

    EXPECT_EQ(collect().files()[0].answer, TroubleAnswer::Failed);
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x2000f hwApiAaStoreFileDefaultCb failed, NULL pointers, "
                                           "fileName: OK, opaque: NULL"));
}

} // namespace
} // namespace dorn::test
