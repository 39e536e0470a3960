/* SPDX-License-Identifier: MIT */
/// @file AaPro.h
/// Execution environment (EE, the process) and execution units (EU, its threads).
///
/// An EU has a name, a scheduling policy, a priority and a message queue of its own (AaSysCom.h). EUs are created with
/// AaSysComEuCreateAndStart(). A thread that the platform did not create (the process's `main`, a `std::thread`)
/// becomes an EU by itself as soon as it calls a function that needs one, and stops being one when it ends.
#ifndef AA_PRO_H
#define AA_PRO_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Identity of an EU within its process. Never 0; not used for another EU while this one lives.
typedef uint32_t TAaProEuId;

/// How an EU competes for the processor.
typedef enum EAaProEuSchedulingPolicy {
    EAaProEuSchedulingPolicy_NotDefined = 0, ///< take the default policy of the EE
    EAaProEuSchedulingPolicy_Background = 1, ///< time sharing; the priority is not used
    EAaProEuSchedulingPolicy_RoundRobin = 2, ///< real time, equal priorities take turns
    EAaProEuSchedulingPolicy_Fifo = 3        ///< real time, runs until it waits
} EAaProEuSchedulingPolicy;

/// Returns the calling thread's EU id.
TAaProEuId AaProEuCurrent(void);

/// Tells the policy that EUs of this process get unless they ask for another.
/// @param policy receives the policy; left as it is on failure.
/// @return 0; another value when the policy cannot be determined or @p policy is null.
int32_t AaProEeGetDefaultSchedulingPolicy(EAaProEuSchedulingPolicy* policy);

#ifdef __cplusplus
}
#endif

#endif
