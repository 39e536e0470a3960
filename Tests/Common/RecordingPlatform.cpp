// SPDX-License-Identifier: MIT
#include "RecordingPlatform.hpp"

#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "AaMem.h"
#include "AaSem.h"
#include "AaSysLog.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>

namespace dorn::test {
namespace {

RecordingPlatform* instance = nullptr;

struct Message {
    TAaSysComMsgId id;
    TAaSysComSicad sender;
    TAaSysComSicad receiver;
    std::uint16_t size;
    std::unique_ptr<unsigned char[]> payload;
};

Message& messageOf(const void* handle)
{
    return *static_cast<Message*>(const_cast<void*>(handle));
}

std::string formattedList(const char* format, std::va_list arguments)
{
    std::array<char, 2048> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    return text.data();
}

const char* severityName(EAaSysLogSeverityLevel severity)
{
    constexpr std::array<const char*, 7> names = {"NotValid", "Debug", "Info", "Warning", "Error", "Vip", "NoPrints"};
    return names.at(severity);
}

} // namespace

std::string formatted(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = formattedList(format, arguments);
    va_end(arguments);
    return text;
}

RecordingPlatform::RecordingPlatform()
{
    if (instance) {
        throw std::logic_error("two platforms at once");
    }
    instance = this;
}

RecordingPlatform::~RecordingPlatform()
{
    for (void* message : m_queue) {
        delete static_cast<Message*>(message);
    }
    instance = nullptr;
}

RecordingPlatform& RecordingPlatform::get()
{
    return *instance;
}

std::vector<std::string> RecordingPlatform::calls() const
{
    const std::lock_guard lock(m_mutex);
    return m_calls;
}

std::vector<std::string> RecordingPlatform::calls(std::string_view beginning) const
{
    std::vector<std::string> found;
    for (const std::string& call : calls()) {
        if (call.starts_with(beginning)) {
            found.push_back(call);
        }
    }
    return found;
}

std::vector<std::string> RecordingPlatform::callsWithoutParameters() const
{
    std::vector<std::string> some = calls();
    std::erase_if(some, [](const std::string& call) {
        return call.starts_with("AaConfigRadSetDefault(") || call.starts_with("AaConfigRadSetMaxTagCount(");
    });
    return some;
}

void RecordingPlatform::clearCalls()
{
    const std::lock_guard lock(m_mutex);
    m_calls.clear();
}

void RecordingPlatform::setResult(const std::string& function, std::int32_t result)
{
    m_results[function] = result;
}

std::int32_t RecordingPlatform::note(const std::string& call, const std::string& function)
{
    if (onCall) {
        onCall(call);
    }
    const std::lock_guard lock(m_mutex);
    m_calls.push_back(call);
    const auto result = m_results.find(function);
    return result == m_results.end() ? 0 : result->second;
}

void RecordingPlatform::queueMessage(TAaSysComMsgId id, std::string_view payload, TAaSysComSicad sender,
                                     TAaSysComSicad receiver)
{
    void* const message = createMessage(id, static_cast<std::uint16_t>(payload.size()), receiver);
    messageOf(message).sender = sender;
    if (!payload.empty()) {
        std::memcpy(messageOf(message).payload.get(), payload.data(), payload.size());
    }
    const std::lock_guard lock(m_mutex);
    m_queue.push_back(message);
}

std::size_t RecordingPlatform::liveMessages() const
{
    const std::lock_guard lock(m_mutex);
    return m_liveMessages;
}

bool RecordingPlatform::requestEnd()
{
    if (!shutdownHandler) {
        return false;
    }
    shutdownHandler();
    return true;
}

void* RecordingPlatform::receive(std::int32_t timeout)
{
    for (int attempt = 0; attempt < 2; ++attempt) {
        {
            const std::lock_guard lock(m_mutex);
            if (!m_queue.empty()) {
                void* const message = m_queue.front();
                m_queue.pop_front();
                return message;
            }
            if (std::exchange(m_wakeUpPends, false)) {
                return nullptr;
            }
        }
        if (timeout != AA_NO_WAIT && attempt == 0 && whenIdle) {
            whenIdle();
        }
    }
    if (timeout == AA_WAIT_FOREVER) {
        std::fputs("a receive waits for ever\n", stderr);
        std::abort();
    }
    return nullptr;
}

void* RecordingPlatform::createMessage(TAaSysComMsgId id, std::uint16_t size, TAaSysComSicad receiver)
{
    auto message = std::make_unique<Message>(Message{id, 0, receiver, size, nullptr});
    if (size != 0) {
        message->payload = std::make_unique<unsigned char[]>(size);
        std::memset(message->payload.get(), 0xEE, size);
    }
    const std::lock_guard lock(m_mutex);
    ++m_liveMessages;
    return message.release();
}

void RecordingPlatform::endMessage(void* message)
{
    const std::lock_guard lock(m_mutex);
    --m_liveMessages;
    delete static_cast<Message*>(message);
}

void RecordingPlatform::wakeUp()
{
    const std::lock_guard lock(m_mutex);
    m_wakeUpPends = true;
}

} // namespace dorn::test

