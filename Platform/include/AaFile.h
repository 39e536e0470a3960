/* SPDX-License-Identifier: MIT */
/// @file AaFile.h
/// Files and directories of the target.
///
/// Paths are the target's absolute paths. A provider may keep the target's whole tree below a directory of its host,
/// the board root (`DORN_ROOT` on a Linux host); AaFileGetBoardPath() tells where a path of the target really lies.
/// Symbolic links are followed as on the target: none leads out of the board root.
#ifndef AA_FILE_H
#define AA_FILE_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// An open file.
typedef struct AaFile AaFile;

/// Translates a path of the target into the path to be opened.
/// @param path absolute path of the target; neither ".." nor a link leads above the board root
/// @param buffer receives the path, NUL-terminated
/// @param bufferSize bytes of @p buffer
/// @return 0; 1 when an argument is null, @p path is not absolute or leads through too many links, or the result does
///   not fit.
int32_t AaFileGetBoardPath(const char* path, char* buffer, uint32_t bufferSize);

/// Opens a file. @param mode as for `fopen`: "r", "w", "a", each with "+" and "b" where wanted, "w" also with "x": the
///   file must not be there yet, not even as a symbolic link, and with "l": a symbolic link is not followed (`ELOOP`).
/// Waits for nobody at the other end of a named pipe: one without writer is empty, one without reader cannot be
/// written.
/// @return the file; null when it cannot be opened (`errno` tells why).
AaFile* AaFileOpen(const char* path, const char* mode);

/// Closes a file; null is passed over. @return 0; 1 when something written could not be stored.
int32_t AaFileClose(AaFile* file);

/// Reads up to @p size bytes. @return the bytes read, fewer only at the end of the file; -1 on failure.
int32_t AaFileRead(AaFile* file, void* buffer, uint32_t size);

/// Writes @p size bytes. @return the bytes written; fewer than @p size, or -1, on failure.
int32_t AaFileWrite(AaFile* file, const void* buffer, uint32_t size);

/// Reads up to and including the next line feed, at most @p bufferSize - 1 bytes, and terminates the text.
/// @return the bytes read; 0 at the end of the file; -1 on failure.
int32_t AaFileReadLine(AaFile* file, char* buffer, uint32_t bufferSize);

/// Returns the file's size in bytes, -1 on failure or when it does not fit. The position stays.
int32_t AaFileGetSize(AaFile* file);

/// What a position is counted from.
typedef enum EAaFileOrigin {
    EAaFileOrigin_Begin = 0,   ///< the first byte
    EAaFileOrigin_Current = 1, ///< the position
    EAaFileOrigin_End = 2      ///< the end of the file
} EAaFileOrigin;

/// Moves the position from which is read and written on, by @p offset bytes from @p origin. A position behind the end
/// is allowed.
/// @return 0; 1 on failure (`errno` tells why), as when it would lie before the first byte or the file is a pipe. The
///   position then stays.
int32_t AaFileSetPosition(AaFile* file, int32_t offset, EAaFileOrigin origin);

/// Returns the position in bytes from the first, -1 on failure or when it does not fit.
int32_t AaFileGetPosition(AaFile* file);

/// Removes a file. @return 0; 1 on failure (`errno` tells why).
int32_t AaFileRemove(const char* path);

/// Tells whether a directory exists.
TBoolean AaFileDirExists(const char* path);

/// Creates a directory with those above it that are missing. @return 0, also when it exists; 1 on failure.
int32_t AaFileCreateDir(const char* path);

#ifdef __cplusplus
}
#endif

#endif
