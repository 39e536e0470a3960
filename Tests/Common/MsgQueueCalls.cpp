// SPDX-License-Identifier: MIT
// The linker sends the library's calls of the message queue functions through here, so that the recording platform
// writes them down too.
#include "RecordingPlatform.hpp"
#include "hwapiMsgQueue.h"

namespace {

void note(const char* call)
{
    dorn::test::RecordingPlatform::get().note(call, "");
}

} // namespace

extern "C" {
void __real_hwapiMsgQueueInit();                         // NOLINT: the linker's name
void __real_hwapiMsgQueueCreateAccessMutex();            // NOLINT
void __real_hwapiMsgQueueDestroy();                      // NOLINT
void* __real_hwapiMsgQueueReceive(std::int32_t timeout); // NOLINT
void __wrap_hwapiMsgQueueInit();                         // NOLINT
void __wrap_hwapiMsgQueueCreateAccessMutex();            // NOLINT
void __wrap_hwapiMsgQueueDestroy();                      // NOLINT
void* __wrap_hwapiMsgQueueReceive(std::int32_t timeout); // NOLINT

void __wrap_hwapiMsgQueueInit() // NOLINT
{
    note("hwapiMsgQueueInit()");
    __real_hwapiMsgQueueInit();
}

void __wrap_hwapiMsgQueueCreateAccessMutex() // NOLINT
{
    note("hwapiMsgQueueCreateAccessMutex()");
    __real_hwapiMsgQueueCreateAccessMutex();
}

void __wrap_hwapiMsgQueueDestroy() // NOLINT
{
    note("hwapiMsgQueueDestroy()");
    __real_hwapiMsgQueueDestroy();
}

void* __wrap_hwapiMsgQueueReceive(std::int32_t timeout) // NOLINT
{
    note(dorn::test::formatted("hwapiMsgQueueReceive(%d)", timeout).c_str());
    return __real_hwapiMsgQueueReceive(timeout);
}
}
