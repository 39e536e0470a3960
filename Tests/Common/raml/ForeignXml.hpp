// SPDX-License-Identifier: MIT
/// @file ForeignXml.hpp
/// Another platform's XML: a stand-in for the parser that gives the tree a test has made. It needs a
/// RecordingPlatform, which notes its calls.
#pragma once

#include "AaGpuXml.hpp"

#include <memory>
#include <string>
#include <vector>

namespace dorn::test {

struct ForeignNode final : AaGpuXmlNode {
    ForeignNode(EAaGpuXmlNodeType nodeType, std::string nodeName, std::string nodeValue = {})
        : type(nodeType), name(std::move(nodeName)), value(std::move(nodeValue))
    {
        ++count;
    }
    ~ForeignNode() { --count; }
    ForeignNode(const ForeignNode&) = delete;
    ForeignNode& operator=(const ForeignNode&) = delete;

    /// How many there are.
    static int count;

    /// Appends a child. @return the child
    ForeignNode& add(EAaGpuXmlNodeType childType, const std::string& childName, const std::string& childValue = {});

    EAaGpuXmlNodeType type;
    std::string name;
    std::string value;
    std::vector<ForeignNode*> children;
    ForeignNode* next = nullptr;
};

/// What the parser gives next; null for a text that is not well-formed.
extern ForeignNode* foreignTree;

} // namespace dorn::test
