// SPDX-License-Identifier: MIT
#include "RedundancyManagerS.hpp"

#include "AaConfigTag.h"
#include "AaMem.h"
#include "AaSysLog.h"
#include "OwnUnit.hpp"
#include "RedundancyNames.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <iterator>
#include <ranges>
#include <utility>
#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common;

/// Without a gateway no heartbeat goes out; how long until it is tried again.
constexpr std::chrono::milliseconds noRouteRetryTime{1000};

constexpr std::uint32_t beatsIn(std::chrono::milliseconds time)
{
    return static_cast<std::uint32_t>(time / mateHeartbeatTime);
}

constexpr std::array question{ERedundancyCommand_CardState};
constexpr std::array becomeActive{ERedundancyCommand_PrepareActive, ERedundancyCommand_TakeHwLatch,
                                  ERedundancyCommand_EnableActive};
constexpr std::array becomeStandby{ERedundancyCommand_PrepareStandby, ERedundancyCommand_ReleaseActive,
                                   ERedundancyCommand_ReleaseHwLatch};

bool isFailure(std::uint32_t state)
{
    return state == ERedundancyState_HwapiFailure || state == ERedundancyState_TesselFailure ||
           state == ERedundancyState_NoMateCard || state == ERedundancyState_Timeout;
}

bool takesPart(const SRedundantService& service, bool isQuestion)
{
    return isQuestion || service.mode == ERedundancyMode_Switchover || service.mode == ERedundancyMode_All;
}

/// The node id that a text says: decimal, or hexadecimal behind "0x".
std::optional<std::uint16_t> nodeIn(const std::string& text)
{
    const int base = text.starts_with("0x") ? 16 : 10;
    std::uint16_t node = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data() + (base == 16 ? 2 : 0), end, node, base);
    return error == std::errc() && last == end && node != 0 ? std::optional(node) : std::nullopt;
}

/// The term that the half was in when its manager last ran.
std::uint32_t termBefore()
{
    void* value = nullptr;
    std::uint32_t length = 0;
    std::uint32_t term = 0;
    if (AaConfigTagGet(termTag, &value, &length) == EAaConfigTagStatus_Ok) {
        if (length == sizeof term) {
            std::memcpy(&term, value, sizeof term);
        }
        AaMemUnRef(value);
    }
    return term;
}

} // namespace

RedundancyManagerS::RedundancyManagerS()
    : Service("RedundancyManager", redundancyManagerCpid, ERadHwapi_RedS, ERadHwapiState_HwCtrlSState)
{
    GetArgumentParser().SetArgumentInfo("-v Switch this service's prints on\n"
                                        "--mate=NODE Node id of the pair's other half\n");
}

unsigned int RedundancyManagerS::PreStartup()
{
    if (GetArgumentParser().ReadArgument("v") == "arg on") {
        SetVerbose(1);
    }
    return 1;
}

void RedundancyManagerS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&RedundancyManagerS::HandleRegister);
    AddMsgHandler(&RedundancyManagerS::HandleAcknowledgement);
    AddMsgHandler(&RedundancyManagerS::HandleState);
    AddMsgHandler(&RedundancyManagerS::HandleTimeOut);
    AddMsgHandler(&RedundancyManagerS::HandleShow);
    AddMsgHandler(&RedundancyManagerS::HandleSwitch);
    AddMsgHandler(&RedundancyManagerS::HandleHeartbeat);
    m_services.load(GetRadId());
    m_role = isActiveLcp() ? EUnitRole_Active : EUnitRole_Standby;
    meetMate();
}

void RedundancyManagerS::HandleRegister(HwapiRedundancyRegisterReqMsg request)
{
    const TAaSysComSicad address = request.GetSender();
    if ((address & 0xFFFFU) == 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(),
                       "Registration dropped: its sender has no cpid (0x%08X)", address);
        return;
    }
    if (request->redundancyMode == ERedundancyMode_None) {
        forget(address); // nobody waits for an answer
        return;
    }
    HwapiRedundancyRegisterRespMsg answer(address, 0);
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No memory to answer 0x%08X", address);
        return;
    }
    answer->transactionId = request->transactionId;
    answer->redundancyMode = request->redundancyMode;
    answer->clientAddress = address;
    answer->status = enter(address, request->redundancyMode);
    answer.SetSender(GetSicad());
    answer.Send();
}

