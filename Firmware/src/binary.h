/* SPDX-License-Identifier: MIT */
/// @file binary.h
/// Firmware images: the trailer behind the payload, and whether an image is whole and meant for this board.
///
/// An image of S bytes is the payload that goes into flash, behind it a trailer in XML, and at the end one word, 32
/// bits unsigned in little-endian order, that says at which offset T the trailer begins:
///
///     0 .. T-1      payload; its CRC-32 (that of zlib) stands in the trailer
///     T .. S-5      trailer
///     S-4 .. S-1    T; neither 0 nor S or more
///
/// The trailer is a document whose element is "trailer". All its children are optional; of several with one name the
/// first counts:
///
///     <trailer>
///       <Version>1</Version>                     version of the trailer's format
///       <Crc32>0x5d3bf62e</Crc32>                CRC-32 of the payload
///       <Length>4194304</Length>                 length of the payload; logged, T counts
///       <TargetUnit>NAXE</TargetUnit>            unit that the image is meant for; logged
///       <SwId>uBMU</SwId>                        name of the software; logged
///       <SwVersion>0x20A</SwVersion>             version of the software
///       <BuildTime>2026-11-21 09:18:01</BuildTime>
///       <HwSwIdList>                             boards that it fits, in hexadecimal digits
///         <HwSwId>3A01</HwSwId>
///       </HwSwIdList>
///     </trailer>
///
/// Numbers are read by three rules, each as far as its digits go, 0 without any:
/// - "Version", "Crc32" and "Length": in base 16 when "0x" or "0X" stands anywhere in the text, else in base 10;
/// - "HwSwId": always in base 16;
/// - "SwVersion" by binary_version(): in base 16 when the text begins with "0x", else in base 10.
///
/// A number beyond 32 bits is 0xFFFFFFFF, and one behind a minus sign is taken off 2^32.
///
/// An image is a file of less than 2 GiB with a trailer of at most #BINARY_TRAILER_LENGTH_MAX bytes. Its payload is
/// never held in memory. Functions that take a file name open the file themselves, below the board root, and have
/// closed it when they return; they keep no state, and any number of threads may call them at once, for the same file
/// too. Nothing throws. Pointers must not be null. What they find on their way goes to `syslog` at LOG_INFO, behind the
/// name of the function; that of binary_validate() goes to the system log with the feature 0x20003.
#ifndef BINARY_H
#define BINARY_H

#include <stdint.h>

