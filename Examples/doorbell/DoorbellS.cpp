// SPDX-License-Identifier: MIT
#include "DoorbellS.hpp"

#include "AaFile.h"
#include "AaSem.h"
#include "Answer.hpp"
#include "OwnUnit.hpp"

#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace dorn::examples {
namespace {

using vel::hwapi::common::AbstractWorker;
using vel::hwapi::common::EventDispatcher;
using vel::hwapi::common::Worker;

constexpr unsigned int dispatcherId = 1;
constexpr int writerId = 1;
constexpr unsigned int priority = 5;
constexpr unsigned int stackSize = 4096;

/// Writes one visit to the book, which may take its time.
class WriteVisit : public AbstractWorker::Task {
public:
    explicit WriteVisit(std::atomic<std::uint32_t>& visits) : m_visits(visits) {}

    void Perform() override
    {
        constexpr std::string_view line = "somebody rang\n";
        AaFile* const book = AaFileOpen(visitorsBookPath, "a");
        if (!book) {
            throw TaskException("Visit not written", "the book cannot be opened", __FILE__, __LINE__);
        }
        AaFileWrite(book, line.data(), static_cast<std::uint32_t>(line.size()));
        if (AaFileClose(book) == 0) {
            m_visits.fetch_add(1);
        }
    }

private:
    std::atomic<std::uint32_t>& m_visits;
};

/// Lets somebody know that everything that was assigned before has run.
class TellDone : public AbstractWorker::Task {
public:
    explicit TellDone(AaSem* done) : m_done(done) {}
    void Perform() override { AaSemGive(m_done); }

private:
    AaSem* m_done;
};

} // namespace

DoorbellS::DoorbellS(int contact)
    : Service("DoorbellS", doorbellServiceCpid, ERadHwapi_PrintEacService, ERadHwapiState_EacServiceState),
      m_contact(contact),
      m_dispatcher(*EventDispatcher::Get(dispatcherId)),
      m_writer(*Worker::Get(writerId))
{
}

void DoorbellS::Init()
{
    logOwnUnit(GetRadId());
    AaFileCreateDir("/ffs/run");
    AddMsgHandler(&DoorbellS::HandleVisits);
    if (!m_writer.IsSetupDone()) {
        m_writer.Setup(GetRadId(), "VisitWriter");
    }
    m_dispatcher.RegisterEventHandler(m_contact, *this, POLLIN);
    m_dispatcher.Setup(GetRadId(), "DoorContact", priority, stackSize);
}

void DoorbellS::HandleEvent(int fd)
{
    char ring = 0;
    if (read(fd, &ring, 1) == 1) {
        m_writer.AssignTaskAndGiveOwnership(new WriteVisit(m_visits));
    }
}

void DoorbellS::HandleVisits(VisitsReqMsg request)
{
    answerTo<VisitsRespMsg>(request, *this, [&](VisitsRespMsg answer) { answer->visits = m_visits.load(); });
}

DoorbellS::~DoorbellS()
{
    m_dispatcher.Stop();
    m_dispatcher.UnregisterEventHandler(m_contact);
    if (m_writer.IsSetupDone()) {
        AaSem* done = AaSemCreateC(0);
        m_writer.AssignTaskAndGiveOwnership(new TellDone(done));
        AaSemTake(done, AA_WAIT_FOREVER);
        AaSemDestroy(&done);
    }
}

} // namespace dorn::examples