using dorn::test::formatted;
using dorn::test::messageOf;
using dorn::test::RecordingPlatform;

namespace {

std::int32_t note(const std::string& call)
{
    return RecordingPlatform::get().note(call, call.substr(0, call.find('(')));
}

/// Hands out a tag's value with a zero byte behind it, as AaConfigTagGet() does.
void handOut(const std::string& bytes, void** value, std::uint32_t* length)
{
    *value = nullptr;
    *length = static_cast<std::uint32_t>(bytes.size());
    if (!RecordingPlatform::get().canHandOutValues) {
        return;
    }
    auto block = std::make_unique<char[]>(bytes.size() + 1);
    std::memcpy(block.get(), bytes.c_str(), bytes.size() + 1);
    *value = block.release();
    ++RecordingPlatform::get().liveTagValues;
}

std::string hexText(const void* bytes, std::size_t size)
{
    std::string text;
    for (std::size_t index = 0; index < size; ++index) {
        text += formatted("%02X", static_cast<unsigned>(static_cast<const unsigned char*>(bytes)[index]));
    }
    return text;
}

std::int32_t send(const char* function, void** message)
{
    void* const sent = std::exchange(*message, nullptr);
    if (!sent) {
        return note(formatted("%s(null)", function));
    }
    const std::int32_t result = note(formatted("%s(%u, from 0x%X to 0x%X, ", function, messageOf(sent).id,
                                               messageOf(sent).sender, messageOf(sent).receiver) +
                                     hexText(messageOf(sent).payload.get(), messageOf(sent).size) + ")");
    RecordingPlatform::get().endMessage(sent);
    return result;
}

} // namespace

std::int32_t AaConfigEarlyStartup()
{
    return note("AaConfigEarlyStartup()");
}

std::int32_t AaStartupEeStartup()
{
    return note("AaStartupEeStartup()");
}

void AaStartupSetShutdownHandler(TAaStartupShutdownHandler handler)
{
    RecordingPlatform::get().shutdownHandler = handler;
    note(formatted("AaStartupSetShutdownHandler(%s)", handler ? "set" : "null"));
}

std::int32_t AaConfigTagSetString(const char* name, const char* value)
{
    return note(formatted("AaConfigTagSetString(\"%s\", \"%s\")", name, value));
}

std::int32_t AaConfigTagSetU16(const char* name, std::uint16_t value)
{
    return note(formatted("AaConfigTagSetU16(\"%s\", 0x%X)", name, static_cast<unsigned>(value)));
}

std::int32_t AaConfigTagGetU32(const char* name, std::uint32_t* value)
{
    const std::int32_t result = note(formatted("AaConfigTagGetU32(\"%s\")", name));
    const auto& tags = RecordingPlatform::get().tags;
    const auto found = tags.find(name);
    if (result != 0 || found == tags.end()) {
        return result != 0 ? result : EAaConfigTagStatus_NotFound;
    }
    if (found->second.size() != sizeof *value) {
        return EAaConfigTagStatus_WrongSize;
    }
    std::memcpy(value, found->second.data(), sizeof *value);
    return 0;
}

