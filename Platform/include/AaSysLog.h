/* SPDX-License-Identifier: MIT */
/// @file AaSysLog.h
/// The system log.
///
/// A line belongs to a feature, and a feature id is the identifier of the R&D parameter that switches its prints on. A
/// line is kept when its severity is Warning or above, or when its feature's parameter is not 0, or when the platform
/// has been told to keep lines of its severity. A line that is not kept is not formatted and its arguments are not
/// evaluated.
#ifndef AA_SYS_LOG_H
#define AA_SYS_LOG_H

#include "AaConfigRad.h"
#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// How much a line matters, and as a limit what is kept.
typedef enum EAaSysLogSeverityLevel {
    EAaSysLogSeverityLevel_NotValid = 0, ///< no severity
    EAaSysLogSeverityLevel_Debug = 1,    ///< for who looks into the code
    EAaSysLogSeverityLevel_Info = 2,     ///< what happens in normal operation
    EAaSysLogSeverityLevel_Warning = 3,  ///< something is not as it should be, and work goes on
    EAaSysLogSeverityLevel_Error = 4,    ///< something has failed
    EAaSysLogSeverityLevel_Vip = 5,      ///< more important than an error: always worth a line
    EAaSysLogSeverityLevel_NoPrints = 6  ///< as a limit: keep nothing; a line of this severity is never kept
} EAaSysLogSeverityLevel;

/// Least severity for which the print functions are called although the feature is off. The platform sets it; a
/// platform that decides for itself sets it to 0, so that every line reaches it.
extern int32_t AaSysLogCallLevel;

/// Writes a line. @p format and its arguments are those of `printf`; a line feed at the end is not needed.
/// Called through the macro of the same name, which asks first whether the line is worth a call.
void AaSysLogPrintE(EAaSysLogSeverityLevel severity, uint32_t featureId, const char* format, ...)
    AA_PRINTF_FORMAT(3, 4);

/// Writes a line that belongs to no feature. Called through the macro of the same name.
void AaSysLogPrint(EAaSysLogSeverityLevel severity, const char* format, ...) AA_PRINTF_FORMAT(2, 3);

/// Tells whether a line of this severity and feature is worth a call of AaSysLogPrintE().
static inline int AaSysLogIsOn(EAaSysLogSeverityLevel severity, uint32_t featureId)
{
    return (int32_t)severity >= __atomic_load_n(&AaSysLogCallLevel, __ATOMIC_RELAXED) ||
           AaConfigRadGetValue(featureId) != 0;
}

/// @{
/// Keeps a line that is off down to a load and a branch. Severity and feature are evaluated twice.
#define AaSysLogPrintE(severity, featureId, ...)                                                                       \
    (AaSysLogIsOn((severity), (featureId)) ? (AaSysLogPrintE)((severity), (featureId), __VA_ARGS__) : (void)0)
#define AaSysLogPrint(severity, ...)                                                                                   \
    ((int32_t)(severity) >= __atomic_load_n(&AaSysLogCallLevel, __ATOMIC_RELAXED)                                      \
         ? (AaSysLogPrint)((severity), __VA_ARGS__)                                                                    \
         : (void)0)
/// @}

/// Tells the owner of a ring buffer whether one of its lines could not be kept; its result is not used.
typedef int (*TAaSysLogErrorPrintCallback)(void);

/// Keeps a feature's lines in a ring buffer, whether or not they are printed.
/// @param featureId the feature
/// @param bufferSize bytes; the oldest lines make room for new ones
/// @param severityLevel least severity of the lines that are kept
/// @param errorPrintCallback called when a line is longer than the whole buffer; may be null
/// @return 0; 1 when the feature has a ring buffer already; 2 when there is no memory or the size is 0.
int32_t AaSysLogRegisterRingBuffer(uint32_t featureId, uint32_t bufferSize, EAaSysLogSeverityLevel severityLevel,
                                   TAaSysLogErrorPrintCallback errorPrintCallback);

/// Writes a feature's ring buffer, oldest line first, to a file that is created or overwritten.
/// @param path the target's path; opened below the board root.
/// @return 0; 1 when the feature has no ring buffer; 2 when the file cannot be written.
int32_t AaSysLogDumpRingBufferToFile(uint32_t featureId, const char* path);

#ifdef __cplusplus
}
#endif

#endif
