// SPDX-License-Identifier: MIT
/// @file DriverCall.hpp
/// What every function of the driver seam does around its work.
#pragma once

#include "description/BoardFailure.hpp"
#include "device/Resets.hpp"
#include "driver/DriverFunction.hpp"
#include "fault/FaultStore.hpp"
#include "port/CancellationOff.hpp"

#include <cstdint>
#include <exception>
#include <optional>

namespace dorn::board {

/// The code with which a call is to fail because somebody outside said so; counts the call.
std::optional<std::int32_t> injectedFault(DriverFunction function) noexcept;

/// Says in the log why a call failed, the first time at Error severity, at Warning where the board only does not have
/// what was asked for; the same again in this process at Debug.
/// @return the result for the caller
std::int32_t reportFailure(DriverFunction function, const std::exception& failure) noexcept;

/// Does @p work, which throws BoardFailure when it cannot be done. @return the result for the caller
template <class Work>
std::int32_t resultOfWork(DriverFunction function, const Work& work) noexcept
{
    try {
        work();
        return DDAL_OK;
    } catch (const std::exception& failure) {
        return reportFailure(function, failure);
    }
}

/// Carries out a driver function: fails if it is to, else does @p work, which throws BoardFailure when it cannot be
/// done. The thread is not cancelled meanwhile.
/// @param half what has happened of the work when the board's power goes in the middle of it
/// @return the result for the caller
template <class Work, class Half>
std::int32_t driverCall(DriverFunction function, const Work& work, const Half& half) noexcept
{
    const host::CancellationOff off;
    const auto fault = injectedFault(function);
    if (fault == FaultStore::powerLoss) {
        return resultOfWork(function, [&half] {
            half();
            resetBoard();
        });
    }
    return fault ? *fault : resultOfWork(function, work);
}

/// The same for work of which nothing has happened when the power goes.
template <class Work>
std::int32_t driverCall(DriverFunction function, const Work& work) noexcept
{
    return driverCall(function, work, [] {});
}

/// Requires a pointer of the caller. @throws BoardFailure
template <class Type>
Type& require(Type* pointer)
{
    if (!pointer) {
        throw BoardFailure(DDAL_ERROR_INVALID_ARGUMENT, "an argument is null");
    }
    return *pointer;
}

} // namespace dorn::board