std::int32_t AaConfigTagRegister(const char* name, TAaConfigTagObserver observer)
{
    const std::int32_t result = note(formatted("AaConfigTagRegister(\"%s\")", name));
    auto& observers = RecordingPlatform::get().observers;
    const std::pair<std::string, TAaConfigTagObserver> entry(name, observer);
    if (result == 0 && std::find(observers.begin(), observers.end(), entry) == observers.end()) {
        observers.push_back(entry);
    }
    return result;
}

std::int32_t AaConfigTagUnregister(const char* name, TAaConfigTagObserver observer)
{
    std::erase(RecordingPlatform::get().observers, std::pair(std::string(name), observer));
    return note(formatted("AaConfigTagUnregister(\"%s\")", name));
}

std::int32_t AaConfigTagReadFile(const char* path)
{
    return note(formatted("AaConfigTagReadFile(\"%s\")", path));
}

std::int32_t AaConfigTagGet(const char* name, void** value, std::uint32_t* length)
{
    const std::int32_t result = note(formatted("AaConfigTagGet(\"%s\")", name));
    const auto& tags = RecordingPlatform::get().tags;
    if (result != 0 || !tags.contains(name)) {
        return result != 0 ? result : EAaConfigTagStatus_NotFound;
    }
    handOut(tags.at(name), value, length);
    return 0;
}

std::int32_t AaConfigTagGetDefault(const char* name, void** value, std::uint32_t* length, const void* defaultValue,
                                   std::uint32_t defaultLength)
{
    const std::int32_t result =
        note(formatted("AaConfigTagGetDefault(\"%s\", ", name) + hexText(defaultValue, defaultLength) + ")");
    if (result == 0) {
        const auto& tags = RecordingPlatform::get().tags;
        const auto tag = tags.find(name);
        handOut(tag == tags.end() ? std::string(static_cast<const char*>(defaultValue), defaultLength) : tag->second,
                value, length);
    }
    return result;
}

void AaMemUnRefDbg(void* block, const char* /*file*/, std::uint32_t /*line*/)
{
    note(block ? "AaMemUnRefDbg()" : "AaMemUnRefDbg(null)");
    if (block) {
        --RecordingPlatform::get().liveTagValues;
        delete[] static_cast<char*>(block);
    }
}

const std::uint32_t* AaConfigRadViews[AA_CONFIG_RAD_VIEWS];

std::int32_t AaConfigRadRegisterDomain(std::uint16_t domain, const char* name, TAaConfigRadInitialise initialise)
{
    const std::int32_t result = note(formatted("AaConfigRadRegisterDomain(%u, \"%s\")", domain, name));
    if (result == 0) {
        initialise();
    }
    return result;
}

std::int32_t AaConfigRadSetMaxTagCount(std::uint16_t domain, TAaConfigRadId last)
{
    return note(formatted("AaConfigRadSetMaxTagCount(%u, 0x%X)", domain, last));
}

std::int32_t AaConfigRadSetDefault(TAaConfigRadId id, const char* name, std::uint32_t defaultValue)
{
    return note(formatted("AaConfigRadSetDefault(0x%X, \"%s\", %u)", id, name, defaultValue));
}

std::int32_t AaConfigRadSetValue(TAaConfigRadId id, std::uint32_t value)
{
    RecordingPlatform::get().parameters[id] = value;
    return note(formatted("AaConfigRadSetValue(0x%X, %u)", id, value));
}

std::uint32_t AaConfigRadReadValue(TAaConfigRadId id)
{
    const auto& parameters = RecordingPlatform::get().parameters;
    const auto found = parameters.find(id);
    return found == parameters.end() ? 0 : found->second;
}

std::int32_t AaSysLogCallLevel = 0;

