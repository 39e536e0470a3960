/* SPDX-License-Identifier: MIT */
/// @file rioDio.h
/// Files to and from the memory of devices behind RapidIO, such as DSPs.
///
/// To load a device:
///
/// 1. writeBinaryFileToSrio() copies the file into the device's memory;
/// 2. validateSrioWrite() reads it back and counts the bytes that differ.
///
/// Both work in blocks of 64 KiB, so that an image of any size needs no buffer of its own size, and block their caller
/// until they are done. They may be called from any thread and from several at once; transfers to the same addresses
/// are not coordinated. Paths are the target's.
///
/// Lines of the log have the feature id `ERadHwapi_SWDL`: each step at severity Debug, what goes wrong at Warning or
/// Error. At Info stand a dump that was written, that a file turned out shorter than its size while it was verified,
/// and as the last line what validateSrioWrite() returns when that is not 0.
#ifndef SWDLS_RIO_DIO_H
#define SWDLS_RIO_DIO_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Results of writeBinaryFileToSrio().
typedef enum ERioWrite {
    ERioWrite_Done = 0,  ///< the whole file has been written
    ERioWrite_Failed = 2 ///< a part may have been written
} ERioWrite;

/// What validateSrioWrite() returns when it could not compare. 100 bytes that differ look the same.
#define RIO_VALIDATION_FAILED 100

/// Bytes of a dump's file name, terminating zero included, as DumpDataToFile() wants them.
#define RIO_DUMP_FILE_NAME_SIZE 48

/// Copies a file into a device's memory.
/// @param device RapidIO id of the device
/// @param address of the device's memory at which the file begins
/// @param filename path of the file; null is a file that cannot be opened
/// @return an #ERioWrite. A file of no bytes, or of a size that cannot be told, is not written: #ERioWrite_Failed.
int32_t writeBinaryFileToSrio(uint16_t device, uint64_t address, const char* filename);

/// Compares a device's memory with a file, up to the end of the first block of 64 KiB in which they differ.
/// @param device RapidIO id of the device
/// @param address of the device's memory at which the file was written
/// @param filename path of the file
/// @return the number of bytes that differ in that block; 0 when none differs, and for a file of no bytes;
///   #RIO_VALIDATION_FAILED when it could not be found out. A Warning says why, except for a file whose size cannot be
///   told (the last line is all there is then) or that ends early.
int32_t validateSrioWrite(uint16_t device, uint64_t address, const char* filename);

/// Writes data to the file "/ram/dsp_parameters/<prefix>_0x<id>", in place of what was there.
/// @param params the data
/// @param size bytes of it
/// @param srioId RapidIO id of the device that they belong to; stands in the name in hexadecimal
/// @param filenameprefix beginning of the name. A name that is too long is cut.
/// @param outfilename receives the name: #RIO_DUMP_FILE_NAME_SIZE bytes
/// @return 1; 0 when it was not written, which is logged at severity Error
int32_t DumpDataToFile(const void* params, uint32_t size, uint16_t srioId, const char* filenameprefix,
                       char* outfilename);

#ifdef __cplusplus
}
#endif

#endif