std::int32_t RedundancyManagerS::enter(TAaSysComSicad address, std::uint32_t mode)
{
    const ERedundancyRegisterStatus status = m_services.add(address, mode);
    const EAaSysLogSeverityLevel severity =
        status == ERedundancyRegisterStatus_Ok ? EAaSysLogSeverityLevel_Info : EAaSysLogSeverityLevel_Error;
    AaSysLogPrintE(severity, GetRadId(), "Service 0x%08X registers for %u %s: status %d", address, mode,
                   nameIn(redundancyModeNames, mode), status);
    if (m_action && m_action->pending.erase(address) != 0) { // it has started anew and knows of no command
        m_action->failed.insert(address);
        goOnIfDone();
    }
    return status;
}

void RedundancyManagerS::forget(TAaSysComSicad address)
{
    if (m_services.remove(address)) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Service 0x%08X is no longer registered", address);
    }
    if (m_action && m_action->pending.erase(address) != 0) {
        goOnIfDone();
    }
}

void RedundancyManagerS::HandleShow(RedundancyShowReqMsg request)
{
    const Action action{question, std::nullopt, request.GetSender(), request->transactionId, 0, {}, {}};
    if (!begin(action)) {
        showTo(action.asker, action.transactionId); // as far as it is known
    }
}

void RedundancyManagerS::HandleSwitch(RedundancySwitchReqMsg request)
{
    const TAaSysComSicad asker = request.GetSender();
    if (request->role != EUnitRole_Active && request->role != EUnitRole_Standby) {
        answerSwitch(asker, request->transactionId, ERedundancySwitchStatus_BadRole);
        return;
    }
    if (!beginSwitch(static_cast<EUnitRole>(request->role), asker, request->transactionId)) {
        answerSwitch(asker, request->transactionId, ERedundancySwitchStatus_Busy);
    }
}

bool RedundancyManagerS::beginSwitch(EUnitRole target, TAaSysComSicad asker, std::uint32_t transactionId)
{
    const std::span<const ERedundancyCommand> commands = target == EUnitRole_Active ? becomeActive : becomeStandby;
    return begin({commands, target, asker, transactionId, 0, {}, {}});
}

/// @return false when it is not possible now.
bool RedundancyManagerS::begin(const Action& action)
{
    if (m_action) {
        return false;
    }
    constexpr auto time = std::chrono::microseconds(redundancyAnswerTime).count();
    const TAaTimerId timer = AaTimerArm(time, reinterpret_cast<const void*>(++m_actionCount));
    if (timer == 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No timer to wait for the services by");
        return false;
    }
    m_action = action;
    m_action->timer = timer;
    giveNextCommand();
    return true;
}

void RedundancyManagerS::giveNextCommand()
{
    while (!m_action->commands.empty() && m_action->pending.empty() && m_action->failed.empty()) {
        const ERedundancyCommand command = m_action->commands.front();
        m_action->commands = m_action->commands.subspan(1);
        ++m_commandCount;
        std::vector<TAaSysComSicad> unreachable;
        giveCommandTo(m_services.all(), command, unreachable);
        if (m_mate && !m_action->target) {
            giveCommandTo(m_mate->services(), command, unreachable);
        }
        for (const TAaSysComSicad address : unreachable) {
            if (!m_services.remove(address)) {
                m_mate->services().erase(address);
            }
            AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, GetRadId(), "Service 0x%08X has gone: forgotten", address);
        }
    }
    if (m_action->pending.empty()) {
        end();
    }
}

void RedundancyManagerS::giveCommandTo(std::map<std::uint32_t, SRedundantService>& services, ERedundancyCommand command,
                                       std::vector<TAaSysComSicad>& unreachable)
{
    for (auto& [address, service] : services) {
        if (takesPart(service, !m_action->target) && !giveCommand(service, command)) {
            unreachable.push_back(address);
        }
    }
}

