/* SPDX-License-Identifier: MIT */
/// @file AaMem.h
/// Memory that changes hands between the platform and its users: counted references, freed with the last.
#ifndef AA_MEM_H
#define AA_MEM_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Allocates @p size bytes, aligned for any type, not initialised, with one reference.
/// @return the block; null when there is no memory.
void* AaMemMalloc(uint32_t size);

/// Same as AaMemMalloc(); @p file and @p line tell who allocated, for a platform that keeps record.
void* AaMemMallocDbg(uint32_t size, const char* file, uint32_t line);

/// Adds a reference. @return @p block, which may be null.
void* AaMemRef(void* block);

/// Gives up a reference; frees the block with the last one. Null is passed over.
void AaMemUnRef(void* block);

/// Same as AaMemUnRef(); @p file and @p line tell who released.
void AaMemUnRefDbg(void* block, const char* file, uint32_t line);

#ifdef __cplusplus
}
#endif

#endif
