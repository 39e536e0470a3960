/* SPDX-License-Identifier: MIT */
/// @file PostFile.h
/// The results of power-on self-tests (POST), kept in small text files over a restart: the latest and the one before.
///
/// There are three kinds of results, each with a file of its own, whose name the caller chooses: those of the main
/// controller (MCU), those of the DSPs, and second POST data. `Update...` records a result, `Query...` reads what is
/// there.
///
/// A file has one line a result, the newest first. All numbers are hexadecimal, in lower case, without prefix:
///
///     MCU                14 numbers with single blanks between them
///     DSP                "%x %x %x %x : ": bootStatus, boardId, chipNumber, numberOfPosts; then "%x %x " for each test
///     second POST data   "%x : ": numOfPost; then "%x %x " for each test
///
/// What is read: a number is any that `scanf` takes for "%x", of which 32 bits count; one that is greater is
/// 0xFFFFFFFF, and "0x" without digits behind it is 0. White space may stand between numbers and around the colon. A
/// line of more than 1023 bytes is read as several lines of that length.
///
/// What can be lost: an update empties the file before it writes. When the disk is full, or power fails, just then,
/// both results are gone or the last line is cut off; the update then gives #EStatus_UndefinedError, if it is there to
/// give anything. The format knows no better: a file has no room for a mark that a line is whole, and is not written
/// beside and renamed, because the file at its name is all that there is on small flash file systems. A result of which
/// memory does not allow the line to be made leaves the file as it was.
///
/// Files are those of the platform (AaFile.h), memory is the platform's (AaMem.h). The functions may be called from any
/// thread; there is no lock, so let no two update one file at once. Nothing is logged, nothing throws.
#ifndef POST_FILE_H
#define POST_FILE_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// State of a test. The platform's POST interface says what the numbers mean; here they are carried through.
typedef uint32_t EPostState;
/// Number of a test, as EPostState.
typedef uint32_t EPostCase;
/// Number of a board.
typedef uint32_t TBoardId;
/// Number of a DSP chip on its board.
typedef uint32_t TChipNumber;
/// Number of records that follow.
typedef uint32_t TNumberOfItems;
/// Number of a test case.
typedef uint32_t TTestCase;
/// What a test case came to.
typedef uint32_t TResultCode;
/// Number that an answer shares with its request.
typedef uint32_t TTransactionID;

/// Greatest number of tests that a record which has been read has room for. Of these at most
/// #POST_FILE_PAIRS_READ_MAX are filled from the file.
#define POST_FILE_PAIRS_MAX 17U
/// Greatest number of tests that are read from a line.
#define POST_FILE_PAIRS_READ_MAX 16U
/// What all fields of the second line of an MCU file hold while there has been only one result.
#define POST_FILE_MCU_MARKER 0xF1BACA5EU

/// Result of the main controller's tests, in the order of the file.
typedef struct SMcuPostResult {
    /// Memory.
    EPostState PostRam;
    /// Boot image.
    EPostState PostBootImage;
    /// Software that the unit runs.
    EPostState PostRuntimeSW;
    /// FPGA image.
    EPostState PostFpgaImage;
    /// Flash memory of the CRTM.
    EPostState PostCrtmFlash;
    /// Flash memory that is booted from.
    EPostState PostBootFlash;
    /// The mount that the platform calls 3gFm.
    EPostState PostMount3gFm;
    /// The mount that the platform calls LtFm.
    EPostState PostMountLtFm;
    /// The mount that the platform calls VendorFm.
    EPostState PostMountVendorFm;
    /// The mount that the platform calls Db.
    EPostState PostMountDb;
    /// The mount that the platform calls 3gSdmN.
    EPostState PostMount3gSdmN;
    /// The mount that the platform calls 3gSdmE.
    EPostState PostMount3gSdmE;
    /// The mount that the platform calls LtSdmA.
    EPostState PostMountLtSdmA;
    /// The mount that the platform calls LtSdmB.
    EPostState PostMountLtSdmB;
} SMcuPostResult;

