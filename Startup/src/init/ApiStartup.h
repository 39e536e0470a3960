/* SPDX-License-Identifier: MIT */
/// @file ApiStartup.h
/// Start-up of a hardware service's executable, before it does anything else with the platform.
///
/// 1. The process calls ApiStartupInitializeExecutable() once, from its `main` thread (`Service::Startup` does).
/// 2. That brings up the execution environment (EE), reads the component's configuration file and registers the R&D
///    parameter domains "HWA" and "HWAState".
/// 3. From then on configuration tags, R&D parameters, the log and messages may be used.
#ifndef INIT_API_STARTUP_H
#define INIT_API_STARTUP_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Brings up the platform for this executable.
///
/// Progress and the failures of the EE's start are printed to standard output, which is made line-buffered, because
/// there is no log yet; failures of the domains are logged as warnings.
/// @param argc number of @p argv's entries
/// @param argv the process's arguments; only the first is used, to name the program in what is printed
/// @param name the EE's name; copied
/// @param tbts cpid by which the EE is known
/// @return 1 when the EE has started and both domains are registered. 0 otherwise; if only a domain could not be
///   registered, the EE runs all the same and messages can be received.
TBoolean ApiStartupInitializeExecutable(int32_t argc, char** argv, const char* name, uint16_t tbts);

/// Declares the parameters of #ERadHwapi. Given to the platform, which calls it while it sets up the domain "HWA";
/// called at another time it has no effect.
void ApiStartupInitializeRadParameters(void);

/// Declares the registered parameters of #ERadHwapiState, as ApiStartupInitializeRadParameters() does for "HWA".
void ApiStartupInitializeStateRadParameters(void);

#ifdef __cplusplus
}
#endif

#endif
