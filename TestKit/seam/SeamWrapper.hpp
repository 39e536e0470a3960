// SPDX-License-Identifier: MIT
/// @file SeamWrapper.hpp
/// What the generated wrappers (SeamWrapper.cpp.in) have in common.
#pragma once

#include "AaConfigTag.h"
#include "AaFile.h"
#include "AaSysCom.h"
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

/// Counts a call and carries it out unless it is to fail.
template <auto Function, class... Arguments>
SeamReturn<Function> callOrFail(decltype(Function) real, Arguments... arguments)
{
    OnCall<Function>::apply(arguments...);
    const auto failure = seamCall<Function>().count();
    if (!failure) {
        return real(arguments...);
    }
    OnFailure<Function>::apply(arguments...);
    return static_cast<SeamReturn<Function>>(*failure);
}

} // namespace dorn::testkit
