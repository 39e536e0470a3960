// SPDX-License-Identifier: MIT
// Another process of a test's node: does what the test tells it by messages, see PeerProtocol.hpp.
#include "PeerProtocol.hpp"

#include "AaSem.h"
#include "AaSysCom.h"
#include "Pattern.hpp"
#include "node/PerNode.hpp"
#include "syscom/MessageTap.hpp"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace dorn::host::test {
namespace {

TAaSysComSicad addressOf(TAaSysComCpid cpid)
{
    return AaSysComSicadGet(cpid, AaSysComGetOwnNid());
}

/// An EU of this process and how it is told to end.
struct Worker {
    void start(const char* name, TAaSysComEuEntry entry, const Command& command)
    {
        task = command;
        isEnding.store(false);
        Worker* const self = this;
        AaSysComEuCreateAndStart(&eu, name, entry, 0, 0, &self, sizeof self);
        AaSemTake(ready, AA_WAIT_FOREVER);
    }
    void end()
    {
        isEnding.store(true);
        AaSysComEuWakeUp(eu);
        AaSemTake(ready, AA_WAIT_FOREVER);
    }
    static Worker& of(void* args) { return **static_cast<Worker**>(args); }

    Command task;
    AaSem* ready = AaSemCreateC(0);
    AaSem* stop = AaSemCreateC(0); ///< for an EU that does not receive
    TAaProEuId eu = 0;
    std::atomic<bool> isEnding{false};
    std::atomic<std::uint32_t> result{0};
};

Worker holder;
Worker sender;
Worker registrar;
Worker collector;
Worker watcher;
std::atomic<std::uint32_t> collectedCount{0};
std::atomic<std::uint32_t> collectedBroken{0};
std::atomic<std::uint32_t> collectedOutOfOrder{0};

std::uint32_t sendPattern(const Command& command, std::uint32_t stream, std::uint32_t sequence)
{
    void* message = makePattern(addressOf(command.cpid), stream, sequence, command.size);
    return (command.sender != 0 ? AaSysComMsgSendS(&message, command.sender) : AaSysComMsgSend(&message)) == 0 ? 1 : 0;
}

void* holdCpid(void* args)
{
    Worker& worker = Worker::of(args);
    worker.result.store(AaSysComUserRegister(worker.task.cpid, AaProEuCurrent()));
    AaSemGive(worker.ready);
    while (AaSemTake(worker.stop, AA_WAIT_FOREVER) == 0 && !worker.isEnding.load()) {
        while (void* message = AaSysComMsgReceive(AA_NO_WAIT)) {
            AaSysComMsgDestroy(&message);
        }
    }
    return nullptr;
}

void* sendUntilStopped(void* args)
{
    Worker& worker = Worker::of(args);
    worker.result.store(0);
    AaSemGive(worker.ready);
    std::uint32_t accepted = 0;
    while (!worker.isEnding.load()) {
        accepted += sendPattern(worker.task, AaProEuCurrent(), accepted);
    }
    worker.result.store(accepted);
    AaSemGive(worker.ready);
    return nullptr;
}

void* registerForever(void* args)
{
    Worker& worker = Worker::of(args);
    AaSemGive(worker.ready);
    for (;;) {
        if (AaSysComUserRegister(worker.task.cpid, AaProEuCurrent()) != 0) {
            AaSysComUserDeregister(worker.task.cpid);
        }
    }
}

void* collect(void* args)
{
    Worker& worker = Worker::of(args);
    worker.result.store(AaSysComUserRegister(worker.task.cpid, AaProEuCurrent()));
    AaSemGive(worker.ready);
    PatternCheck check;
    while (!worker.isEnding.load()) {
        if (void* message = AaSysComMsgReceive(AA_WAIT_FOREVER)) {
            check.take(message);
            AaSysComMsgDestroy(&message);
            collectedBroken.store(check.broken());
            collectedOutOfOrder.store(check.outOfOrder());
            collectedCount.store(check.count());
        }
    }
    AaSemGive(worker.ready);
    return nullptr;
}

void* watchNode(void* args)
{
    Worker& worker = Worker::of(args);
    const TAaSysComCpid cpid = AaSysComUserRegister(worker.task.cpid, AaProEuCurrent());
    worker.result.store(PerNode<MessageTap>::get().addWatcher(cpid) ? cpid : 0);
    AaSemGive(worker.ready);
    AaSemTake(worker.stop, AA_WAIT_FOREVER);
    return nullptr;
}

std::uint32_t returnMessages(const Command& command, TAaSysComSicad asker)
{
    std::uint32_t count = 0;
    for (; count < command.count; ++count) {
        void* got = AaSysComMsgReceive(AA_WAIT_FOREVER);
        void* answer = makePattern(asker, 0, count, command.size);
        AaSysComMsgSend(&answer);
        AaSysComMsgDestroy(&got);
    }
    return count;
}

void forkAndEnd()
{
    const pid_t child = fork();
    if (child == 0) {
        std::exit(0); // with all that the end of a process and of its thread brings
    }
    waitpid(child, nullptr, 0);
}

std::uint32_t runWorker(Worker& worker, const char* name, TAaSysComEuEntry entry, const Command& command)
{
    worker.start(name, entry, command);
    return worker.result.load();
}

Answer carryOut(const Command& command, TAaSysComSicad asker)
{
    switch (command.order) {
    case Order::Register:
        return {AaSysComUserRegister(command.cpid, AaProEuCurrent()), 0, 0};
    case Order::Deregister:
        return {static_cast<std::uint32_t>(AaSysComUserDeregister(command.cpid)), 0, 0};
    case Order::RegisterInEu:
        return {runWorker(holder, "Holder", holdCpid, command), 0, 0};
    case Order::EndEu:
        holder.isEnding.store(true);
        [[fallthrough]];
    case Order::Drain:
        AaSemGive(holder.stop);
        return {};
    case Order::Send: {
        std::uint32_t accepted = 0;
        for (std::uint32_t sequence = 0; sequence < command.count; ++sequence) {
            accepted += sendPattern(command, 0, sequence);
        }
        return {accepted, 0, 0};
    }
    case Order::SendForever:
        return {runWorker(sender, "Sender", sendUntilStopped, command), 0, 0};
    case Order::StopSending:
        sender.end();
        return {sender.result.load(), 0, 0};
    case Order::RegisterForever:
        return {runWorker(registrar, "Registrar", registerForever, command), 0, 0};
    case Order::Collect:
        return {runWorker(collector, "Collector", collect, command), 0, 0};
    case Order::Collected:
        return {collectedCount.load(), collectedBroken.load(), collectedOutOfOrder.load()};
    case Order::Return:
        return {returnMessages(command, asker), 0, 0};
    case Order::Watch:
        return {runWorker(watcher, "Watcher", watchNode, command), 0, 0};
    case Order::Fork:
        forkAndEnd();
        break;
    case Order::Exit:
        break;
    }
    return {};
}

void serve()
{
    for (;;) {
        void* message = AaSysComMsgReceive(AA_WAIT_FOREVER);
        const TAaSysComSicad asker = AaSysComMsgGetSender(message);
        Command command;
        if (AaSysComMsgGetId(message) == commandId) {
            std::memcpy(&command, AaSysComMsgGetPayload(message), sizeof command);
            const Answer answer = carryOut(command, asker);
            void* reply = AaSysComMsgCreate(answerId, sizeof answer, asker);
            std::memcpy(AaSysComMsgGetPayload(reply), &answer, sizeof answer);
            AaSysComMsgSend(&reply);
            if (command.order == Order::Exit) {
                AaSysComMsgDestroy(&message);
                return;
            }
        }
        AaSysComMsgDestroy(&message);
    }
}

} // namespace
} // namespace dorn::host::test

int main()
{
    const TAaSysComCpid cpid = AaSysComUserRegister(0, AaProEuCurrent());
    std::printf("ready %u\n", static_cast<unsigned>(cpid));
    std::fflush(stdout);
    dorn::host::test::serve();
    return 0;
}
