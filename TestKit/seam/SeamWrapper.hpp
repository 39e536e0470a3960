// SPDX-License-Identifier: MIT
/// @file SeamWrapper.hpp
/// What the generated wrappers (SeamWrapper.cpp.in) have in common.
#pragma once

#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "AaFile.h"
#include "AaSysCom.h"
#include "ddal_error.h"
#include "ddal_rio.h"
#include "seam/RealSeam.hpp"
#include "seam/SeamCall.hpp"
#include "seam/ShutdownHandler.hpp"

#include <cerrno>
#include <cstddef>
#include <tuple>

namespace dorn::testkit {

template <auto Function>
using SeamParameters = typename SeamSignature<decltype(Function)>::Parameters;
/// Type of parameter @p index of a platform function.
template <auto Function, std::size_t index>
using SeamParameter = std::tuple_element_t<index, SeamParameters<Function>>;

/// What the TestKit does first at a call.
template <auto Function>
struct OnCall {
    static void apply(auto...) {}
};
template <>
struct OnCall<AaStartupSetShutdownHandler> {
    static void apply(TAaStartupShutdownHandler handler) { noteShutdownHandler(handler); }
};

/// What a function does to its arguments even when it fails.
template <auto Function>
struct OnFailure {
    static void apply(auto...) {}
};
template <>
struct OnFailure<AaSysComMsgSend> {
    static void apply(void** message) { __real_AaSysComMsgDestroy(message); }
};
template <>
struct OnFailure<AaSysComMsgSendS> {
    static void apply(void** message, TAaSysComSicad) { __real_AaSysComMsgDestroy(message); }
};
template <>
struct OnFailure<AaConfigTagGet> {
    static void apply(const char*, void** value, std::uint32_t*) { *value = nullptr; }
};
template <>
struct OnFailure<AaConfigTagGetDefault> {
    static void apply(const char*, void** value, std::uint32_t*, const void*, std::uint32_t) { *value = nullptr; }
};
template <>
struct OnFailure<AaFileOpen> {
    static void apply(const char*, const char*) { errno = EIO; }
};
template <>
struct OnFailure<AaFileRemove> {
    static void apply(const char*) { errno = EIO; }
};
template <>
struct OnFailure<AaFileClose> {
    static void apply(AaFile* file) { __real_AaFileClose(file); }
};
template <>
struct OnFailure<ddal_rio_copy_close_fd> {
    static void apply(std::int32_t handle) { __real_ddal_rio_copy_close_fd(handle); }
};
template <>
struct OnFailure<ddal_strerror> {
    static void apply(std::int32_t, char* buffer, std::uint32_t)
    {
        if (buffer) {
            *buffer = '\0';
        }
    }
};

/// How many wrapped functions the calling thread is in: what they call is the platform's own affair.
inline constinit thread_local unsigned platformDepth = 0;

/// Whether a function calls code of its user before it returns.
template <auto Function>
constexpr bool callsBack = false;
template <>
inline constexpr bool callsBack<AaConfigRadRegisterDomain> = true;

/// Also left when the thread is cancelled.
class InPlatform {
public:
    InPlatform() { ++platformDepth; }
    ~InPlatform() { --platformDepth; }
    InPlatform(const InPlatform&) = delete;
    InPlatform& operator=(const InPlatform&) = delete;
};

/// Counts a call and carries it out unless it is to fail.
template <auto Function, class... Arguments>
SeamReturn<Function> callOrFail(decltype(Function) real, Arguments... arguments)
{
    OnCall<Function>::apply(arguments...);
    if (platformDepth != 0) {
        return real(arguments...);
    }
    if (const auto failure = seamCall<Function>().count()) {
        OnFailure<Function>::apply(arguments...);
        return static_cast<SeamReturn<Function>>(*failure);
    }
    if constexpr (callsBack<Function>) {
        return real(arguments...);
    } else {
        const InPlatform inPlatform;
        return real(arguments...);
    }
}

} // namespace dorn::testkit
