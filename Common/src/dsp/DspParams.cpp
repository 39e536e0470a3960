// SPDX-License-Identifier: MIT
#include "dsp.h"

#include "AaError.h"
#include "AaGpuXml.hpp"
#include "AaSysLog.h"
#include "dsp/Signed32.hpp"
#include "rad/ERadHwapi.h"

#include <algorithm>
#include <array>

using vel::hwapi::common::dsp::signed32Of;

namespace {

constexpr int byPrefix = 0;
constexpr int decimal = 10;

/// An element whose text is a number.
template <class Section, class Field>
struct Entry {
    const char* tag;
    int base;
    Field Section::*field;
    const char* ifMissing; ///< log line, or null
};

constexpr std::array<Entry<SBootInfo, std::uint32_t>, 3> bootInfoEntries{{
    {"resetType", byPrefix, &SBootInfo::resetType, "Failed to read last reset type from dsp.xml, tag missing!"},
    {"postFlag", byPrefix, &SBootInfo::postFlags, "Failed to read postFlags from dsp.xml, tag missing!"},
    {"ExtractorSw", decimal, &SBootInfo::runExtractorSw, "Failed to read ExtractorSw value from dsp.xml, tag missing!"},
}};

constexpr std::array<Entry<SDspAddressParams, std::uint64_t>, 4> addressEntries{{
    {"InitSwAddr", byPrefix, &SDspAddressParams::initSwAddr, "Failed to read InitSwAddr from dsp.xml, tag missing!"},
    {"CfgParamsAddr", byPrefix, &SDspAddressParams::cfgParamAddr,
     "Failed to read CfgParamsAddr from dsp.xml, tag missing!"},
    {"DoorbellAddr", byPrefix, &SDspAddressParams::doorbellAddr,
     "Failed to read doorbellAddr from dsp.xml, tag missing!"},
    {"RuntimeAddr", byPrefix, &SDspAddressParams::runtimeSwAddr, nullptr},
}};

void warn(const char* text)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_PrintDspXml, "%s", text);
}

/// Reads entries up to the first that is missing. @return whether none is.
template <class Entries, class Section>
bool readEntries(const Entries& entries, AaGpuXmlNode* node, Section& section)
{
    return std::all_of(entries.begin(), entries.end(), [&](const auto& entry) {
        const AaGpuXmlNode* const tag = ApiXmlGetTag(node, entry.tag);
        if (tag) {
            section.*entry.field = signed32Of(tag->AaGpuXmlGetValue(), entry.base);
        } else if (entry.ifMissing) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_PrintDspXml, "%s", entry.ifMissing);
        }
        return tag != nullptr;
    });
}

bool readBootInfo(AaGpuXmlNode* params, SStartUpGlobalParameters* config)
{
    AaGpuXmlNode* const bootInfo = ApiXmlGetTag(params, "BootInfo");
    if (!bootInfo) {
        warn("Illegal format 'BootInfo' tag is not found");
        return false;
    }
    if (!ApiXmlHandleBootInfo(bootInfo, config)) {
        warn("Failed to read BootInfo parameters from DSP.xml");
        return false;
    }
    return true;
}

bool readMemAddr(AaGpuXmlNode* params, SDspAddressParams* addresses)
{
    AaGpuXmlNode* const memAddr = ApiXmlGetTag(params, "MemAddress");
    if (!memAddr) {
        warn("Illegal format - 'MemAddress' tag is not found");
        return false;
    }
    if (!ApiXmlHandleMemAddr(memAddr, addresses)) {
        warn("Failed to read memAddress parameters from DSP.xml");
        return false;
    }
    return true;
}

} // namespace

TBoolean ApiXmlHandleBootInfo(AaGpuXmlNode* bootInfo, SStartUpGlobalParameters* config)
{
    AaErrorAssertion(bootInfo != NULL);
    AaErrorAssertion(config != NULL);
    *config = {};
    return readEntries(bootInfoEntries, bootInfo, config->bootInfo) ? 1 : 0;
}

TBoolean ApiXmlHandleMemAddr(AaGpuXmlNode* memAddr, SDspAddressParams* addrParams)
{
    AaErrorAssertion(memAddr != NULL);
    AaErrorAssertion(addrParams != NULL);
    *addrParams = {};
    return readEntries(addressEntries, memAddr, *addrParams) ? 1 : 0;
}

TBoolean ApiParseDspXml(AaGpuXmlNode* root, SStartUpGlobalParameters* configParams, SDspAddressParams* addrParams)
{
    AaGpuXmlNode* const params = ApiXmlGetTag(root, "DSPParams");
    if (!params) {
        warn("'DSPParams' tag is not found");
        return 0;
    }
    const AaGpuXmlNode* const version = ApiXmlGetAttribute(root, "version");
    if (!version) {
        warn("Attribute 'version' is missing from <service>");
        return 0;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_PrintDspXml, "Using version '%s' of dsp.xml file",
                   version->AaGpuXmlGetValue());
    return readBootInfo(params, configParams) && readMemAddr(params, addrParams) ? 1 : 0;
}
