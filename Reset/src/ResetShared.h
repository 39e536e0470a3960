/* SPDX-License-Identifier: MIT */
/// @file ResetShared.h
/// Reset of the unit.
#ifndef RESET_SHARED_H
#define RESET_SHARED_H

#ifdef __cplusplus
extern "C" {
#endif

/// Resets the unit by its watchdog. Every process of the unit ends where it stands: store first what must survive, see
/// RpramShared.h.
///
/// Returns only when the unit could not be reset, which is logged at severity Info with the driver's code, feature
/// `ERadHwapi_RESET`. May be called from any thread.
void ApiResetMcu(void);

#ifdef __cplusplus
}
#endif

#endif
