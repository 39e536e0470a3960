/* SPDX-License-Identifier: MIT */
/// @file SupervisorFifo.h
/// Tells the board's supervisor process something, through the named pipe "/tmp/SupervisorFifo" that it reads.
#ifndef SUPERVISOR_FIFO_H
#define SUPERVISOR_FIFO_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Writes a message into the pipe, with one write: up to `PIPE_BUF` bytes (4096) arrive in one piece among those of
/// other writers. Does not wait for more than this:
/// - without the pipe it returns at once;
/// - a pipe that nobody reads is waited for until somebody does, however long that takes: call it from a thread that
///   can wait. A signal handler that does not restart calls ends the wait with a failure;
/// - a full pipe is waited for until the reader has made room or gone.
///
/// A reader that goes away in the middle is a failure with part of the message written; no signal is raised for it.
/// Nothing is tried again. What came of it goes to `syslog`: success and a missing pipe at LOG_INFO, failures at
/// LOG_ERR. A path that the platform cannot translate (AaFileGetBoardPath()) is a missing pipe. May be called from any
/// thread; does not throw.
/// @param size bytes of @p payload; more than `SSIZE_MAX` are a failure
/// @param payload the message; null is a failure
/// @return 0 when all bytes have been written, else 1.
int32_t SupervisorFifoWrite(size_t size, const void* payload);

#ifdef __cplusplus
}
#endif

#endif
