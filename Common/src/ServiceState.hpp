// SPDX-License-Identifier: MIT
/// @file ServiceState.hpp
/// What a service's state parameter says; see Service.hpp.
#pragma once

namespace vel::hwapi::common {

/// Numbers that operators and other boards know. Those up to EServiceState_Failed are published by the framework.
enum EServiceState : unsigned int {
    EServiceState_Starting = 1, ///< does not take messages yet
    EServiceState_Waiting = 2,  ///< for a message
    EServiceState_Handling = 3, ///< a message
    EServiceState_Ended = 4,    ///< as it should
    EServiceState_Failed = 5,   ///< ended by an exception
    EServiceState_FirstOwn = 7  ///< this and all above have the meaning that the service gives them; 6 has none
};

} // namespace vel::hwapi::common
