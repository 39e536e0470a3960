// SPDX-License-Identifier: MIT
// Seam functions that are wrong in the way that DORN_DEFECT names, as ports are: nearly right.
#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "AaCpu.h"
#include "AaFile.h"
#include "AaMem.h"
#include "AaPro.h"
#include "AaSem.h"
#include "AaStartup.h"
#include "AaSysCom.h"
#include "AaSysLog.h"
#include "AaTimer.h"
#include "ddal_devicetree.h"
#include "ddal_error.h"
#include "ddal_rio.h"
#include "ddal_unit.h"

#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unistd.h>

namespace {

bool has(std::string_view defect)
{
    static const char* const chosen = std::getenv("DORN_DEFECT");
    return chosen && defect == chosen;
}

/// A little more with each call.
std::uint32_t drift()
{
    static std::uint32_t calls = 0;
    return ++calls;
}

} // namespace

#define DEFECTIVE(function)                                                                                            \
    extern "C" decltype(function) __real_##function;                                                                   \
    extern "C" decltype(function) __wrap_##function

DEFECTIVE(AaMemMalloc);
void* __wrap_AaMemMalloc(uint32_t size)
{
    void* const block = __real_AaMemMalloc(has("memory is not aligned") ? size + 4 : size);
    return has("memory is not aligned") ? static_cast<char*>(block) + 4 : block;
}

DEFECTIVE(AaMemUnRef);
void __wrap_AaMemUnRef(void* block)
{
    if (!has("memory leaks")) {
        __real_AaMemUnRef(block);
    }
}

DEFECTIVE(AaCpuBitSwapByteOrder32);
void __wrap_AaCpuBitSwapByteOrder32(uint32_t* word)
{
    __real_AaCpuBitSwapByteOrder32(word);
    if (word && has("byte order is always swapped")) {
        *word = __builtin_bswap32(*word);
    }
}

DEFECTIVE(AaSemTake);
int32_t __wrap_AaSemTake(AaSem* sem, int32_t timeout)
{
    if (has("time-outs are milliseconds") && timeout > 0) {
        return __real_AaSemTake(sem, timeout / 1000);
    }
    return __real_AaSemTake(sem, has("poll waits") && timeout == AA_NO_WAIT ? 20'000'000 : timeout);
}

DEFECTIVE(AaSemGive);
int32_t __wrap_AaSemGive(AaSem* sem)
{
    if (has("give counts twice")) {
        __real_AaSemGive(sem);
    }
    return __real_AaSemGive(sem);
}

DEFECTIVE(AaSemDestroy);
void __wrap_AaSemDestroy(AaSem** sem)
{
    AaSem* copy = sem ? *sem : nullptr;
    __real_AaSemDestroy(has("destroy leaves the handle") ? &copy : sem);
}

DEFECTIVE(AaSemReMutexTake);
int32_t __wrap_AaSemReMutexTake(AaSemReMutex* mutex)
{
    return has("mutex does not exclude") ? 0 : __real_AaSemReMutexTake(mutex);
}

DEFECTIVE(AaSemReMutexGive);
int32_t __wrap_AaSemReMutexGive(AaSemReMutex* mutex)
{
    const int32_t status = has("mutex does not exclude") ? 0 : __real_AaSemReMutexGive(mutex);
    return has("anybody gives a mutex") ? 0 : status;
}

DEFECTIVE(AaProEuCurrent);
TAaProEuId __wrap_AaProEuCurrent()
{
    return has("all threads are one EU") ? 7 : __real_AaProEuCurrent();
}

DEFECTIVE(AaStartupSetShutdownHandler);
void __wrap_AaStartupSetShutdownHandler(TAaStartupShutdownHandler handler)
{
    if (handler || !has("handler stays")) {
        __real_AaStartupSetShutdownHandler(handler);
    }
}

DEFECTIVE(AaSysComEuCreateAndStartWithPolicy);
int32_t __wrap_AaSysComEuCreateAndStartWithPolicy(TAaProEuId* euId, const char* name, TAaSysComEuEntry entry,
                                                  uint32_t stackSize, EAaProEuSchedulingPolicy policy,
                                                  uint32_t priority, const void* args, uint32_t argsSize,
                                                  TBoolean waitForEnd)
{
    if (has("creation never waits")) {
        waitForEnd = 0;
    }
    if (has("priorities are checked") && priority > 99) {
        return 22;
    }
    return __real_AaSysComEuCreateAndStartWithPolicy(euId, name, entry, stackSize, policy, priority, args, argsSize,
                                                     waitForEnd);
}

