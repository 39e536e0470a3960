// SPDX-License-Identifier: MIT
#include "ForeignXml.hpp"
#include "RecordingPlatform.hpp"

#include "AaFile.h"

#include <utility>

namespace dorn::test {

ForeignNode* foreignTree = nullptr;
int ForeignNode::count = 0;

ForeignNode& ForeignNode::add(EAaGpuXmlNodeType childType, const std::string& childName, const std::string& childValue)
{
    auto* const child = new ForeignNode(childType, childName, childValue);
    if (!children.empty()) {
        children.back()->next = child;
    }
    children.push_back(child);
    return *child;
}

namespace {

const ForeignNode& foreign(const AaGpuXmlNode& node)
{
    return static_cast<const ForeignNode&>(node);
}

void deleteTree(ForeignNode* node)
{
    for (ForeignNode* const child : node->children) {
        deleteTree(child);
    }
    node->~ForeignNode();
    ::operator delete(node);
}

} // namespace
} // namespace dorn::test

using dorn::test::foreign;
using dorn::test::formatted;

namespace {

void note(const std::string& call)
{
    dorn::test::RecordingPlatform::get().note(call, call.substr(0, call.find('(')));
}

} // namespace

void AaGpuXmlNode::operator delete(AaGpuXmlNode* root, std::destroying_delete_t)
{
    dorn::test::deleteTree(static_cast<dorn::test::ForeignNode*>(root));
}

const char* AaGpuXmlNode::AaGpuXmlGetName() const
{
    return foreign(*this).name.c_str();
}

const char* AaGpuXmlNode::AaGpuXmlGetValue() const
{
    return foreign(*this).value.c_str();
}

EAaGpuXmlNodeType AaGpuXmlNode::AaGpuXmlGetType() const
{
    return foreign(*this).type;
}

AaGpuXmlNode* AaGpuXmlNode::AaGpuXmlGetNext() const
{
    return foreign(*this).next;
}

bool AaGpuXmlNode::AaGpuXmlHasChildren() const
{
    return !foreign(*this).children.empty();
}

TAaGpuXmlNodeListConstIterator AaGpuXmlNode::AaGpuXmlGetFirstChildren() const
{
    return TAaGpuXmlNodeListConstIterator(foreign(*this).children.at(0)); // there has to be one
}

AaGpuXmlParser::AaGpuXmlParser(unsigned int options)
{
    note(formatted("AaGpuXmlParser(%u)", options));
}

AaGpuXmlNode* AaGpuXmlParser::AaGpuXmlParse(const std::string& xmlText, const std::string& encoding)
{
    note("AaGpuXmlParse(\"" + xmlText + "\", \"" + encoding + "\")");
    return std::exchange(dorn::test::foreignTree, nullptr);
}

// Files there are none.

AaFile* AaFileOpen(const char* /*path*/, const char* /*mode*/)
{
    return nullptr;
}

std::int32_t AaFileClose(AaFile* /*file*/)
{
    return 1;
}

std::int32_t AaFileRead(AaFile* /*file*/, void* /*buffer*/, std::uint32_t /*size*/)
{
    return -1;
}

std::int32_t AaFileGetSize(AaFile* /*file*/)
{
    return -1;
}