void(AaSysLogPrintE)(EAaSysLogSeverityLevel severity, std::uint32_t featureId, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = dorn::test::formattedList(format, arguments);
    va_end(arguments);
    note(formatted("%s 0x%X ", dorn::test::severityName(severity), featureId) + text);
}

void(AaSysLogPrint)(EAaSysLogSeverityLevel severity, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = dorn::test::formattedList(format, arguments);
    va_end(arguments);
    note(formatted("%s 0x0 ", dorn::test::severityName(severity)) + text);
}

std::int32_t AaProEeGetDefaultSchedulingPolicy(EAaProEuSchedulingPolicy* policy)
{
    const std::int32_t result = note(formatted("AaProEeGetDefaultSchedulingPolicy(%d)", static_cast<int>(*policy)));
    const RecordingPlatform& platform = RecordingPlatform::get();
    *policy = result == 0 ? platform.policy : platform.policyOfFailure.value_or(*policy);
    return result;
}

TAaProEuId AaProEuCurrent()
{
    return 7;
}

namespace {

/// An EU ends before the call that creates it does, whether or not the caller asked to wait.
std::int32_t runEu(TAaProEuId* euId, TAaSysComEuEntry entry, const void* args, std::uint32_t argsSize)
{
    if (euId) {
        *euId = 7;
    }
    std::vector<void*> block((argsSize + sizeof(void*) - 1) / sizeof(void*));
    std::memcpy(block.data(), args, argsSize);
    std::thread(entry, block.data()).join();
    return 0;
}

} // namespace

std::int32_t AaSysComEuCreateAndStartWithPolicy(TAaProEuId* euId, const char* name, TAaSysComEuEntry entry,
                                                std::uint32_t stackSize, EAaProEuSchedulingPolicy policy,
                                                std::uint32_t priority, const void* args, std::uint32_t argsSize,
                                                TBoolean waitForEnd)
{
    const std::int32_t result = note(
        formatted("AaSysComEuCreateAndStartWithPolicy(\"%s\", stack %u, policy %d, priority %u, argsSize %u, wait %u)",
                  name, stackSize, static_cast<int>(policy), priority, argsSize, waitForEnd));
    return result != 0 ? result : runEu(euId, entry, args, argsSize);
}

std::int32_t AaSysComEuCreateAndStart(TAaProEuId* euId, const char* name, TAaSysComEuEntry entry,
                                      std::uint32_t stackSize, std::uint32_t priority, const void* args,
                                      std::uint32_t argsSize)
{
    const std::int32_t result = note(formatted("AaSysComEuCreateAndStart(\"%s\", stack %u, priority %u, argsSize %u)",
                                               name, stackSize, priority, argsSize));
    return result != 0 ? result : runEu(euId, entry, args, argsSize);
}

void AaSysComEuWakeUp(TAaProEuId euId)
{
    note(formatted("AaSysComEuWakeUp(%u)", euId));
    RecordingPlatform::get().wakeUp();
}

AaSemReMutex* AaSemReMutexCreate()
{
    note("AaSemReMutexCreate()");
    static std::deque<int> mutexes; // kept, as a service that is not the last one leaves its own behind
    return RecordingPlatform::get().canCreateMutexes ? reinterpret_cast<AaSemReMutex*>(&mutexes.emplace_back())
                                                     : nullptr;
}

void AaSemReMutexDestroy(AaSemReMutex** mutex)
{
    note("AaSemReMutexDestroy()");
    *mutex = nullptr;
}

std::int32_t AaSemReMutexTake(AaSemReMutex* mutex)
{
    const std::int32_t result = note("AaSemReMutexTake()");
    return mutex ? result : 1;
}

std::int32_t AaSemReMutexGive(AaSemReMutex* mutex)
{
    const std::int32_t result = note("AaSemReMutexGive()");
    return mutex ? result : 1;
}

