// SPDX-License-Identifier: MIT
#include "raml/NodeAttributes.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"

namespace RAML {

NodeAttributes::NodeAttributes(const AaGpuXmlNode* node)
    : m_first(node && node->AaGpuXmlHasChildren() ? *node->AaGpuXmlGetFirstChildren() : nullptr)
{
}

const char* NodeAttributes::find(std::string_view name)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "RamlParser::GetAttributeNode %s", name.data());
    const AaGpuXmlNode* last = nullptr;
    for (const AaGpuXmlNode* child = m_first; child != m_end; child = child->AaGpuXmlGetNext()) {
        if (child->AaGpuXmlGetType() != AA_GPU_XML_ATTRIBUTE_NODE) {
            continue;
        }
        if (name == child->AaGpuXmlGetName()) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML,
                           "RamlParser::GetAttributeNode attribute node found");
            return child->AaGpuXmlGetValue();
        }
        last = child;
    }
    m_end = last ? last->AaGpuXmlGetNext() : m_first;
    return nullptr;
}

const char* NodeAttributes::textOf(std::string_view name)
{
    const char* const found = find(name);
    return found ? found : "";
}

} // namespace RAML
