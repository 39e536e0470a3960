/* SPDX-License-Identifier: MIT */
/// @file dsp.h
/// The DSP parameter file ("dsp.xml"): what is to be known of a DSP before it is started.
///
///     <service version="1.0">                                any name; the version is logged, not checked
///       <DSPParams>
///         <BootInfo>
///           <resetType>2</resetType>                         type of the last reset
///           <postFlag>0x3F</postFlag>                        flags of the power-on self-test
///           <ExtractorSw>1</ExtractorSw>                     whether to run the extractor software; decimal
///         </BootInfo>
///         <MemAddress>
///           <InitSwAddr>0x0C000000</InitSwAddr>              software that initialises the DSP
///           <CfgParamsAddr>0x0C0F0000</CfgParamsAddr>        its configuration
///           <DoorbellAddr>0x02901E00</DoorbellAddr>          its doorbell
///           <RuntimeAddr>0x10000000</RuntimeAddr>            software that it runs then
///         </MemAddress>
///       </DSPParams>
///     </service>
///
/// Elements are found by their exact names as direct children; of several with one name the first counts.
///
/// A number is read as far as its digits go, 0 without any: in base 16 behind "0x", in base 8 behind "0", else in base
/// 10; nothing is in base 2, so "0b101" is 0. It is a signed number of 32 bits, also where addresses have 64:
/// 0x80000000 and above give 0x7FFFFFFF, and below -0x80000000 gives -0x80000000. So an address is 0x7FFFFFFF at most,
/// or, if the file has a negative number, that number's 32 bits; its upper 32 bits are 0.
///
/// The functions may be called from any thread; they keep nothing and do not throw. What is wrong is logged under
/// `ERadHwapi_PrintDspXml`: what concerns file and format at severity Warning, each missing element of the two sections
/// at severity Error. That there is no memory for the file's content is a failure without a line, because nothing is
/// wrong with the file; none for its tree is the parser's result 3.
#ifndef DSP_H
#define DSP_H

#include "AaTypes.h"

#ifdef __cplusplus
#include <string>
class AaGpuXmlNode;
extern "C" {
#else
typedef struct AaGpuXmlNode AaGpuXmlNode;
#endif

/// How a DSP is to boot.
typedef struct SBootInfo {
    /// Type of the last reset, from `resetType`.
    uint32_t resetType;
    /// Flags of the power-on self-test, from `postFlag`.
    uint32_t postFlags;
    /// Whether to run the extractor software, from `ExtractorSw`.
    uint32_t runExtractorSw;
} SBootInfo;

/// What a DSP is told at its start. Reading a parameter file sets bootInfo and zeroes the rest, which is the caller's.
typedef struct SStartUpGlobalParameters {
    /// The unit that the DSP is on.
    uint32_t unit;
    /// Who receives what the DSP says.
    uint32_t receiverInfo;
    /// How it is to boot; the only field that a parameter file sets.
    SBootInfo bootInfo;
    /// Kind of the unit.
    uint32_t unitType;
    /// HW/SW id of the unit.
    uint32_t hwSwId;
    /// How the CPU clock is set.
    uint32_t cpuClkSet;
    /// The CPU clock.
    uint32_t cpuClk;
    /// Whether the DSP traces baseband data.
    uint32_t bbTrace;
} SStartUpGlobalParameters;

/// Where things lie in a DSP's memory.
typedef struct SDspAddressParams {
    /// Of the software that initialises the DSP, from `InitSwAddr`.
    uint64_t initSwAddr;
    /// Of the software that it runs then, from `RuntimeAddr`.
    uint64_t runtimeSwAddr;
    /// Of its doorbell, from `DoorbellAddr`.
    uint64_t doorbellAddr;
    /// Of its configuration, from `CfgParamsAddr`.
    uint64_t cfgParamAddr;
} SDspAddressParams;

/// Reads a parameter file, below the board root.
/// @param name the target's path; null is a failure without a log line
/// @param configParams receives bootInfo and zeros; must not be null. Not touched before the section is found.
/// @param addrParams receives the addresses; must not be null. Not touched before the section is found.
/// @return 1 when the file could be read and everything was there, else 0: fields that follow the first missing one are
///   then 0.
TBoolean ApiReadDspXml(const char* name, SStartUpGlobalParameters* configParams, SDspAddressParams* addrParams);

/// Reads a parameter file that has been parsed.
/// @param root the document element, which has the attribute "version"; null is one without children
/// @return as ApiReadDspXml().
TBoolean ApiParseDspXml(AaGpuXmlNode* root, SStartUpGlobalParameters* configParams, SDspAddressParams* addrParams);

/// Zeroes @p config and reads the section "BootInfo" into it. A null pointer ends the process.
/// @return 1; 0 when an element is missing: it and those behind it are not read.
TBoolean ApiXmlHandleBootInfo(AaGpuXmlNode* bootInfo, SStartUpGlobalParameters* config);

/// Zeroes @p addrParams and reads the section "MemAddress" into it. A null pointer ends the process.
/// @return 1; 0 when an element is missing: it and those behind it are not read. Only the last one, "RuntimeAddr", is
///   missed without a log line.
TBoolean ApiXmlHandleMemAddr(AaGpuXmlNode* memAddr, SDspAddressParams* addrParams);

#ifdef __cplusplus
}

/// The first child of @p node that is an element of that name. Looks no deeper.
/// @return a node of the same tree; null when there is none, or @p node is null.
AaGpuXmlNode* ApiXmlGetTag(AaGpuXmlNode* node, const std::string& name);

/// The attribute of @p node that has that name.
/// @return a node of the same tree; null when there is none, or @p node is null.
AaGpuXmlNode* ApiXmlGetAttribute(AaGpuXmlNode* node, const std::string& name);
#endif

#endif
