// SPDX-License-Identifier: MIT
#include "dsp.h"

#include "AaGpuXml.hpp"

namespace {

AaGpuXmlNode* findChild(const AaGpuXmlNode* node, EAaGpuXmlNodeType type, const std::string& name)
{
    if (!node || !node->AaGpuXmlHasChildren()) {
        return nullptr;
    }
    const auto end = node->AaGpuXmlGetLastChildren();
    for (auto child = node->AaGpuXmlGetFirstChildren(); child != end; ++child) {
        if ((*child)->AaGpuXmlGetType() == type && name == (*child)->AaGpuXmlGetName()) {
            return *child;
        }
    }
    return nullptr;
}

} // namespace

AaGpuXmlNode* ApiXmlGetTag(AaGpuXmlNode* node, const std::string& name)
{
    return findChild(node, AA_GPU_XML_ELEMENT_NODE, name);
}

AaGpuXmlNode* ApiXmlGetAttribute(AaGpuXmlNode* node, const std::string& name)
{
    return findChild(node, AA_GPU_XML_ATTRIBUTE_NODE, name);
}