/// A registered service, or one of the mate's; null for all others.
SRedundantService* RedundancyManagerS::find(TAaSysComSicad address)
{
    if (SRedundantService* const own = m_services.find(address); own || !m_mate) {
        return own;
    }
    const auto found = m_mate->services().find(address);
    return found == m_mate->services().end() ? nullptr : &found->second;
}

/// @return false when the service is not there any more.
bool RedundancyManagerS::giveCommand(SRedundantService& service, ERedundancyCommand command)
{
    service.command = command;
    service.state = 0;
    void* message =
        AaSysComMsgCreate(HwapiRedundancyStateReqMsg::ID, sizeof(SHwapiRedundancyStateReq), service.address);
    if (!message) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No memory for a command to 0x%08X", service.address);
        m_action->failed.insert(service.address);
        return true;
    }
    const SHwapiRedundancyStateReq request{m_commandCount, command};
    std::memcpy(AaSysComMsgGetPayload(message), &request, sizeof request);
    const std::int32_t status = AaSysComMsgSendS(&message, GetSicad());
    if (status == EAaSysComStatus_NoReceiver || status == EAaSysComStatus_NoRoute) {
        return false;
    }
    if (status == EAaSysComStatus_Ok) {
        m_action->pending.insert(service.address);
    } else {
        noteState(service, ERedundancyState_Timeout); // it does not take its messages
    }
    return true;
}

void RedundancyManagerS::HandleAcknowledgement(HwapiRedundancyStateRespMsg acknowledgement)
{
    if (acknowledgement->status == 0) {
        return; // the state is still to come
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "Service 0x%08X refuses %u %s: status %d",
                   acknowledgement.GetSender(), acknowledgement->command,
                   nameIn(redundancyCommandNames, acknowledgement->command), acknowledgement->status);
    if (m_action && acknowledgement->transactionId == m_commandCount &&
        m_action->pending.erase(acknowledgement.GetSender()) != 0) {
        m_action->failed.insert(acknowledgement.GetSender());
        goOnIfDone();
    }
}

void RedundancyManagerS::HandleState(ApiRedundancyIndMsg indication)
{
    const TAaSysComSicad address = indication.GetSender();
    SRedundantService* const service = find(address);
    if (!service || service->command != indication->command) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, GetRadId(),
                       "State %u after command %u of 0x%08X dropped: nobody asked for it", indication->state,
                       indication->command, address);
        return;
    }
    noteState(*service, indication->state);
    if (m_action && indication->state != ERedundancyState_Unfinished && m_action->pending.erase(address) != 0) {
        goOnIfDone();
    }
}

void RedundancyManagerS::noteState(SRedundantService& service, std::uint32_t state)
{
    service.state = state;
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Service 0x%08X after %s: %u %s", service.address,
                   nameIn(redundancyCommandNames, service.command), state, redundancyStateName(state));
    if (m_action && m_action->target && isFailure(state)) {
        m_action->failed.insert(service.address);
    }
}

void RedundancyManagerS::HandleTimeOut(TimeOutMsg timeOut)
{
    if (timeOut->identity == this) {
        beat();
        return;
    }
    if (!m_action || timeOut->identity != reinterpret_cast<const void*>(m_actionCount)) {
        return; // of an action that has ended
    }
    for (const TAaSysComSicad address : std::exchange(m_action->pending, {})) {
        if (SRedundantService* const service = find(address)) {
            noteState(*service, ERedundancyState_Timeout);
        }
    }
    end();
}

void RedundancyManagerS::goOnIfDone()
{
    if (m_action->pending.empty()) {
        giveNextCommand();
    }
}

void RedundancyManagerS::end()
{
    AaTimerCancel(m_action->timer);
    if (m_action->target) {
        endSwitch(*m_action->target);
        sendHeartbeat(); // the mate need not wait for the next one to learn of it
    } else {
        showTo(m_action->asker, m_action->transactionId);
    }
    m_action.reset();
}

