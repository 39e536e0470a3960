// SPDX-License-Identifier: MIT
/// @file BoardDataCallsTest.cpp
/// What the functions for POST files, the DSP parameter file and ring buffers ask of the platform, word by word. This
/// program has wrappers of its own in place of those of the TestKit.
#include "ApiRegSysLogRingBuf.h"
#include "NodeTest.hpp"
#include "PostFile.h"
#include "Sanitizers.hpp"
#include "dsp.h"

#include "AaFile.h"
#include "AaMem.h"
#include "AaTrbl.h"

#include <array>
#include <cstdint>
#include <gmock/gmock.h>
#include <set>
#include <string>
#include <vector>

// The context of a registration lives as long as the process.
DORN_LASTING_MEMORY_OF("HwApiRegisterSysLogRingBuffer");

namespace {

/// The calls of the wrapped functions, with what is of interest of their arguments.
std::vector<std::string> calls;
/// The blocks of the platform's memory that have not been released.
std::set<void*> blocks;

/// The arguments of AaTrblFileRegister().
struct TroubleFileCall {
    std::string name;
    std::string path;
    std::uint32_t priority;
    std::uint32_t flags;
    TAaTrblFileCallback prepare;
    TAaTrblFileCallback store;
    TAaTrblFileCallback remove;
    void* opaque;
};
std::vector<TroubleFileCall> troubleFileCalls;

/// The arguments of AaSysLogRegisterRingBuffer().
struct RingBufferCall {
    std::uint32_t featureId;
    std::uint32_t bufferSize;
    EAaSysLogSeverityLevel severityLevel;
    TAaSysLogErrorPrintCallback errorPrintCallback;
};
std::vector<RingBufferCall> ringBufferCalls;

std::string textOf(const char* text)
{
    return text ? text : "null";
}

} // namespace

// The names are the linker's. NOLINTBEGIN
extern "C" {
decltype(AaFileOpen) __real_AaFileOpen, __wrap_AaFileOpen;
decltype(AaFileReadLine) __real_AaFileReadLine, __wrap_AaFileReadLine;
decltype(AaFileRead) __real_AaFileRead, __wrap_AaFileRead;
decltype(AaFileWrite) __real_AaFileWrite, __wrap_AaFileWrite;
decltype(AaFileClose) __real_AaFileClose, __wrap_AaFileClose;
decltype(AaMemMallocDbg) __real_AaMemMallocDbg, __wrap_AaMemMallocDbg;
decltype(AaMemUnRefDbg) __real_AaMemUnRefDbg, __wrap_AaMemUnRefDbg;
decltype(AaSysLogRegisterRingBuffer) __wrap_AaSysLogRegisterRingBuffer;
decltype(AaTrblFileRegister) __wrap_AaTrblFileRegister;

AaFile* __wrap_AaFileOpen(const char* path, const char* mode)
{
    calls.push_back("open " + textOf(path) + " " + textOf(mode));
    return __real_AaFileOpen(path, mode);
}

int32_t __wrap_AaFileReadLine(AaFile* file, char* buffer, uint32_t bufferSize)
{
    calls.push_back("read line " + std::to_string(bufferSize));
    return __real_AaFileReadLine(file, buffer, bufferSize);
}

int32_t __wrap_AaFileRead(AaFile* file, void* buffer, uint32_t size)
{
    calls.push_back("read " + std::to_string(size));
    return __real_AaFileRead(file, buffer, size);
}

int32_t __wrap_AaFileWrite(AaFile* file, const void* buffer, uint32_t size)
{
    calls.push_back("write " + std::string(static_cast<const char*>(buffer), size));
    return __real_AaFileWrite(file, buffer, size);
}

int32_t __wrap_AaFileClose(AaFile* file)
{
    calls.emplace_back("close");
    return __real_AaFileClose(file);
}

void* __wrap_AaMemMallocDbg(uint32_t size, const char* file, uint32_t line)
{
    calls.push_back("take " + std::to_string(size));
    void* const block = __real_AaMemMallocDbg(size, file, line);
    blocks.insert(block);
    return block;
}

void __wrap_AaMemUnRefDbg(void* block, const char* file, uint32_t line)
{
    calls.emplace_back("release");
    blocks.erase(block);
    __real_AaMemUnRefDbg(block, file, line);
}

int32_t __wrap_AaSysLogRegisterRingBuffer(uint32_t featureId, uint32_t bufferSize, EAaSysLogSeverityLevel severityLevel,
                                          TAaSysLogErrorPrintCallback errorPrintCallback)
{
    ringBufferCalls.push_back({featureId, bufferSize, severityLevel, errorPrintCallback});
    return 0;
}

int32_t __wrap_AaTrblFileRegister(const char* name, const char* path, uint32_t priority, uint32_t flags,
                                  TAaTrblFileCallback prepare, TAaTrblFileCallback store, TAaTrblFileCallback remove,
                                  void* opaque)
{
    troubleFileCalls.push_back({textOf(name), textOf(path), priority, flags, prepare, store, remove, opaque});
    return 0;
}
}
// NOLINTEND

namespace dorn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BoardDataCallsTest : public testkit::NodeTest {
protected:
    BoardDataCallsTest() { forget(); }
    static void forget()
    {
        calls.clear();
        blocks.clear();
        troubleFileCalls.clear();
        ringBufferCalls.clear();
    }
    /// The calls that concern files.
    static std::vector<std::string> fileCalls()
    {
        std::vector<std::string> files = calls;
        std::erase_if(files, [](const std::string& call) { return call.starts_with("take") || call == "release"; });
        return files;
    }
};