namespace {

/// An EU that is given the caller's own block.
struct Uncopied {
    TAaSysComEuEntry entry;
    const void* args;
};

void* runUncopied(void* argument)
{
    const Uncopied uncopied = *static_cast<Uncopied*>(argument);
    return uncopied.entry(const_cast<void*>(uncopied.args));
}

} // namespace

DEFECTIVE(AaSysComEuCreateAndStart);
int32_t __wrap_AaSysComEuCreateAndStart(TAaProEuId* euId, const char* name, TAaSysComEuEntry entry, uint32_t stackSize,
                                        uint32_t priority, const void* args, uint32_t argsSize)
{
    if (has("arguments are not copied")) {
        const Uncopied uncopied{entry, args};
        return __real_AaSysComEuCreateAndStart(euId, name, runUncopied, stackSize, priority, &uncopied,
                                               sizeof uncopied);
    }
    if (has("id is stored late")) {
        TAaProEuId id = 0;
        const int32_t status = __real_AaSysComEuCreateAndStart(&id, name, entry, stackSize, priority, args, argsSize);
        usleep(10'000); // the defect itself: the EU runs before its creator goes on
        if (euId) {
            *euId = id;
        }
        return status;
    }
    return __real_AaSysComEuCreateAndStart(euId, name, entry, stackSize, priority, args, argsSize);
}

DEFECTIVE(AaSysComEuWakeUp);
void __wrap_AaSysComEuWakeUp(TAaProEuId euId)
{
    if (!has("nobody is woken")) {
        __real_AaSysComEuWakeUp(euId);
    }
}

DEFECTIVE(AaSysComUserRegister);
TAaSysComCpid __wrap_AaSysComUserRegister(TAaSysComCpid cpid, TAaProEuId euId)
{
    const TAaSysComCpid granted = __real_AaSysComUserRegister(cpid, euId);
    return has("held cpids are granted") && cpid != 0 ? cpid : granted;
}

DEFECTIVE(AaSysComGetOwnNid);
TAaSysComNid __wrap_AaSysComGetOwnNid()
{
    return has("node changes") ? drift() : __real_AaSysComGetOwnNid();
}

DEFECTIVE(AaSysComSicadGet);
TAaSysComSicad __wrap_AaSysComSicadGet(TAaSysComCpid cpid, TAaSysComNid nid)
{
    const TAaSysComSicad sicad = __real_AaSysComSicadGet(cpid, nid);
    return has("address is turned round") ? sicad << 16 | sicad >> 16 : sicad;
}

DEFECTIVE(AaSysComNmapGetBoard);
uint32_t __wrap_AaSysComNmapGetBoard(TAaSysComSicad sicad)
{
    return has("every node has a board") ? 1 : __real_AaSysComNmapGetBoard(sicad);
}

DEFECTIVE(AaSysComNmapGetCpu);
uint32_t __wrap_AaSysComNmapGetCpu(TAaSysComSicad sicad)
{
    return has("CPU goes by the cpid") ? sicad & 0xFFFFU : __real_AaSysComNmapGetCpu(sicad);
}

DEFECTIVE(AaSysComMsgCreate);
void* __wrap_AaSysComMsgCreate(TAaSysComMsgId id, uint16_t payloadSize, TAaSysComSicad receiver)
{
    return __real_AaSysComMsgCreate(has("ids have 16 bits") ? id & 0xFFFFU : id, payloadSize, receiver);
}

DEFECTIVE(AaSysComMsgGetPayloadSize);
uint16_t __wrap_AaSysComMsgGetPayloadSize(const void* message)
{
    const uint16_t size = __real_AaSysComMsgGetPayloadSize(message);
    return has("sizes are rounded up") ? static_cast<uint16_t>((size + 3) / 4 * 4) : size;
}

DEFECTIVE(AaSysComMsgSend);
int32_t __wrap_AaSysComMsgSend(void** message)
{
    if (has("sends fail silently")) {
        __real_AaSysComMsgSend(message);
        return 0;
    }
    if (has("a message is lost") && drift() % 97 == 0) {
        AaSysComMsgDestroy(message);
        return 0;
    }
    return __real_AaSysComMsgSend(message);
}

DEFECTIVE(AaSysComMsgReceive);
void* __wrap_AaSysComMsgReceive(int32_t timeout)
{
    return __real_AaSysComMsgReceive(has("receive is early") && timeout > 0 && timeout < 100'000 ? timeout / 5
                                                                                                 : timeout);
}

DEFECTIVE(AaSysComMsgReceiveSelective);
void* __wrap_AaSysComMsgReceiveSelective(int32_t timeout, const uint16_t* filter)
{
    if (has("empty filter takes all") && filter[0] == 0) {
        return __real_AaSysComMsgReceive(timeout);
    }
    if (has("others are dropped") && filter[0] != 0) {
        for (;;) {
            void* message = __real_AaSysComMsgReceive(timeout);
            if (!message || AaSysComMsgGetId(message) == filter[1]) {
                return message;
            }
            AaSysComMsgDestroy(&message);
        }
    }
    return __real_AaSysComMsgReceiveSelective(timeout, filter);
}

DEFECTIVE(AaTimerArm);
TAaTimerId __wrap_AaTimerArm(int64_t timeout, const void* identity)
{
    static const char elsewhere = 0;
    const bool isFollowed = has("identity is another") && timeout >= 0;
    return __real_AaTimerArm(has("timers are milliseconds") ? timeout / 1000 : timeout,
                             isFollowed ? &elsewhere : identity);
}

DEFECTIVE(AaTimerCancel);
int32_t __wrap_AaTimerCancel(TAaTimerId timer)
{
    return has("timers cannot be cancelled") ? 0 : __real_AaTimerCancel(timer);
}

DEFECTIVE(AaFileOpen);
AaFile* __wrap_AaFileOpen(const char* path, const char* mode)
{
    if (has("exclusive mode overwrites") && std::string_view(mode) == "wx") {
        return __real_AaFileOpen(path, "w");
    }
    return __real_AaFileOpen(path, mode);
}

DEFECTIVE(AaFileReadLine);
int32_t __wrap_AaFileReadLine(AaFile* file, char* buffer, uint32_t bufferSize)
{
    return __real_AaFileReadLine(file, buffer, has("line fills the buffer") ? bufferSize + 1 : bufferSize);
}

DEFECTIVE(AaFileGetSize);
int32_t __wrap_AaFileGetSize(AaFile* file)
{
    const int32_t size = __real_AaFileGetSize(file);
    if (has("size moves the position")) {
        AaFileSetPosition(file, 0, EAaFileOrigin_End);
    }
    return size;
}

DEFECTIVE(AaFileSetPosition);
int32_t __wrap_AaFileSetPosition(AaFile* file, int32_t offset, EAaFileOrigin origin)
{
    return __real_AaFileSetPosition(file, offset, has("origin is ignored") ? EAaFileOrigin_Begin : origin);
}

DEFECTIVE(AaFileGetBoardPath);
int32_t __wrap_AaFileGetBoardPath(const char* path, char* buffer, uint32_t bufferSize)
{
    const int32_t status = __real_AaFileGetBoardPath(path, buffer, bufferSize);
    if (path && status == 0 && has("paths lead out of the root") && std::string_view(path).starts_with("/..")) {
        std::strncpy(buffer, path, bufferSize);
    }
    return status;
}

DEFECTIVE(AaConfigRadRegisterDomain);
int32_t __wrap_AaConfigRadRegisterDomain(uint16_t domain, const char* name, TAaConfigRadInitialise initialise)
{
    if (has("initialised twice") && initialise) {
        __real_AaConfigRadRegisterDomain(domain, name, initialise);
    }
    const int32_t status = __real_AaConfigRadRegisterDomain(domain, name, initialise);
    return status == 3 && has("differences are accepted") ? 0 : status;
}

DEFECTIVE(AaConfigRadSetValue);
int32_t __wrap_AaConfigRadSetValue(TAaConfigRadId id, uint32_t value)
{
    return __real_AaConfigRadSetValue(id, has("values have 16 bits") ? value & 0xFFFFU : value);
}

DEFECTIVE(AaConfigRadReadValue);
uint32_t __wrap_AaConfigRadReadValue(TAaConfigRadId id)
{
    const uint32_t value = __real_AaConfigRadReadValue(id);
    return value == 0 && has("unknown parameters are -1") ? 0xFFFFFFFF : value;
}

DEFECTIVE(AaConfigTagSetString);
int32_t __wrap_AaConfigTagSetString(const char* name, const char* value)
{
    if (value && has("texts keep their terminator")) {
        return AaConfigTagSet(name, value, static_cast<uint32_t>(std::strlen(value) + 1));
    }
    return __real_AaConfigTagSetString(name, value);
}

DEFECTIVE(AaConfigTagGet);
int32_t __wrap_AaConfigTagGet(const char* name, void** value, uint32_t* length)
{
    const int32_t status = __real_AaConfigTagGet(name, value, length);
    return status == EAaConfigTagStatus_NotFound && has("missing tags are bad arguments")
               ? EAaConfigTagStatus_BadArgument
               : status;
}

DEFECTIVE(AaConfigTagGetU32);
int32_t __wrap_AaConfigTagGetU32(const char* name, uint32_t* value)
{
    const int32_t status = __real_AaConfigTagGetU32(name, value);
    if (status != 0 && value && has("failed reads store 0")) {
        *value = 0;
    }
    return status;
}

DEFECTIVE(AaConfigTagRegister);
int32_t __wrap_AaConfigTagRegister(const char* name, TAaConfigTagObserver observer)
{
    const int32_t status = __real_AaConfigTagRegister(name, observer);
    void* value = nullptr;
    uint32_t length = 0;
    if (status == 0 && has("present value is told") && AaConfigTagGet(name, &value, &length) == 0) {
        observer(name, value, length);
    }
    AaMemUnRef(value);
    return status;
}

DEFECTIVE(AaConfigTagUnregister);
int32_t __wrap_AaConfigTagUnregister(const char* name, TAaConfigTagObserver observer)
{
    return has("observers stay") ? 0 : __real_AaConfigTagUnregister(name, observer);
}

DEFECTIVE(AaSysLogRegisterRingBuffer);
int32_t __wrap_AaSysLogRegisterRingBuffer(uint32_t featureId, uint32_t bufferSize, EAaSysLogSeverityLevel severityLevel,
                                          TAaSysLogErrorPrintCallback errorPrintCallback)
{
    return __real_AaSysLogRegisterRingBuffer(
        featureId, has("rings are large") ? bufferSize * 64 : bufferSize,
        has("rings keep all severities") ? EAaSysLogSeverityLevel_Debug : severityLevel, errorPrintCallback);
}

DEFECTIVE(AaSysLogDumpRingBufferToFile);
int32_t __wrap_AaSysLogDumpRingBufferToFile(uint32_t featureId, const char* path)
{
    const int32_t status = __real_AaSysLogDumpRingBufferToFile(featureId, path);
    return status == 2 && has("failed dumps are fine") ? 0 : status;
}

DEFECTIVE(ddal_strerror);
int32_t __wrap_ddal_strerror(int32_t code, char* buffer, uint32_t maxLength)
{
    return __real_ddal_strerror(code, buffer,
                                has("driver lengths count the zero") && maxLength > 0 ? maxLength - 1 : maxLength);
}

DEFECTIVE(ddal_devicetree_get_unit_id);
int32_t __wrap_ddal_devicetree_get_unit_id(uint32_t unit, uint32_t maxLength, char* buffer)
{
    return __real_ddal_devicetree_get_unit_id(has("every unit is ours") ? 0 : unit, maxLength, buffer);
}

DEFECTIVE(ddal_devicetree_get_serial_number);
int32_t __wrap_ddal_devicetree_get_serial_number(uint32_t unit, uint32_t bufferSize, char* buffer)
{
    const int32_t result = __real_ddal_devicetree_get_serial_number(unit, bufferSize, buffer);
    if (result == DDAL_OK && has("texts overrun") && std::strlen(buffer) + 1 == bufferSize) {
        buffer[bufferSize] = '\0';
    }
    return result;
}

DEFECTIVE(ddal_rio_copy_close_fd);
int32_t __wrap_ddal_rio_copy_close_fd(int32_t handle)
{
    return has("handles stay open") ? DDAL_OK : __real_ddal_rio_copy_close_fd(handle);
}

DEFECTIVE(ddal_unit_get_board);
uint32_t __wrap_ddal_unit_get_board()
{
    return has("board code changes") ? drift() : __real_ddal_unit_get_board();
}