#ifdef __cplusplus
class AaGpuXmlNode;
extern "C" {
#else
typedef struct AaGpuXmlNode AaGpuXmlNode;
#endif

/// What is wrong with an image.
enum EBinaryResult {
    BINARY_OK = 0,                         ///< nothing
    BINARY_TRAILER_XML_INVALID = 70401,    ///< the trailer is not well-formed XML, or has no element "trailer"
    BINARY_FILE_FAILED = 70406,            ///< the file could not be opened, positioned or read, or there is no memory
    BINARY_TRAILER_OFFSET_INVALID = 70407, ///< the trailer's offset is 0, or not below the size of the file
    BINARY_HWSWID_NOT_FOUND = 70411,       ///< the image is not meant for this board
    BINARY_CRC_MISMATCH = 70413            ///< the payload's CRC-32 is another one, or could not be computed
};

/// Greatest trailer that is read into memory, with the word behind it. Real ones have some hundred bytes; a damaged
/// word at the end of a large file makes one of any length.
#define BINARY_TRAILER_LENGTH_MAX (16U * 1024U * 1024U)

/// Checks an image before it is used: trailer, CRC-32, and that the board is on its list, a difference in the minor
/// version allowed.
/// @param hwswid the board's HwSwId, as ddal_devicetree_get_hw_sw_id() gives it
/// @return a value of #EBinaryResult; the log says more.
int32_t binary_validate(const char* fileName, uint32_t hwswid);

/// Checks that the payload of an image is whole. @return a value of #EBinaryResult, never #BINARY_HWSWID_NOT_FOUND.
int32_t binary_crc(const char* filename);

/// How binary_version() can fail.
enum EBinaryVersionResult {
    BINARY_VERSION_OK = 0,                ///< the version has been read
    BINARY_VERSION_TRAILER_NOT_READ = -1, ///< the file or its trailer could not be read
    BINARY_VERSION_XML_INVALID = -2,      ///< the trailer is not well-formed XML
    BINARY_VERSION_NO_TRAILER = -3,       ///< the XML has no element "trailer"
    BINARY_VERSION_NOT_COMPATIBLE = 1     ///< the image is not meant for this board
};

/// Reads the software version of an image that is meant for a board. The payload is not looked at.
/// @param hwswid the board's HwSwId
/// @param minor as for scan_hwswid()
/// @param version receives the version; 0 when the result is not 0
/// @return a value of #EBinaryVersionResult.
int32_t binary_version(const char* filename, uint32_t hwswid, int32_t minor, uint32_t* version);

/// How binary_copy_without_trailer() can fail.
enum EBinaryCopyResult {
    BINARY_COPY_OK = 0,                      ///< the copy is whole
    BINARY_COPY_SOURCE_NOT_OPENED = -1,      ///< the image could not be opened
    BINARY_COPY_NO_END = -2,                 ///< the position could not be moved to the end
    BINARY_COPY_NO_SIZE = -3,                ///< the position there could not be had, or does not fit
    BINARY_COPY_NO_OFFSET_WORD = -4,         ///< the position could not be moved to the last 4 bytes
    BINARY_COPY_OFFSET_NOT_READ = -5,        ///< the last 4 bytes could not be read
    BINARY_COPY_OFFSET_INVALID = -6,         ///< the trailer's offset is not below the size of the file
    BINARY_COPY_NO_BEGIN = -7,               ///< the position could not be moved to the begin
    BINARY_COPY_DESTINATION_NOT_OPENED = -8, ///< the file for the payload could not be made
    BINARY_COPY_NOT_READ = -9,               ///< reading failed half-way
    BINARY_COPY_NOT_WRITTEN = -10            ///< writing failed half-way
};

/// Copies the payload of an image into a file of its own, as flash drivers take it. The image is not checked.
/// @param destination is created or overwritten; after #BINARY_COPY_NOT_READ or #BINARY_COPY_NOT_WRITTEN it holds a
/// part
///   of the payload. An offset of 0 leaves it empty and is no failure.
/// @return a value of #EBinaryCopyResult.
int32_t binary_copy_without_trailer(const char* source, const char* destination);

/// Reads the trailer of an image.
/// @param trailerBeginning receives T, even if it turns out to be invalid; 0 when it could not be read
/// @param trailer receives the bytes from T to the end of the file, the word included, and a NUL behind them; the
/// caller
///   ends it with `free`. Null when the result is not 0.
/// @return #BINARY_OK, #BINARY_FILE_FAILED, #BINARY_TRAILER_OFFSET_INVALID.
uint32_t get_trailer(const char* fileName, uint32_t* trailerBeginning, char** trailer);

/// Computes the CRC-32 of the first bytes of a file, read in items of 4 bytes; the last 1 to 3 are an item of their
/// own. In place of an item that the file does not have, or that cannot be read, the one before it counts once more,
/// or 0 where there is none; bytes of the last 1 to 3 that the file does not have count as 0.
/// @param crc receives it; 0 when the result is not 0
/// @return #BINARY_OK, #BINARY_FILE_FAILED.
uint32_t calculate_crc(const char* fileName, uint32_t payloadLength, uint32_t* crc);

/// Looks whether a trailer lists a board.
///
/// The lowest 8 bits of a HwSwId are its minor version. An id that is equal is looked for first; then, if allowed, one
/// that differs in its minor version only.
/// @param trailerNode the element "trailer"
/// @param minor not 0: a difference in the minor version is allowed
/// @return #BINARY_OK, #BINARY_HWSWID_NOT_FOUND.
uint32_t scan_hwswid(const AaGpuXmlNode* trailerNode, uint32_t hwSwId, int32_t minor);

/// The first child of a node that has a name, attributes included; null when there is none. Looks no deeper.
AaGpuXmlNode* FindXmlTag(const AaGpuXmlNode* node, const char* name);

/// The value of the first child that has a name, empty when there is none. Valid as long as the tree.
const char* getStringValueFromNode(const AaGpuXmlNode* node, const char* name);

/// The value of the first child that has a name, by the rule for "Version", "Crc32" and "Length" above; 0 when there is
/// none.
uint32_t getU32ValueFromNode(const AaGpuXmlNode* node, const char* name);

#ifdef __cplusplus
}
#endif

#endif