/// One test of a DSP.
typedef struct SPostResult {
    /// Which test it was.
    TTestCase testCaseNumber;
    /// What it came to.
    TResultCode resultCode;
} SPostResult;

/// Result of a DSP's tests.
typedef struct DspReadyInd {
    /// How the DSP's boot ended.
    uint32_t bootStatus;
    /// The board that the DSP is on.
    TBoardId boardId;
    /// The DSP on that board.
    TChipNumber chipNumber;
    /// How many tests follow.
    TNumberOfItems numberOfPosts;
    SPostResult postResults[1]; ///< numberOfPosts of them
} DspReadyInd;

/// One test of the second POST data.
typedef struct SPost {
    /// Which test it was.
    EPostCase postCase;
    /// What it came to.
    EPostState postState;
} SPost;

/// Second POST data. Only numOfPost and the tests are stored.
typedef struct SApi2PostDataResp {
    /// As in the request; not stored.
    TTransactionID transactionId;
    /// Whether the request could be answered; not stored.
    uint32_t successCode;
    /// The node that answered; not stored.
    uint32_t nodeId;
    /// How many tests follow.
    uint32_t numOfPost;
    SPost post[1]; ///< numOfPost of them
} SApi2PostDataResp;

/// Records a result of the main controller. The file then has exactly two lines; see #POST_FILE_MCU_MARKER.
/// @return #EStatus_NoError; #EStatus_UndefinedError when the file cannot be opened for writing, not be written whole
///   or not be closed, when @p result is null or when there is no memory. A write that falls short ends the writing:
///   the file stays cut off.
EStatus UpdateMcuPost(const char* filename, const SMcuPostResult* result);

/// Records a result of a DSP; the one before stays behind it. Of a result before that announces more than
/// #POST_FILE_PAIRS_MAX tests no more than these are written again, those beyond #POST_FILE_PAIRS_READ_MAX as
/// 0xFFFFFFFF, under the number that was announced.
/// @param result numberOfPosts tests are read from it. Null, or a result without tests, leaves the file as it is and is
///   no failure.
/// @return as UpdateMcuPost().
EStatus UpdateDspPost(const char* filename, const DspReadyInd* result);

/// Records second POST data, as UpdateDspPost().
EStatus UpdatePostData2(const char* filename, const SApi2PostDataResp* result);

/// Reads all results of the main controller, however many lines there are.
/// @param results receives the array, the newest first, which the caller ends with AaMemUnRefDbg(); null when there are
///   none. It grows in steps, so that its block may be larger than the results need. A line that does not begin with 14
///   numbers counts; all fields of its result are 0xFFFFFFFF.
/// @param nbrOfResults receives the number of results
/// @return #EStatus_NoError, also when lines were malformed; #EStatus_UndefinedError when the file cannot be opened,
///   when a parameter is null or when there is no memory, each with no results; or when the file could not be closed,
///   with what has been read.
EStatus QueryMcuPost(const char* filename, SMcuPostResult** results, uint32_t* nbrOfResults);

/// Reads the first two results of a DSP.
/// @param results receives an array of pointers, the newest first, or null when there are none. The caller ends each
///   record and then the array with AaMemUnRefDbg(). A record has room for #POST_FILE_PAIRS_MAX tests, whatever
///   numberOfPosts says; what the file does not give is all ones. In a malformed line the numbers up to the fault are
///   read: without the colon behind its header it has no tests, whatever follows.
/// @param nbrOfResults receives the number of results
/// @return as QueryMcuPost().
EStatus QueryDspPost(const char* filename, DspReadyInd*** results, uint32_t* nbrOfResults);

/// Reads the first two results of second POST data, as QueryDspPost(). transactionId, successCode and nodeId, which the
/// file does not have, are all ones.
EStatus QueryPostData2(const char* filename, SApi2PostDataResp*** results, uint32_t* nbrOfResults);

#ifdef __cplusplus
}
#endif

#endif
