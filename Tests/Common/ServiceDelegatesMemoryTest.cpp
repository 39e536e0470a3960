// SPDX-License-Identifier: MIT
#include "OutOfMemory.hpp"
#include "RecordingPlatform.hpp"
#include "ScriptedService.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace vel::hwapi::common {
namespace {

TEST(ServiceDelegatesMemoryTest, DelegateThatCannotBeStoredEndsTheProcess)
{
    dorn::test::RecordingPlatform platform;
    dorn::test::ScriptedService service;
    auto* const delegate = new dorn::test::ScriptedDelegate(0x1234, [](void*) {});

    EXPECT_EXIT(
        {
            std::set_terminate([] {
                std::fputs("terminated\n", stderr);
                std::_Exit(3);
            });
            dorn::test::memoryIsOut = true;
            service.AddMsgDelegate(delegate);
            std::_Exit(0);
        },
        testing::ExitedWithCode(3), "terminated");

    service.AddMsgDelegate(delegate);
    EXPECT_TRUE(service.HasMsgDelegate(0x1234));
}

} // namespace
} // namespace vel::hwapi::common