constexpr const char* path = "/ffs/run/post.txt";

TEST_F(BoardDataCallsTest, McuPostIsReadAndThenWrittenFromScratch)
{
    const std::string line = "1 1 1 1 1 1 1 1 1 1 1 1 1 1\n";
    m_node.writeBoardFile(path, line);
    const SMcuPostResult result{2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2};

    EXPECT_EQ(UpdateMcuPost(path, &result), EStatus_NoError);

    EXPECT_THAT(fileCalls(), ElementsAre("open /ffs/run/post.txt r", "read line 1024", "read line 1024", "close",
                                         "open /ffs/run/post.txt w+", "write 2 2 2 2 2 2 2 2 2 2 2 2 2 2\n",
                                         "write " + line, "close"));
    EXPECT_THAT(blocks, IsEmpty());
}

TEST_F(BoardDataCallsTest, PairPostIsReadAndThenWrittenFromScratch)
{
    const std::array<std::uint32_t, 6> words{10, 11, 12, 1, 5, 6};
    m_node.writeBoardFile(path, "1 2 3 1 : 7 8 \n");
    EXPECT_EQ(UpdateDspPost(path, reinterpret_cast<const DspReadyInd*>(words.data())), EStatus_NoError);
    EXPECT_THAT(fileCalls(),
                ElementsAre("open /ffs/run/post.txt r", "read line 1024", "read line 1024", "close",
                            "open /ffs/run/post.txt w+", "write a b c 1 : 5 6 \n", "write 1 2 3 1 : 7 8 \n", "close"));
    EXPECT_THAT(blocks, IsEmpty());

    m_node.writeBoardFile(path, "1 : 7 8 \n");
    forget();
    EXPECT_EQ(UpdatePostData2(path, reinterpret_cast<const SApi2PostDataResp*>(words.data())), EStatus_NoError);
    EXPECT_THAT(fileCalls(), ElementsAre("open /ffs/run/post.txt r", "read line 1024", "read line 1024", "close",
                                         "open /ffs/run/post.txt w+", "write 1 : 5 6 \n", "write 1 : 7 8 \n", "close"));
    EXPECT_THAT(blocks, IsEmpty());
}

TEST_F(BoardDataCallsTest, QueriesOpenForReading)
{
    std::uint32_t count = 0;
    SMcuPostResult* mcu = nullptr;
    DspReadyInd** dsp = nullptr;
    SApi2PostDataResp** data = nullptr;

    EXPECT_EQ(QueryMcuPost(path, &mcu, &count), EStatus_UndefinedError);
    EXPECT_EQ(QueryDspPost(path, &dsp, &count), EStatus_UndefinedError);
    EXPECT_EQ(QueryPostData2(path, &data, &count), EStatus_UndefinedError);

    EXPECT_THAT(calls, ElementsAre("open /ffs/run/post.txt r", "open /ffs/run/post.txt r", "open /ffs/run/post.txt r"));
}

TEST_F(BoardDataCallsTest, DspFileIsReadAtOnceIntoThePlatformsMemoryWhichIsReleasedBeforeTheFileIsClosed)
{
    const std::string text = "<service version='1'/>";
    m_node.writeBoardFile("/dsp.xml", text);
    SStartUpGlobalParameters config{};
    SDspAddressParams addresses{};

    EXPECT_EQ(ApiReadDspXml("/dsp.xml", &config, &addresses), 0U);

    EXPECT_THAT(calls, ElementsAre("open /dsp.xml r", "take " + std::to_string(text.size()),
                                   "read " + std::to_string(text.size()), "release", "close"));
    EXPECT_THAT(blocks, IsEmpty());
}

int ignored()
{
    return 0;
}

TEST_F(BoardDataCallsTest, RingBufferAndItsFileAreRegisteredWithAllTheirArguments)
{
    constexpr std::uint32_t feature = 0x20046;

    EXPECT_EQ(HwApiRegisterSysLogRingBuffer(feature, 4096, EAaSysLogSeverityLevel_Warning, ignored, "dsp.log"), 1U);

    ASSERT_EQ(ringBufferCalls.size(), 1U);
    EXPECT_EQ(ringBufferCalls[0].featureId, feature);
    EXPECT_EQ(ringBufferCalls[0].bufferSize, 4096U);
    EXPECT_EQ(ringBufferCalls[0].severityLevel, EAaSysLogSeverityLevel_Warning);
    EXPECT_EQ(ringBufferCalls[0].errorPrintCallback, ignored);
    ASSERT_EQ(troubleFileCalls.size(), 1U);
    const TroubleFileCall& call = troubleFileCalls[0];
    EXPECT_EQ(call.name, "dsp.log");
    EXPECT_EQ(call.path, "/ram/dsp.log");
    EXPECT_EQ(call.priority, 1U);
    EXPECT_EQ(call.flags, 0U);
    EXPECT_EQ(call.prepare, hwApiAaPrepareFileDefaultCb);
    EXPECT_EQ(call.store, hwApiAaStoreFileDefaultCb);
    EXPECT_EQ(call.remove, hwApiAaDeleteFileDefaultCb);
    ASSERT_NE(call.opaque, nullptr);
    EXPECT_EQ(*static_cast<const std::uint32_t*>(call.opaque), feature);
    EXPECT_THAT(calls, ElementsAre("take 4"));
}

} // namespace
} // namespace dorn::test