TAaSysComCpid AaSysComUserRegister(TAaSysComCpid cpid, TAaProEuId euId)
{
    note(formatted("AaSysComUserRegister(0x%X, %u)", static_cast<unsigned>(cpid), euId));
    const auto& grant = RecordingPlatform::get().grantCpid;
    return grant ? grant(cpid) : cpid;
}

std::int32_t AaSysComUserDeregister(TAaSysComCpid cpid)
{
    return note(formatted("AaSysComUserDeregister(0x%X)", static_cast<unsigned>(cpid)));
}

TAaSysComNid AaSysComGetOwnNid()
{
    return RecordingPlatform::get().nid;
}

TAaSysComSicad AaSysComSicadGet(TAaSysComCpid cpid, TAaSysComNid nid)
{
    note(formatted("AaSysComSicadGet(0x%X, 0x%X)", static_cast<unsigned>(cpid), nid));
    return (nid << 16) | cpid;
}

std::uint32_t AaSysComNmapGetBoard(TAaSysComSicad sicad)
{
    const auto& boards = RecordingPlatform::get().boards;
    const auto found = boards.find(sicad);
    return found == boards.end() ? 0 : found->second;
}

std::uint32_t AaSysComNmapGetCpu(TAaSysComSicad sicad)
{
    const auto& cpus = RecordingPlatform::get().cpus;
    const auto found = cpus.find(sicad);
    return found == cpus.end() ? 0 : found->second;
}

void* AaSysComMsgCreate(TAaSysComMsgId id, std::uint16_t payloadSize, TAaSysComSicad receiver)
{
    note(formatted("AaSysComMsgCreate(%u, %u, 0x%X)", id, static_cast<unsigned>(payloadSize), receiver));
    RecordingPlatform& platform = RecordingPlatform::get();
    const std::uint16_t size = platform.canCreatePayloads ? payloadSize : std::uint16_t{0};
    return platform.canCreateMessages ? platform.createMessage(id, size, receiver) : nullptr;
}

std::int32_t AaSysComMsgSend(void** message)
{
    return send("AaSysComMsgSend", message);
}

std::int32_t AaSysComMsgSendS(void** message, TAaSysComSicad sender)
{
    AaSysComMsgSetSender(*message, sender);
    return send("AaSysComMsgSendS", message);
}

void* AaSysComMsgReceive(std::int32_t timeout)
{
    note(formatted("AaSysComMsgReceive(%d)", timeout));
    return RecordingPlatform::get().receive(timeout);
}

void* AaSysComMsgReceiveSelective(std::int32_t timeout, const std::uint16_t* filter)
{
    std::string ids;
    for (unsigned index = 0; index <= filter[0]; ++index) {
        ids += formatted(" %u", static_cast<unsigned>(filter[index]));
    }
    note(formatted("AaSysComMsgReceiveSelective(%d,", timeout) + ids + ")");
    return RecordingPlatform::get().receive(AA_NO_WAIT);
}

void AaSysComMsgDestroy(void** message)
{
    if (void* const destroyed = std::exchange(*message, nullptr)) {
        note(formatted("AaSysComMsgDestroy(%u)", messageOf(destroyed).id));
        RecordingPlatform::get().endMessage(destroyed);
    } else {
        note("AaSysComMsgDestroy(null)");
    }
}

void* AaSysComMsgGetPayload(void* message)
{
    return message ? messageOf(message).payload.get() : nullptr;
}

std::uint16_t AaSysComMsgGetPayloadSize(const void* message)
{
    return message ? messageOf(message).size : std::uint16_t{0};
}

TAaSysComMsgId AaSysComMsgGetId(const void* message)
{
    return message ? messageOf(message).id : 0;
}

TAaSysComSicad AaSysComMsgGetSender(const void* message)
{
    return message ? messageOf(message).sender : 0;
}

TAaSysComSicad AaSysComMsgGetReceiver(const void* message)
{
    return message ? messageOf(message).receiver : 0;
}

void AaSysComMsgSetSender(void* message, TAaSysComSicad sender)
{
    if (message) {
        messageOf(message).sender = sender;
    }
}
