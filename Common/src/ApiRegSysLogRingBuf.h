/* SPDX-License-Identifier: MIT */
/// @file ApiRegSysLogRingBuf.h
/// Keeps a feature's log lines in a ring buffer of its own, which is collected as a file when troubleshooting data is
/// gathered.
///
/// 1. A service registers a feature once, after start-up, with HwApiRegisterSysLogRingBuffer(). From then on its lines
///    from a severity on are kept in memory, whether or not they are printed.
/// 2. Whoever gathers troubleshooting data has the callbacks below called in this process, on a thread of the platform:
///    prepare does nothing, store writes the lines to a file below "/ram/", delete removes it when it has been taken.
///
/// A feature is the id of the R&D parameter that switches its prints on. Registration lines are logged under that
/// feature, those of the callbacks under `ERadHwapi_PrintInit`, all at severity Warning but two: that the file is being
/// registered is Info, and that there is no memory is Error.
///
/// The functions may be called from any thread and do not throw. What is registered stays so for the life of the
/// process, with 4 bytes of memory that hold the feature's id.
#ifndef API_REG_SYS_LOG_RING_BUF_H
#define API_REG_SYS_LOG_RING_BUF_H

#include "AaSysLog.h"
#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Greatest length of a file name; what stands behind is left out.
#define HWAPI_RING_BUFFER_NAME_MAX 40U

/// Gives a feature a ring buffer and registers its file, "/ram/" and the first #HWAPI_RING_BUFFER_NAME_MAX characters
/// of @p fileName. A feature whose R&D parameter is not 0 prints its lines: it gets no ring buffer, which is no
/// failure.
/// @param bufferSize bytes of the ring buffer
/// @param severityLevel least severity of the lines that are kept
/// @param errorPrintCb called when a line is longer than the whole buffer; its result is not used; may be null
/// @param fileName name of the file in the collection
/// @return 1; 0 when the feature has a ring buffer already, the platform refuses one or does not register the file, or
///   @p fileName is null. A ring buffer that exists then stays.
TBoolean HwApiRegisterSysLogRingBuffer(uint32_t featureId, uint32_t bufferSize, EAaSysLogSeverityLevel severityLevel,
                                       int (*errorPrintCb)(void), const char* fileName);

/// The same for a caller that has its feature's id behind a pointer; null is a failure.
TBoolean hwApiRegisterSysLogRingBuffer(const uint32_t* featureIdPointer, uint32_t bufferSize,
                                       EAaSysLogSeverityLevel severityLevel, int (*errorPrintCb)(void),
                                       const char* fileName);

/// What the file callbacks return.
enum EHwApiRingBufferFileResult {
    HWAPI_RING_BUFFER_FILE_OK = 0,    ///< the file is there, or gone, as was asked
    HWAPI_RING_BUFFER_FILE_NULL = 1,  ///< the file name or the context is null
    HWAPI_RING_BUFFER_FILE_FAILED = 2 ///< the file could not be written, or not be removed
};

/// Does nothing. @return 0.
int32_t hwApiAaPrepareFileDefaultCb(const char* fileName, void* opaque);

/// Writes a feature's ring buffer to a file. @param opaque points to the feature's id, 32 bits
/// @return a value of #EHwApiRingBufferFileResult.
int32_t hwApiAaStoreFileDefaultCb(const char* fileName, void* opaque);

/// Removes a file. @param opaque is not used, but must not be null
/// @return a value of #EHwApiRingBufferFileResult.
int32_t hwApiAaDeleteFileDefaultCb(const char* fileName, void* opaque);

#ifdef __cplusplus
}
#endif

#endif