void RedundancyManagerS::endSwitch(EUnitRole target)
{
    const bool isDone = m_action->failed.empty() && m_action->commands.empty();
    m_role = isDone ? target : EUnitRole_Between;
    if (isDone) {
        if (target == EUnitRole_Active && m_mate) {
            m_term = std::max(m_term, m_mate->term()) + 1;
            AaConfigTagSetU32(termTag, m_term);
        }
        AaConfigTagSetU32(activeUnitTag, target == EUnitRole_Active ? 1 : 0);
    }
    AaSysLogPrintE(isDone ? EAaSysLogSeverityLevel_Info : EAaSysLogSeverityLevel_Error, GetRadId(), "Switch to %s %s",
                   unitRoleNames[target], isDone ? "done" : "failed");
    answerSwitch(m_action->asker, m_action->transactionId,
                 isDone ? ERedundancySwitchStatus_Done : ERedundancySwitchStatus_Failed);
}

void RedundancyManagerS::meetMate()
{
    m_term = termBefore();
    const std::string text = GetArgumentParser().ReadArgument("mate");
    if (text == "arg off") {
        return;
    }
    const std::optional<std::uint16_t> node = nodeIn(text);
    if (!node || *node == (GetSicad() >> 16)) {
        throw InitFailedException("'--mate=" + text + "' is not the other half's node id", __FILE__, __LINE__);
    }
    m_mate.emplace(*node);
    sendHeartbeat();
    armHeartbeat();
}

void RedundancyManagerS::armHeartbeat()
{
    if (AaTimerArm(std::chrono::microseconds(mateHeartbeatTime).count(), this) == 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No timer: the mate is not looked after any more");
    }
}

void RedundancyManagerS::beat()
{
    armHeartbeat();
    sendHeartbeat();
    if (m_beatsToDecide != 0) {
        --m_beatsToDecide;
    }
    if (m_mate->miss()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, GetRadId(),
                       "Mate 0x%04X is silent: %u heartbeats have not come; it was %s", m_mate->node(),
                       mateHeartbeatsToMiss, nameIn(unitRoleNames, m_mate->role()));
        m_beatsToDecide = 0;
    }
    if (!m_mate->isHeard()) {
        standInForMate();
    }
}

void RedundancyManagerS::standInForMate()
{
    if (m_mate->wasActive() && m_role != EUnitRole_Active && mayDecide()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, GetRadId(), "Taking over from mate 0x%04X", m_mate->node());
        beginSwitch(EUnitRole_Active, 0, 0);
    }
}

void RedundancyManagerS::yieldToMate()
{
    if (m_mate->wasActive() && isInTheWrong() && mayDecide()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, GetRadId(),
                       "Mate 0x%04X is active in term %u: this half, of term %u, yields", m_mate->node(),
                       m_mate->term(), m_term);
        beginSwitch(EUnitRole_Standby, 0, 0);
    }
}

/// Beside an active mate a half is to be standby. Of two active ones the one of the later term stays active; in the
/// same term the one with the lesser node id.
bool RedundancyManagerS::isInTheWrong()
{
    if (m_role != EUnitRole_Active) {
        return m_role == EUnitRole_Between;
    }
    return m_term != m_mate->term() ? m_term < m_mate->term() : GetSicad() >> 16 > m_mate->node();
}

/// Whether a switch that nobody has asked for can begin; what did not succeed is not tried at every heartbeat.
bool RedundancyManagerS::mayDecide()
{
    if (m_action || m_beatsToDecide != 0) {
        return false;
    }
    m_beatsToDecide = beatsIn(decisionRetryTime);
    return true;
}

