/* SPDX-License-Identifier: MIT */
/// @file RpramShared.h
/// Reset-persistent fields: numbers with a short text that survive a reset of the unit.
///
/// Each field is a small text file in "/var/tmp/hwapi", a directory that survives a warm reset. Its first line is the
/// field's value, as `0x1F :text`; up to 10 lines below it are the values before, newest first, for whoever looks into
/// the matter later. The file names stand in RpramFiles.cpp and never change: software of another version reads them
/// after a reset.
///
/// The functions may be called from any thread, but a field is written by one thread: two that write it at once may
/// lose a line of its history.
#ifndef RPRAM_SHARED_H
#define RPRAM_SHARED_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// The fields. There are no fields user3 and user4.
#ifdef __cplusplus
typedef enum ERP_RAM_field : int32_t {
#else
typedef enum ERP_RAM_field {
#endif
    ERP_RAM_field_ResetType = 0,              ///< why the unit was reset last
    ERP_RAM_field_user1 = 1,                  ///< for services to use
    ERP_RAM_field_user2 = 2,                  ///< for services to use
    ERP_RAM_field_operatingMode = 3,          ///< operating mode
    ERP_RAM_field_testDedicated = 4,          ///< for tests
    ERP_RAM_field_ISTI = 5,                   ///< the ISTI test
    ERP_RAM_field_HWInitStorage = 6,          ///< initialisation of the hardware
    ERP_RAM_field_user5 = 7,                  ///< for services to use
    ERP_RAM_field_user6 = 8,                  ///< for services to use
    ERP_RAM_field_user7 = 9,                  ///< for services to use
    ERP_RAM_field_user8 = 10,                 ///< for services to use
    ERP_RAM_field_user9 = 11,                 ///< for services to use
    ERP_RAM_field_user10 = 12,                ///< for services to use
    ERP_RAM_field_user11 = 13,                ///< for services to use
    ERP_RAM_field_user12 = 14,                ///< for services to use
    ERP_RAM_field_user13 = 15,                ///< for services to use
    ERP_RAM_field_user14 = 16,                ///< for services to use
    ERP_RAM_field_user15 = 17,                ///< for services to use
    ERP_RAM_field_hwapiResetLoopCounter = 18, ///< resets in a row
    ERP_RAM_field_bootExtPostResultAddr = 19, ///< has no storage here
    ERP_RAM_field_resetLatchStatus = 20,      ///< has no storage here
    ERP_RAM_field_user16 = 21,                ///< for services to use
    ERP_RAM_field_user17 = 22,                ///< for services to use
    ERP_RAM_field_user18 = 23,                ///< for services to use
    ERP_RAM_field_user19 = 24,                ///< for services to use
    ERP_RAM_field_user20 = 25,                ///< for services to use
    ERP_RAM_hdbde_PM_sleep_state_LCP1 = 26,   ///< power-management sleep state, by processor
    ERP_RAM_hdbde_PM_sleep_state_LCP2 = 27,   ///< same, of LCP2
    ERP_RAM_hdbde_PM_sleep_state_LSP1 = 28,   ///< same, of LSP1
    ERP_RAM_hdbde_PM_sleep_state_LSP2 = 29,   ///< same, of LSP2
    ERP_RAM_hdbde_PM_sleep_state_LSP3 = 30,   ///< same, of LSP3
    ERP_RAM_hdbde_PM_sleep_state_LSP4 = 31,   ///< same, of LSP4
    ERP_RAM_hdbde_PM_sleep_state_LSP5 = 32,   ///< same, of LSP5
    ERP_RAM_hdbde_PM_sleep_state_LSP6 = 33,   ///< same, of LSP6
    ERP_RAM_hdbde_PM_sleep_state_LSP7 = 34,   ///< same, of LSP7
    ERP_RAM_hdbde_PM_sleep_state_LSP8 = 35,   ///< same, of LSP8
    ERP_RAM_hdbde_PM_sleep_state_LSP9 = 36,   ///< same, of LSP9
    ERP_RAM_hdbde_PM_sleep_state_LSP10 = 37,  ///< same, of LSP10
    ERP_RAM_hdbde_PM_sleep_state_LSP11 = 38,  ///< same, of LSP11
    ERP_RAM_hdbde_PM_sleep_state_LSP12 = 39,  ///< same, of LSP12
    ERP_RAM_hdbde_PM_sleep_state_LSP13 = 40,  ///< same, of LSP13
    ERP_RAM_hdbde_PM_sleep_state_LSP14 = 41,  ///< same, of LSP14
    ERP_RAM_hdbde_PM_sleep_state_LSP15 = 42,  ///< same, of LSP15
    ERP_RAM_hdbde_PM_sleep_state_LSP16 = 43,  ///< same, of LSP16
    ERP_RAM_hdbde_PM_sleep_state_LBR1 = 44,   ///< same, of LBR1
    ERP_RAM_hdbde_PM_sleep_state_LBR2 = 45,   ///< same, of LBR2
    ERP_RAM_hdbde_PM_sleep_state_LBR3 = 46,   ///< same, of LBR3
    ERP_RAM_hdbde_PM_sleep_state_LBR4 = 47,   ///< same, of LBR4
    ERP_RAM_hdbde_PM_sleep_state_LNI1 = 48,   ///< same, of LNI1
    ERP_RAM_hdbde_PM_sleep_state_LNI2 = 49,   ///< same, of LNI2
    ERP_RAM_hdbde_ISTI_counter_LCP1 = 50,     ///< counter of the ISTI test, by processor
    ERP_RAM_hdbde_ISTI_counter_LCP2 = 51,     ///< same, of LCP2
    ERP_RAM_hdbde_ISTI_counter_LSP1 = 52,     ///< same, of LSP1
    ERP_RAM_hdbde_ISTI_counter_LSP2 = 53,     ///< same, of LSP2
    ERP_RAM_hdbde_ISTI_counter_LSP3 = 54,     ///< same, of LSP3
    ERP_RAM_hdbde_ISTI_counter_LSP4 = 55,     ///< same, of LSP4
    ERP_RAM_hdbde_ISTI_counter_LSP5 = 56,     ///< same, of LSP5
    ERP_RAM_hdbde_ISTI_counter_LSP6 = 57,     ///< same, of LSP6
    ERP_RAM_hdbde_ISTI_counter_LSP7 = 58,     ///< same, of LSP7
    ERP_RAM_hdbde_ISTI_counter_LSP8 = 59,     ///< same, of LSP8
    ERP_RAM_hdbde_ISTI_counter_LSP9 = 60,     ///< same, of LSP9
    ERP_RAM_hdbde_ISTI_counter_LSP10 = 61,    ///< same, of LSP10
    ERP_RAM_hdbde_ISTI_counter_LSP11 = 62,    ///< same, of LSP11
    ERP_RAM_hdbde_ISTI_counter_LSP12 = 63,    ///< same, of LSP12
    ERP_RAM_hdbde_ISTI_counter_LSP13 = 64,    ///< same, of LSP13
    ERP_RAM_hdbde_ISTI_counter_LSP14 = 65,    ///< same, of LSP14
    ERP_RAM_hdbde_ISTI_counter_LSP15 = 66,    ///< same, of LSP15
    ERP_RAM_hdbde_ISTI_counter_LSP16 = 67,    ///< same, of LSP16
    ERP_RAM_hdbde_ISTI_counter_LCA1 = 68,     ///< same, of LCA1
    ERP_RAM_hdbde_ISTI_counter_LBI1 = 69,     ///< same, of LBI1
    ERP_RAM_hdbde_ISTI_counter_LBR1 = 70,     ///< same, of LBR1
    ERP_RAM_hdbde_ISTI_counter_LBR2 = 71,     ///< same, of LBR2
    ERP_RAM_hdbde_ISTI_counter_LBR3 = 72,     ///< same, of LBR3
    ERP_RAM_hdbde_ISTI_counter_LBR4 = 73,     ///< same, of LBR4
    ERP_RAM_hdbde_ISTI_counter_LNI1 = 74,     ///< same, of LNI1
    ERP_RAM_hdbde_ISTI_counter_LNI2 = 75,     ///< same, of LNI2
    ERP_RAM_hdbde_test_mode_LCP = 76,         ///< test mode of the LCP
    ERP_RAM_hdbde_PM_none = 77,               ///< "no processor"; has no storage
} ERP_RAM_field;

/// Bytes of a field's text with its terminating zero, as a reader must provide them.
#define RPRAM_TEXT_SIZE 100

/// Writes a field.
/// @param field the field
/// @param value its value
/// @param text what to remember with it; the file's line of number and text together is cut to 99 characters. Give it
///   no line feeds: they are written as they stand, and what is behind the first is read as earlier values. Null is as
///   "".
/// @return 0, also when the storage was full and took only a part of the file; 1 when the file cannot be opened for
///   writing, or its history cannot be read or needs more memory than there is: the field is as it was then; 3 when
///   @p field is none or has no storage, which is logged
int32_t ApiResetRpramSet(ERP_RAM_field field, uint32_t value, const char* text);

/// Reads what has last been written to a field.
/// @param value receives the value; 0 when the file holds no number in front of its first colon, 0xFFFFFFFF when that
///   has more than 32 bits
/// @param text receives the text, terminated: #RPRAM_TEXT_SIZE bytes
/// @return 0; 1 when nothing has been written yet, the file cannot be opened or read, or there is no memory; 3 when
///   @p field is none or has no storage, which is logged. @p value and @p text are set only when it is 0.
int32_t ApiResetRpramGet(ERP_RAM_field field, uint32_t* value, char* text);

#ifdef __cplusplus
}
#endif

#endif
