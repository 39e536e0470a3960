/* SPDX-License-Identifier: MIT */
/// @file AaStartup.h
/// Start-up and end of the execution environment (EE, the process).
///
/// 1. AaConfigEarlyStartup() (AaConfigTag.h) makes configuration tags usable.
/// 2. The executable names its EE: tags "tessel.service.aapro.eename" and "tessel.service.aatbts.cpid".
/// 3. AaStartupEeStartup() brings up everything else under that name.
#ifndef AA_STARTUP_H
#define AA_STARTUP_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Brings up the platform for this process: log, message passing, the process's entry in the node's list of EEs.
/// Called once, after the EE's name has been set.
/// @return 0; another value when the platform is not usable (the reason has been printed to standard error).
int32_t AaStartupEeStartup(void);

/// Called when the process has been asked to end (on a Linux host: SIGTERM, SIGINT or SIGHUP, each unless the process
/// was started with it ignored, as `nohup` does with SIGHUP).
///
/// It may run on any thread and in a signal handler: it may set atomic flags, AaSemGive() and AaSysComEuWakeUp(), no
/// more.
typedef void (*TAaStartupShutdownHandler)(void);

/// Sets the function to be called when the process has been asked to end; null restores what was there before.
/// Requests that follow within a second count as the same one, also when null has been set meanwhile: a process that
/// has ended well on the first does not die of the second. A later one, while the process is still ending, takes the
/// behaviour of before, so that a hung process can be ended.
void AaStartupSetShutdownHandler(TAaStartupShutdownHandler handler);

#ifdef __cplusplus
}
#endif

#endif
