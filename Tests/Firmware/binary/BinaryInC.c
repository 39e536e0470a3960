/* SPDX-License-Identifier: MIT */
#include "binary.h"

#include <stdlib.h>

/* The lengths of payload and trailer of an image that is read in C; 0 when it cannot be. */
uint32_t trailerLengthInC(const char* path, uint32_t size);
int32_t checkInC(const char* path, const char* copy);

uint32_t trailerLengthInC(const char* path, uint32_t size)
{
    uint32_t beginning = 0;
    char* trailer = NULL;
    if (get_trailer(path, &beginning, &trailer) != BINARY_OK) {
        return 0;
    }
    free(trailer);
    return size - beginning;
}

int32_t checkInC(const char* path, const char* copy)
{
    uint32_t version = 0;
    uint32_t crc = 0;
    const int32_t validity = binary_validate(path, 0x3A01);
    const int32_t wholeness = binary_crc(path);
    const int32_t compatibility = binary_version(path, 0x3A01, 0, &version);
    const int32_t copied = binary_copy_without_trailer(path, copy);
    const uint32_t computed = calculate_crc(path, 4, &crc);
    const AaGpuXmlNode* const none = FindXmlTag(NULL, "trailer");
    return validity == BINARY_OK && wholeness == BINARY_OK && compatibility == BINARY_VERSION_OK &&
                   copied == BINARY_COPY_OK && computed == BINARY_OK && none == NULL &&
                   *getStringValueFromNode(none, "SwId") == '\0' && getU32ValueFromNode(none, "Crc32") == 0 &&
                   scan_hwswid(none, 0x3A01, 1) == BINARY_HWSWID_NOT_FOUND
               ? (int32_t)version
               : -1;
}
