// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaGpuXml.hpp"
#include "binary/Unsigned32.hpp"

#include <cstring>

AaGpuXmlNode* FindXmlTag(const AaGpuXmlNode* node, const char* name)
{
    if (!node || !node->AaGpuXmlHasChildren()) {
        return nullptr;
    }
    const auto end = node->AaGpuXmlGetLastChildren();
    for (auto child = node->AaGpuXmlGetFirstChildren(); child != end; ++child) {
        if (std::strcmp((*child)->AaGpuXmlGetName(), name) == 0) {
            return *child;
        }
    }
    return nullptr;
}

const char* getStringValueFromNode(const AaGpuXmlNode* node, const char* name)
{
    const AaGpuXmlNode* const child = FindXmlTag(node, name);
    return child ? child->AaGpuXmlGetValue() : "";
}

std::uint32_t getU32ValueFromNode(const AaGpuXmlNode* node, const char* name)
{
    return vel::hwapi::firmware::numberOf(getStringValueFromNode(node, name));
}
