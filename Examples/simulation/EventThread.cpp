// SPDX-License-Identifier: MIT
#include "EventThread.hpp"

#include "AaSem.h"

namespace dorn::examples {
namespace {

using vel::hwapi::common::AbstractWorker;
using vel::hwapi::common::Worker;

constexpr int workerId = 0xB1F;

/// Runs when everything that was assigned before has run.
class TellDelivered : public AbstractWorker::Task {
public:
    explicit TellDelivered(AaSem* delivered) : m_delivered(delivered) {}
    void Perform() override { AaSemGive(m_delivered); }

private:
    AaSem* m_delivered;
};

} // namespace

EventThread::~EventThread()
{
    if (!worker().IsSetupDone()) {
        return;
    }
    AaSem* delivered = AaSemCreateC(0);
    worker().AssignTaskAndGiveOwnership(new TellDelivered(delivered));
    AaSemTake(delivered, AA_WAIT_FOREVER);
    AaSemDestroy(&delivered);
}

Worker& EventThread::worker()
{
    return *Worker::Get(workerId);
}

} // namespace dorn::examples
