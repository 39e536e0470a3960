// SPDX-License-Identifier: MIT
#include "PostS.hpp"

#include "AaFile.h"
#include "AaMem.h"
#include "AaSysLog.h"
#include "Answer.hpp"
#include "ApiRegSysLogRingBuf.h"
#include "OwnUnit.hpp"
#include "PostFile.h"
#include "SupervisorFifo.h"
#include "dsp.h"

#include <algorithm>

namespace dorn::examples {
namespace {

using vel::hwapi::common::AbstractWorker;
using vel::hwapi::common::Worker;

constexpr int tellerId = 2;
constexpr std::uint32_t ringBufferSize = 4096;
constexpr std::uint32_t mcuTestCount = 14;
constexpr std::uint32_t dspBoard = 0x10;
constexpr std::uint32_t dspChip = 0;
constexpr std::uint32_t dspTestCase = 1;

enum ETestState : std::uint32_t { passed = 0, failed = 1 };

class TellSupervisor : public AbstractWorker::Task {
public:
    explicit TellSupervisor(std::string text) : m_text(std::move(text)) {}
    void Perform() override { SupervisorFifoWrite(m_text.size(), m_text.data()); }

private:
    std::string m_text;
};

SMcuPostResult playedResult(std::uint32_t failing)
{
    SMcuPostResult result{};
    std::fill_n(&result.PostRam, std::min(failing, mcuTestCount), failed);
    return result;
}

std::uint32_t failedIn(const SMcuPostResult& result)
{
    return static_cast<std::uint32_t>(std::count(&result.PostRam, &result.PostRam + mcuTestCount, failed));
}

/// Fills an answer from what the file says.
bool readResults(SPostRunResp& answer)
{
    SMcuPostResult* results = nullptr;
    std::uint32_t count = 0;
    const EStatus status = QueryMcuPost(mcuPostPath, &results, &count);
    const bool isRead = status == EStatus_NoError && count == 2;
    if (isRead) {
        answer.failedLatest = failedIn(results[0]);
        answer.failedBefore = results[1].PostRam == POST_FILE_MCU_MARKER ? 0xFFFFFFFF : failedIn(results[1]);
    }
    AaMemUnRefDbg(results, __FILE__, __LINE__);
    return isRead;
}

} // namespace

PostS::PostS()
    : Service("PostS", postServiceCpid, ERadHwapi_PST, ERadHwapiState_PostState), m_teller(*Worker::Get(tellerId))
{
}

void PostS::Init()
{
    logOwnUnit(GetRadId());
    AaFileCreateDir("/ffs/run");
    AaFileCreateDir("/ram");
    HwApiRegisterSysLogRingBuffer(GetRadId(), ringBufferSize, EAaSysLogSeverityLevel_Info, nullptr, postLogName);
    if (!m_teller.IsSetupDone()) {
        m_teller.Setup(GetRadId(), "SupervisorTeller");
    }
    SStartUpGlobalParameters parameters{};
    SDspAddressParams addresses{};
    if (ApiReadDspXml(dspParametersPath, &parameters, &addresses)) {
        m_resetType = parameters.bootInfo.resetType;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "The DSP starts at 0x%08llX",
                       static_cast<unsigned long long>(addresses.runtimeSwAddr));
    }
    AddMsgHandler(&PostS::HandleRun);
}

bool PostS::record(std::uint32_t failing) const
{
    const SMcuPostResult mcu = playedResult(failing);
    const DspReadyInd dsp{m_resetType, dspBoard, dspChip, 1, {{dspTestCase, passed}}};
    return UpdateMcuPost(mcuPostPath, &mcu) == EStatus_NoError && UpdateDspPost(dspPostPath, &dsp) == EStatus_NoError;
}

void PostS::tellSupervisor(const std::string& text)
{
    m_teller.AssignTaskAndGiveOwnership(new TellSupervisor(text));
}

void PostS::HandleRun(PostRunReqMsg request)
{
    answerTo<PostRunRespMsg>(request, *this, [&](PostRunRespMsg answer) {
        *answer.GetPayload() = {request->transactionId, 1, 0, 0xFFFFFFFF};
        if (record(request->failing) && readResults(*answer.GetPayload())) {
            answer->status = 0;
            const std::string text = "POST: " + std::to_string(answer->failedLatest) + " of " +
                                     std::to_string(mcuTestCount) + " tests failed";
            AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "%s", text.c_str());
            tellSupervisor(text + '\n'); // the pipe keeps no bounds between messages
        }
    });
}

} // namespace dorn::examples