void RedundancyManagerS::sendHeartbeat()
{
    if (!m_mate) {
        return;
    }
    if (m_beatsToSend != 0) {
        --m_beatsToSend;
        return;
    }
    const std::vector<SRedundancyRegistration> registrations = m_services.registrations();
    const std::size_t size = registrations.size() * sizeof(SRedundancyRegistration);
    void* message = AaSysComMsgCreate(MateHeartbeatMsg::ID, static_cast<std::uint16_t>(sizeof(SMateHeartbeat) + size),
                                      m_mate->manager());
    if (!message) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No memory for a heartbeat");
        return;
    }
    const SMateHeartbeat heartbeat{m_role, m_term, static_cast<std::uint32_t>(registrations.size())};
    auto* const payload = static_cast<char*>(AaSysComMsgGetPayload(message));
    std::memcpy(payload, &heartbeat, sizeof heartbeat);
    if (size != 0) {
        std::memcpy(payload + sizeof heartbeat, registrations.data(), size);
    }
    if (AaSysComMsgSendS(&message, GetSicad()) == EAaSysComStatus_NoRoute) {
        m_beatsToSend = beatsIn(noRouteRetryTime); // each failure is a line in the log
    }
}

void RedundancyManagerS::HandleHeartbeat(MateHeartbeatMsg heartbeat)
{
    const std::size_t count = heartbeat->serviceCount;
    const std::size_t size = heartbeat.GetPayloadSize();
    if (!m_mate || heartbeat.GetSender() != m_mate->manager() || count > maxRedundantServices ||
        size != sizeof(SMateHeartbeat) + count * sizeof(SRedundancyRegistration)) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, GetRadId(),
                       "Heartbeat of 0x%08X with %zu services in %zu bytes dropped", heartbeat.GetSender(), count,
                       size);
        return;
    }
    std::vector<SRedundancyRegistration> services(count);
    if (count != 0) {
        std::memcpy(services.data(), heartbeat.GetPayload() + 1, count * sizeof(SRedundancyRegistration));
    }
    if (m_mate->hear(*heartbeat.GetPayload(), services)) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Mate 0x%04X is there: %s in term %u", m_mate->node(),
                       nameIn(unitRoleNames, m_mate->role()), m_mate->term());
        m_beatsToDecide = 0;
    }
    yieldToMate();
}

/// Sends an answer with services behind its record. @param fill is given the answer, to write what else is in it
template <class Answer, class Fill>
void RedundancyManagerS::answerTo(TAaSysComSicad asker, std::uint32_t transactionId,
                                  const std::vector<SRedundantService>& services, const Fill& fill)
{
    constexpr std::size_t recordSize = sizeof(*Answer(nullptr).GetPayload());
    const std::size_t size = services.size() * sizeof(SRedundantService);
    Answer answer(asker, static_cast<int>(recordSize + size));
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No memory to answer 0x%08X", asker);
        return;
    }
    answer->transactionId = transactionId;
    answer->role = m_role;
    answer->serviceCount = static_cast<std::uint32_t>(services.size());
    fill(answer);
    if (size != 0) {
        std::memcpy(answer.GetPayload() + 1, services.data(), size);
    }
    answer.SetSender(GetSicad());
    answer.Send();
}

void RedundancyManagerS::showTo(TAaSysComSicad asker, std::uint32_t transactionId)
{
    std::vector<SRedundantService> services = m_services.list();
    if (m_mate) {
        std::ranges::copy(m_mate->services() | std::views::values, std::back_inserter(services));
    }
    answerTo<RedundancyShowRespMsg>(asker, transactionId, services, [](RedundancyShowRespMsg) {});
}

void RedundancyManagerS::answerSwitch(TAaSysComSicad asker, std::uint32_t transactionId, ERedundancySwitchStatus status)
{
    if (asker == 0) {
        return; // nobody has asked: the switch was the mate's doing
    }
    std::vector<SRedundantService> failed;
    if (status == ERedundancySwitchStatus_Failed) {
        for (const TAaSysComSicad address : m_action->failed) {
            if (const SRedundantService* const service = m_services.find(address)) {
                failed.push_back(*service);
            }
        }
    }
    answerTo<RedundancySwitchRespMsg>(asker, transactionId, failed,
                                      [status](RedundancySwitchRespMsg answer) { answer->status = status; });
}

} // namespace dorn::examples
